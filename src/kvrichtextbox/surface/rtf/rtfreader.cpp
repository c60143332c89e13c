#include "surface/rtf/rtfreader.h"

#include "surface/paragraphborders.h"
#include "surface/rtf/rtfreader_p.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextList>
#include <QUrl>

namespace kvrtb::rtf {

namespace {

// Common part of reading into a fresh document.
void readInto(QTextDocument &document, const QByteArray &rtf, bool endsDocument)
{
    QTextCursor cursor(&document);
    QTextCursor editBlock(&document);
    editBlock.beginEditBlock(); // one layout pass at the end, as setHtml does
    detail::Reader reader(document, cursor, endsDocument);
    reader.run(rtf);
    paragraphborders::makeRoom(document);
    editBlock.endEditBlock();
}

ReadResult notRtf()
{
    return {false, QStringLiteral("The text is not RTF: it does not start with \"{\\rtf\".")};
}

} // namespace

bool looksLikeRtf(const QByteArray &bytes)
{
    int i = 0;
    while (i < bytes.size() && (bytes[i] == ' ' || bytes[i] == '\t' || bytes[i] == '\r' || bytes[i] == '\n'))
        ++i;
    return bytes.mid(i, 5) == "{\\rtf";
}

ReadResult readRtf(QTextDocument &document, const QByteArray &rtf)
{
    if (!looksLikeRtf(rtf))
        return notRtf();
    const bool undo = document.isUndoRedoEnabled();
    // Like setHtml, a whole new document starts a fresh undo history.
    document.setUndoRedoEnabled(false);
    document.clear();
    readInto(document, rtf, true);
    document.setUndoRedoEnabled(undo);
    return {true, QString()};
}

ReadResult insertRtf(QTextCursor &cursor, const QByteArray &rtf)
{
    if (!looksLikeRtf(rtf))
        return notRtf();
    QTextDocument scratch;
    scratch.setUndoRedoEnabled(false);
    readInto(scratch, rtf, false);
    QTextDocument *target = cursor.document();
    // Pictures live in the document's resources: carry them over with the text.
    for (QTextBlock block = scratch.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (!format.isImageFormat())
                continue;
            const QString name = format.toImageFormat().name();
            const QVariant data = scratch.resource(QTextDocument::ImageResource, QUrl(name));
            if (data.isValid())
                target->addResource(QTextDocument::ImageResource, QUrl(name), data);
        }
    }
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    const int at = cursor.position();
    const int blocksBefore = target->blockCount();
    cursor.insertFragment(QTextDocumentFragment(&scratch));
    // A fragment that starts with a list paragraph is put in a paragraph of its own, one break
    // more than the RTF has: the paragraph where it went in takes the pasted paragraph's
    // format and list instead, as for any other pasted paragraph.
    if (target->blockCount() - blocksBefore == scratch.blockCount()
        && target->characterAt(at) == QChar::ParagraphSeparator) {
        const QTextBlock host = target->findBlock(at);
        const QTextBlock pasted = host.next();
        if (pasted.isValid() && pasted.textList() && host.position() + host.length() - 1 == at) {
            QTextCursor join(host);
            join.setBlockFormat(pasted.blockFormat());
            if (host.textList() != pasted.textList())
                pasted.textList()->add(host);
            join.setPosition(at);
            join.deleteChar();
        }
    }
    cursor.endEditBlock();
    return {true, QString()};
}

} // namespace kvrtb::rtf
