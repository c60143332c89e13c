#include "surface/rtf/rtfwriter.h"

#include <QTextDocument>

// The RTF writer is being written; until it lands it writes the plain text only, in an RTF
// envelope, so that no document text is ever lost.

namespace kvrtb::rtf {

QByteArray writeRtf(const QTextDocument &document, int start, int end)
{
    const QString text = document.toPlainText().mid(start, end - start);
    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\deff0\\uc1\n";
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if (u == '\n')
            out += "\\par\n";
        else if (u == '\\' || u == '{' || u == '}')
            out += '\\' + QByteArray(1, char(u));
        else if (u >= 0x20 && u < 0x80)
            out += char(u);
        else
            out += "\\u" + QByteArray::number(short(u)) + '?';
    }
    out += "}\n";
    return out;
}

QByteArray writeRtf(const QTextDocument &document)
{
    return writeRtf(document, 0, document.characterCount() - 1);
}

} // namespace kvrtb::rtf
