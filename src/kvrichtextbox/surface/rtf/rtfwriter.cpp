#include "surface/rtf/rtfwriter.h"

#include "surface/formatmapping.h"
#include "surface/rtf/codepage.h"
#include "surface/rtf/rtfkept.h"
#include "surface/rtf/rtflisttable.h"
#include "surface/rtf/rtfnotes.h"
#include "surface/rtf/rtfpicture.h"

#include <QBuffer>
#include <QImage>
#include <QPixmap>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QSet>
#include <QUrl>

#include <cmath>
#include <vector>

// The writer emits one line per paragraph ("\pard<paragraph>...<runs>\par"), character
// properties as differences from the run before, and only what is set: a plain document uses
// no control word that tells of formatting (no colour table, no bold or underline words), so
// that a reader of the RTF can tell plain text from formatted text by its control words.
// Backslashes in the text are written as \'5c for the same reason.

namespace kvrtb::rtf {

namespace {

struct RunProps {
    bool bold = false;
    bool italic = false;
    bool strike = false;
    bool protect = false;
    int underline = QTextCharFormat::NoUnderline;
    int font = -1;
    int halfPoints = 24;
    int color = 0;
    int back = 0;
    int script = 0;
    int offset = 0;
    int lang = 0;
};

class Writer {
public:
    Writer(const QTextDocument &document, int start, int end)
        : m_doc(document), m_start(start), m_end(end), m_defaults(format::defaultsOf(document))
    {
        fontIndex(m_defaults.fontName);
    }

    QByteArray run();

private:
    void writeFrame(const QTextFrame *frame);
    void writeTable(const QTextTable *table);
    bool writeWithinCell(const QTextTable *table);
    void writeBlock(const QTextBlock &block, const char *ending);
    void writeParagraphProperties(const QTextBlock &block);
    void writeFragmentText(const QString &text);
    void writeCharProps(const QTextCharFormat &format);
    void writePicture(const QTextImageFormat &format);
    void collectNotes();
    bool isAttachedNote(const QTextBlock &block) const;
    void writeNoteMark(int noteId, const QTextCharFormat &format);
    void writeNote(int noteId);
    void word(const char *control);
    void word(const char *control, int value);
    void text(char16_t c);
    void escaped(const QString &text, QByteArray &out);
    int fontIndex(const QString &name);
    int colourIndex(Colour colour);
    bool intersects(int from, int to) const { return from < m_end && to > m_start; }

    const QTextDocument &m_doc;
    const int m_start;
    const int m_end;
    const format::CharDefaults m_defaults;
    QByteArray m_out;
    bool m_needSpace = false;
    bool m_flattenCell = false; // a range inside one table cell is written as plain paragraphs
    RunProps m_props;
    // The paragraphs of each note whose reference is written, by note id.
    QHash<int, std::vector<QTextBlock>> m_notes;
    QSet<int> m_notesWritten;
    QSet<QByteArray> m_keptWritten; // kept groups already written (rtfkept.h)
    ListTableBuilder m_listTable;
    bool m_inNote = false;
    QStringList m_fonts;
    std::vector<Colour> m_colours;
};

void Writer::word(const char *control)
{
    m_out += '\\';
    m_out += control;
    m_needSpace = true;
}

void Writer::word(const char *control, int value)
{
    m_out += '\\';
    m_out += control;
    m_out += QByteArray::number(value);
    m_needSpace = true;
}

int Writer::fontIndex(const QString &name)
{
    const int found = int(m_fonts.indexOf(name));
    if (found >= 0)
        return found;
    m_fonts.append(name);
    return int(m_fonts.size()) - 1;
}

int Writer::colourIndex(Colour colour)
{
    for (size_t i = 0; i < m_colours.size(); ++i) {
        if (m_colours[i] == colour)
            return int(i) + 1;
    }
    m_colours.push_back(colour);
    return int(m_colours.size());
}

void Writer::escaped(const QString &value, QByteArray &out)
{
    for (const QChar qc : value) {
        const char16_t c = qc.unicode();
        if (c == '\\') {
            out += "\\'5c";
        } else if (c == '{' || c == '}') {
            out += '\\';
            out += char(c);
        } else if (c >= 0x20 && c < 0x7F) {
            out += char(c);
        } else {
            const int byte = c >= 0x80 ? CodePageDecoder::windows1252Byte(c) : -1;
            if (byte >= 0) {
                static const char hex[] = "0123456789abcdef";
                out += "\\'";
                out += hex[byte >> 4];
                out += hex[byte & 15];
            } else {
                out += "\\u";
                out += QByteArray::number(int(qint16(c)));
                out += '?';
            }
        }
    }
}

void Writer::text(char16_t c)
{
    static const char hex[] = "0123456789abcdef";
    if (c >= 0x20 && c < 0x7F && c != '\\' && c != '{' && c != '}') {
        if (m_needSpace) {
            m_out += ' ';
            m_needSpace = false;
        }
        m_out += char(c);
        return;
    }
    switch (c) {
    case '\\': m_out += "\\'5c"; m_needSpace = false; return;
    case '{': m_out += "\\{"; m_needSpace = false; return;
    case '}': m_out += "\\}"; m_needSpace = false; return;
    case '\t': word("tab"); return;
    case 0x2028: word("line"); return;
    case 0x00A0: m_out += "\\~"; m_needSpace = false; return;
    default: break;
    }
    const int byte = c >= 0x80 ? CodePageDecoder::windows1252Byte(c) : -1;
    if (byte >= 0) {
        m_out += "\\'";
        m_out += hex[byte >> 4];
        m_out += hex[byte & 15];
        m_needSpace = false;
        return;
    }
    m_out += "\\u";
    m_out += QByteArray::number(int(qint16(c)));
    m_out += '?';
    m_needSpace = false;
}

void Writer::writeFragmentText(const QString &value)
{
    for (const QChar c : value)
        text(c.unicode());
}

void Writer::writeCharProps(const QTextCharFormat &qt)
{
    const CharFormat f = format::readChar(qt, m_defaults);
    RunProps next;
    next.bold = *f.bold;
    next.italic = *f.italic;
    next.strike = *f.strikeThrough;
    next.protect = *f.protectedText;
    next.underline = format::userUnderline(qt);
    next.font = fontIndex(*f.fontName);
    next.halfPoints = std::max(1, int(std::lround(*f.fontSize * 2)));
    next.color = *f.color == m_defaults.color && !(qt.hasProperty(QTextFormat::ForegroundBrush)
                                                   && qt.foreground().style() != Qt::NoBrush)
                     ? 0
                     : colourIndex(*f.color);
    next.back = *f.backColor == kAutoColour ? 0 : colourIndex(*f.backColor);
    next.script = int(*f.script);
    next.offset = *f.charOffset;
    next.lang = *f.locale;

    RunProps &now = m_props;
    if (next.font != now.font)
        word("f", next.font);
    if (next.halfPoints != now.halfPoints)
        word("fs", next.halfPoints);
    if (next.bold != now.bold)
        next.bold ? word("b") : word("b", 0);
    if (next.italic != now.italic)
        next.italic ? word("i") : word("i", 0);
    if (next.underline != now.underline) {
        switch (next.underline) {
        case QTextCharFormat::NoUnderline: word("ulnone"); break;
        case QTextCharFormat::DotLine: word("uld"); break;
        case QTextCharFormat::DashUnderline: word("uldash"); break;
        case QTextCharFormat::DashDotLine: word("uldashd"); break;
        case QTextCharFormat::DashDotDotLine: word("uldashdd"); break;
        case QTextCharFormat::WaveUnderline:
        case QTextCharFormat::SpellCheckUnderline: word("ulwave"); next.underline = QTextCharFormat::WaveUnderline; break;
        default: word("ul"); next.underline = QTextCharFormat::SingleUnderline; break;
        }
    }
    if (next.strike != now.strike)
        next.strike ? word("strike") : word("strike", 0);
    if (next.protect != now.protect)
        next.protect ? word("protect") : word("protect", 0);
    if (next.color != now.color)
        word("cf", next.color);
    if (next.back != now.back)
        word("highlight", next.back);
    if (next.script != now.script) {
        switch (ScriptPosition(next.script)) {
        case ScriptPosition::Superscript: word("super"); break;
        case ScriptPosition::Subscript: word("sub"); break;
        case ScriptPosition::Normal: word("nosupersub"); break;
        }
    }
    if (next.offset != now.offset) {
        // Half points for every reader, and the exact twips for ours when they differ.
        const int halfPoints = int(std::lround(next.offset / 10.0));
        if (next.offset >= 0)
            word("up", halfPoints);
        else
            word("dn", -halfPoints);
        if (halfPoints * 10 != next.offset)
            word("kvoffset", next.offset);
    }
    if (next.lang != now.lang)
        word("lang", next.lang);
    now = next;
}

void Writer::writePicture(const QTextImageFormat &image)
{
    const QVariant resource = m_doc.resource(QTextDocument::ImageResource, QUrl(image.name()));
    QByteArray header = image.property(PictureHeader).toByteArray();
    QByteArray data;
    QSize natural;
    if (resource.userType() == QMetaType::QByteArray && !header.isEmpty()) {
        data = resource.toByteArray();
    } else {
        QImage picture;
        if (resource.userType() == QMetaType::QImage)
            picture = resource.value<QImage>();
        else if (resource.userType() == QMetaType::QPixmap)
            picture = resource.value<QPixmap>().toImage();
        else if (resource.userType() == QMetaType::QByteArray)
            picture.loadFromData(resource.toByteArray());
        if (picture.isNull())
            return; // nothing to write: the picture cannot be found
        QBuffer buffer(&data);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, "PNG");
        natural = picture.size();
        header = "\\pngblip\\picw" + QByteArray::number(natural.width()) + "\\pich"
                 + QByteArray::number(natural.height());
    }
    m_out += "{\\pict";
    m_out += header;
    double width = image.width();
    double height = image.height();
    if ((width <= 0 || height <= 0) && natural.isValid()) {
        width = natural.width();
        height = natural.height();
    }
    if (width > 0 && height > 0) {
        m_out += "\\picwgoal" + QByteArray::number(qRound(width * kTwipsPerPixel));
        m_out += "\\pichgoal" + QByteArray::number(qRound(height * kTwipsPerPixel));
    }
    m_out += ' ';
    m_out += data.toHex();
    m_out += '}';
    m_needSpace = false;
}

void Writer::collectNotes()
{
    // Notes follow their references' paragraphs: those of the range, and those just after it.
    QHash<int, std::vector<QTextBlock>> notes;
    const QTextBlock first = m_doc.findBlock(m_start);
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        const bool note = format.hasProperty(NoteIdProperty) && format.hasProperty(NoteKindProperty);
        if (!note && block.position() >= m_end)
            break;
        if (note)
            notes[format.intProperty(NoteIdProperty)].push_back(block);
    }
    if (notes.isEmpty())
        return;
    // A note goes inside its reference only when the reference is written too.
    for (QTextBlock block = first; block.isValid() && block.position() < m_end; block = block.next()) {
        if (block.blockFormat().hasProperty(NoteKindProperty))
            continue;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const int id = fragment.charFormat().intProperty(NoteIdProperty);
            if (id && notes.contains(id) && intersects(fragment.position(), fragment.position() + fragment.length()))
                m_notes.insert(id, notes.take(id));
        }
    }
}

bool Writer::isAttachedNote(const QTextBlock &block) const
{
    return !m_notes.isEmpty() && m_notes.contains(block.blockFormat().intProperty(NoteIdProperty))
           && block.blockFormat().hasProperty(NoteKindProperty);
}

void Writer::writeNoteMark(int noteId, const QTextCharFormat &format)
{
    const auto kind = NoteKind(m_notes.value(noteId).front().blockFormat().intProperty(NoteKindProperty));
    if (kind != NoteKind::Annotation) {
        word("chftn");
        return;
    }
    const QString author = format.stringProperty(NoteAuthorProperty);
    if (!m_inNote && !author.isEmpty()) {
        m_out += "{\\*\\atnid ";
        escaped(author.section(QLatin1Char('\n'), 0, 0), m_out);
        m_out += "}{\\*\\atnauthor ";
        escaped(author.section(QLatin1Char('\n'), 1), m_out);
        m_out += '}';
        m_needSpace = false;
    }
    word("chatn");
}

void Writer::writeNote(int noteId)
{
    m_notesWritten.insert(noteId);
    const std::vector<QTextBlock> &blocks = m_notes[noteId];
    const auto kind = NoteKind(blocks.front().blockFormat().intProperty(NoteKindProperty));
    const RunProps outside = m_props;
    if (kind == NoteKind::Annotation) {
        m_out += "{\\*\\annotation";
    } else {
        m_out += "{\\footnote";
        if (kind == NoteKind::Endnote)
            m_out += "\\ftnalt";
    }
    m_needSpace = true;
    m_inNote = true;
    for (size_t i = 0; i < blocks.size(); ++i)
        writeBlock(blocks[i], i + 1 < blocks.size() ? "par" : nullptr);
    m_inNote = false;
    m_out += '}';
    m_needSpace = false;
    m_props = outside;
}

void Writer::writeParagraphProperties(const QTextBlock &block)
{
    const ParaFormat p = format::readPara(block);
    switch (*p.alignment) {
    case ParaAlignment::Center: word("qc"); break;
    case ParaAlignment::Right: word("qr"); break;
    case ParaAlignment::Justify: word("qj"); break;
    case ParaAlignment::Left: break;
    }
    const int fi = -*p.hangingIndent;
    const int li = *p.leftIndent + *p.hangingIndent;
    if (fi)
        word("fi", fi);
    if (li)
        word("li", li);
    if (*p.rightIndent)
        word("ri", *p.rightIndent);
    if (*p.spaceBefore)
        word("sb", *p.spaceBefore);
    if (*p.spaceAfter)
        word("sa", *p.spaceAfter);
    const int amount = *p.lineSpacing;
    switch (*p.lineSpacingRule) {
    case LineSpacingRule::Single: break;
    case LineSpacingRule::OneAndHalf: word("sl", 360); word("slmult", 1); break;
    case LineSpacingRule::Double: word("sl", 480); word("slmult", 1); break;
    case LineSpacingRule::AtLeast: word("sl", amount); word("slmult", 0); break;
    case LineSpacingRule::Exactly: word("sl", -amount); word("slmult", 0); break;
    case LineSpacingRule::Multiple:
        word("sl", amount * 12);
        word("slmult", 1);
        // 30 and 40 twentieths read back as one and a half and double without this.
        if (amount * 12 == 360 || amount * 12 == 480 || amount <= 0)
            word("kvlinerule", int(LineSpacingRule::Multiple));
        break;
    }
    if (*p.lineSpacingRule == LineSpacingRule::AtLeast && amount == 0)
        word("kvlinerule", int(LineSpacingRule::AtLeast));
    if (*p.lineSpacingRule == LineSpacingRule::Exactly && amount == 0)
        word("kvlinerule", int(LineSpacingRule::Exactly));
    for (int tab : *p.tabStops)
        word("tx", tab);
    if (*p.numbering != Numbering::None) {
        const Numbering numbering = *p.numbering;
        const NumberingStyle style = *p.numberingStyle;
        // The list table for word processors, and the paragraph numbering of older readers,
        // which also carries what the list table cannot say (our reader takes it over the list
        // table's level).
        const QTextList *list = block.textList();
        const int level = std::clamp(list->format().indent() - 1, 0, 8);
        word("ls", m_listTable.overrideOf(list, numbering, *p.numberingStart, style, level));
        if (level)
            word("ilvl", level);
        m_out += "{\\*\\pn";
        m_out += numbering == Numbering::Bullet ? "\\pnlvlblt" : "\\pnlvlbody";
        if (style == NumberingStyle::NoNumber)
            m_out += "\\pnlvlcont";
        if (*p.bulletIndent)
            m_out += "\\pnindent" + QByteArray::number(*p.bulletIndent);
        if (numbering != Numbering::Bullet || *p.numberingStart != 1)
            m_out += "\\pnstart" + QByteArray::number(*p.numberingStart);
        switch (numbering) {
        case Numbering::Arabic: m_out += "\\pndec"; break;
        case Numbering::LowerLetter: m_out += "\\pnlcltr"; break;
        case Numbering::UpperLetter: m_out += "\\pnucltr"; break;
        case Numbering::LowerRoman: m_out += "\\pnlcrm"; break;
        case Numbering::UpperRoman: m_out += "\\pnucrm"; break;
        default: break;
        }
        if (numbering == Numbering::Bullet)
            m_out += "{\\pntxtb\\'95}";
        switch (style) {
        case NumberingStyle::Period:
            if (numbering != Numbering::Bullet)
                m_out += "{\\pntxta.}";
            break;
        case NumberingStyle::RightParen: m_out += "{\\pntxta)}"; break;
        case NumberingStyle::Parens:
            if (numbering != Numbering::Bullet)
                m_out += "{\\pntxtb(}";
            m_out += "{\\pntxta)}";
            if (numbering == Numbering::Bullet)
                m_out += "{\\pntxtb(}";
            break;
        case NumberingStyle::Plain:
            if (numbering == Numbering::Bullet)
                m_out += "{\\pntxta  }";
            break;
        case NumberingStyle::NoNumber: break;
        }
        m_out += '}';
        if (style != NumberingStyle::NoNumber) {
            // The number as text, for readers that know neither form.
            m_out += "{\\listtext ";
            escaped(numbering == Numbering::Bullet ? QString(QChar(0x2022)) : list->itemText(block), m_out);
            m_out += "\\tab}";
        }
        m_needSpace = false;
    } else if (*p.bulletIndent) {
        word("kvbulletindent", *p.bulletIndent);
    }
}

void Writer::writeBlock(const QTextBlock &block, const char *ending)
{
    const int blockStart = block.position();
    const int blockEnd = blockStart + block.length() - 1; // position of its paragraph break
    // A note goes whole with its reference, even where the range ends before it.
    const int rangeStart = m_inNote ? blockStart : m_start;
    const int rangeEnd = m_inNote ? blockEnd + 1 : m_end;
    const bool inTable = !m_flattenCell && !m_inNote && qobject_cast<QTextTable *>(m_doc.frameAt(blockStart));
    if (!inTable && !m_inNote && (block.blockFormat().pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore))
        word("page");
    word("pard");
    if (inTable)
        word("intbl");
    writeParagraphProperties(block);
    const QByteArray kept = block.blockFormat().property(KeptParagraphGroups).toByteArray();
    if (!kept.isEmpty() && !m_keptWritten.contains(kept)) {
        m_keptWritten.insert(kept);
        m_out += kept;
        m_needSpace = false;
    }
    if (block.length() == 1)
        writeCharProps(block.charFormat());

    // Consecutive fragments of one link form one HYPERLINK field.
    bool inLink = false;
    QString linkAddress;
    bool linkEffect = false;
    RunProps beforeLink;
    auto closeLink = [&] {
        if (!inLink)
            return;
        m_out += "}}";
        m_needSpace = false;
        m_props = beforeLink;
        inLink = false;
    };
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const int from = std::max(rangeStart, fragment.position());
        const int to = std::min(rangeEnd, fragment.position() + fragment.length());
        if (from >= to)
            continue;
        const QTextCharFormat qt = fragment.charFormat();
        const QString address = qt.anchorHref();
        const bool effect = qt.boolProperty(format::LinkEffect);
        const bool isLink = !address.isEmpty() || effect;
        if (inLink && (!isLink || address != linkAddress || effect != linkEffect))
            closeLink();
        QString value = fragment.text().mid(from - fragment.position(), to - from);
        if (isLink && !inLink) {
            inLink = true;
            linkAddress = address;
            linkEffect = effect;
            beforeLink = m_props;
            // Without an address the link points at its own text, for other readers; the
            // flags tell this reader what was really set.
            const int flags = (effect ? 0 : 1) | (address.isEmpty() ? 2 : 0);
            m_out += "{\\field";
            if (flags)
                m_out += "{\\*\\kvlink" + QByteArray::number(flags) + '}';
            m_out += "{\\*\\fldinst HYPERLINK \"";
            QString target = address.isEmpty() ? value : address;
            target.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('"'), QLatin1String("\\\""));
            escaped(target, m_out);
            m_out += "\"}{\\fldrslt";
            m_needSpace = true;
        }
        writeCharProps(qt);
        if (qt.isImageFormat()) {
            for (int i = 0; i < value.size(); ++i)
                writePicture(qt.toImageFormat());
            continue;
        }
        const int noteId = m_notes.isEmpty() ? 0 : qt.intProperty(NoteIdProperty);
        if (noteId && m_notes.contains(noteId) && qt.boolProperty(NoteMarkProperty))
            writeNoteMark(noteId, qt);
        else
            writeFragmentText(value);
        if (noteId && !m_inNote && m_notes.contains(noteId) && !m_notesWritten.contains(noteId))
            writeNote(noteId);
    }
    closeLink();
    if (blockEnd >= rangeStart && blockEnd < rangeEnd && ending)
        word(ending);
    m_out += '\n';
    m_needSpace = false;
}

void Writer::writeTable(const QTextTable *table)
{
    const int rows = table->rows();
    const int columns = table->columns();
    // Right edges of the columns in twips: fixed and percentage widths as set, the others an
    // equal share of a 6.25 inch line.
    constexpr int kLineTwips = 9000;
    const QList<QTextLength> constraints = table->format().columnWidthConstraints();
    std::vector<int> rights;
    rights.reserve(size_t(columns));
    int right = 0;
    for (int c = 0; c < columns; ++c) {
        int width = kLineTwips / std::max(1, columns);
        if (c < constraints.size()) {
            const QTextLength length = constraints.at(c);
            if (length.type() == QTextLength::FixedLength)
                width = format::pixelsToTwips(length.rawValue());
            else if (length.type() == QTextLength::PercentageLength)
                width = int(std::lround(kLineTwips * length.rawValue() / 100.0));
        }
        right += std::max(1, width);
        rights.push_back(right);
    }
    for (int r = 0; r < rows; ++r) {
        // Rows outside the range are left out of a part of the document.
        bool rowInRange = false;
        for (int c = 0; c < columns && !rowInRange; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            rowInRange = intersects(cell.firstPosition(), cell.lastPosition() + 1);
        }
        if (!rowInRange)
            continue;
        word("trowd");
        for (int c = 0; c < columns; ++c) {
            // Merged cells: every grid cell is written, the covered ones marked as such.
            const QTextTableCell cell = table->cellAt(r, c);
            if (cell.rowSpan() > 1)
                word(cell.row() == r ? "clvmgf" : "clvmrg");
            if (cell.columnSpan() > 1)
                word(cell.column() == c ? "clmgf" : "clmrg");
            word("cellx", rights[size_t(c)]);
        }
        m_out += '\n';
        m_needSpace = false;
        for (int c = 0; c < columns; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            if (cell.row() != r || cell.column() != c) {
                // Covered by a merged cell: an empty cell keeps the grid.
                word("pard");
                word("intbl");
                word("cell");
                m_out += '\n';
                m_needSpace = false;
                continue;
            }
            // The cell's paragraphs, without the notes that go inside their references.
            std::vector<QTextBlock> blocks;
            const QTextBlock last = m_doc.findBlock(cell.lastPosition());
            for (QTextBlock block = m_doc.findBlock(cell.firstPosition()); block.isValid(); block = block.next()) {
                if (!isAttachedNote(block) || blocks.empty())
                    blocks.push_back(block);
                if (block == last)
                    break;
            }
            for (size_t i = 0; i < blocks.size(); ++i) {
                const bool isLast = i + 1 == blocks.size();
                writeBlock(blocks[i], isLast ? nullptr : "par");
                if (isLast) {
                    m_out.chop(1);
                    word("cell");
                    m_out += '\n';
                    m_needSpace = false;
                }
            }
        }
        word("row");
        m_out += '\n';
        m_needSpace = false;
    }
}

bool Writer::writeWithinCell(const QTextTable *table)
{
    // A range inside one cell is text copied from the cell, not a table.
    const QTextTableCell cell = table->cellAt(m_start);
    if (!cell.isValid() || m_start < cell.firstPosition() || m_end > cell.lastPosition())
        return false;
    m_flattenCell = true;
    const QTextBlock last = m_doc.findBlock(cell.lastPosition());
    for (QTextBlock block = m_doc.findBlock(cell.firstPosition()); block.isValid(); block = block.next()) {
        if (intersects(block.position(), block.position() + block.length()) && !isAttachedNote(block))
            writeBlock(block, "par");
        if (block == last)
            break;
    }
    m_flattenCell = false;
    return true;
}

void Writer::writeFrame(const QTextFrame *frame)
{
    for (auto it = frame->begin(); !it.atEnd(); ++it) {
        if (const QTextFrame *child = it.currentFrame()) {
            if (!intersects(child->firstPosition(), child->lastPosition() + 1))
                continue;
            if (const auto *table = qobject_cast<const QTextTable *>(child)) {
                if (!writeWithinCell(table))
                    writeTable(table);
            }
            else
                writeFrame(child);
            continue;
        }
        const QTextBlock block = it.currentBlock();
        if (!intersects(block.position(), block.position() + block.length()) || isAttachedNote(block))
            continue;
        writeBlock(block, "par");
    }
}

QByteArray Writer::run()
{
    m_out.reserve(m_doc.characterCount() * 2 + 256);
    collectNotes();
    writeFrame(m_doc.rootFrame());
    const QByteArray body = m_out;

    QByteArray head = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1{\\fonttbl";
    for (int i = 0; i < m_fonts.size(); ++i) {
        head += "{\\f" + QByteArray::number(i) + "\\fnil\\fcharset0 ";
        escaped(m_fonts[i], head);
        head += ";}";
    }
    head += "}\n";
    if (!m_colours.empty()) {
        head += "{\\colortbl ;";
        for (Colour colour : m_colours) {
            head += "\\red" + QByteArray::number(colour & 0xFF) + "\\green" + QByteArray::number((colour >> 8) & 0xFF)
                    + "\\blue" + QByteArray::number((colour >> 16) & 0xFF) + ';';
        }
        head += "}\n";
    }
    head += m_listTable.tables();
    const QByteArray kept = m_doc.rootFrame()->frameFormat().property(KeptDocumentGroups).toByteArray();
    if (!kept.isEmpty() && m_start == 0)
        head += kept + '\n';
    return head + body + "}\n";
}

} // namespace

QByteArray writeRtf(const QTextDocument &document, int start, int end)
{
    const int length = document.characterCount();
    start = std::clamp(start, 0, length);
    end = std::clamp(end, start, length);
    Writer writer(document, start, end);
    return writer.run();
}

QByteArray writeRtf(const QTextDocument &document)
{
    return writeRtf(document, 0, document.characterCount());
}

} // namespace kvrtb::rtf
