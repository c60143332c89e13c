#include "surface/rtf/rtflisttable.h"

#include <algorithm>

namespace kvrtb::rtf {

namespace {

// The RTF number format of a numbering (\levelnfc).
int nfcOf(Numbering numbering, NumberingStyle style)
{
    if (style == NumberingStyle::NoNumber)
        return 255;
    switch (numbering) {
    case Numbering::UpperRoman: return 1;
    case Numbering::LowerRoman: return 2;
    case Numbering::UpperLetter: return 3;
    case Numbering::LowerLetter: return 4;
    case Numbering::Bullet: return 23;
    default: return 0;
    }
}

QByteArray hexByte(int value)
{
    static const char hex[] = "0123456789abcdef";
    QByteArray out = "\\'";
    out += hex[(value >> 4) & 15];
    out += hex[value & 15];
    return out;
}

} // namespace

int ListTableBuilder::overrideOf(const QTextList *list, Numbering numbering, int start, NumberingStyle style, int level)
{
    const auto found = m_index.constFind(list);
    if (found != m_index.constEnd())
        return found.value() + 1;
    m_entries.push_back(Entry{numbering, start, style, std::clamp(level, 0, 8)});
    const int index = int(m_entries.size()) - 1;
    m_index.insert(list, index);
    return index + 1;
}

QByteArray ListTableBuilder::levelText(Numbering numbering, NumberingStyle style, int level)
{
    // A length byte, then the text with the level's number as the byte of its level.
    QByteArray text;
    int length = 0;
    auto literal = [&](const char *s) {
        text += s;
        length += int(qstrlen(s));
    };
    if (style == NumberingStyle::NoNumber)
        return hexByte(0);
    if (numbering == Numbering::Bullet) {
        text = "\\u8226 ?";
        length = 1;
        if (style == NumberingStyle::RightParen || style == NumberingStyle::Parens) {
            text += ')';
            ++length;
        }
        return hexByte(length) + text;
    }
    if (style == NumberingStyle::Parens)
        literal("(");
    text += hexByte(level);
    ++length;
    switch (style) {
    case NumberingStyle::Period: literal("."); break;
    case NumberingStyle::RightParen:
    case NumberingStyle::Parens: literal(")"); break;
    default: break;
    }
    return hexByte(length) + text;
}

QByteArray ListTableBuilder::tables() const
{
    if (m_entries.empty())
        return QByteArray();
    QByteArray out = "{\\*\\listtable";
    for (size_t i = 0; i < m_entries.size(); ++i) {
        const Entry &entry = m_entries[i];
        out += "\n{\\list\\listtemplateid" + QByteArray::number(int(i) + 1) + "\\listsimple0";
        for (int level = 0; level < 9; ++level) {
            // Levels other than the list's own are numbered 1., 2., ... as word processors do.
            const bool own = level == entry.level;
            const Numbering numbering = own ? entry.numbering : Numbering::Arabic;
            const NumberingStyle style = own ? entry.style : NumberingStyle::Period;
            const QByteArray nfc = QByteArray::number(nfcOf(numbering, style));
            const QByteArray text = levelText(numbering, style, level);
            const bool hasNumber = numbering != Numbering::Bullet && style != NumberingStyle::NoNumber;
            out += "{\\listlevel\\levelnfc" + nfc + "\\levelnfcn" + nfc + "\\leveljc0\\levelfollow0\\levelstartat"
                   + QByteArray::number(own ? entry.start : 1) + "{\\leveltext" + text + ";}{\\levelnumbers"
                   + (hasNumber ? hexByte(style == NumberingStyle::Parens ? 2 : 1) : QByteArray()) + ";}\\fi-360\\li"
                   + QByteArray::number(720 * (level + 1)) + '}';
        }
        out += "\\listid" + QByteArray::number(int(i) + 1) + '}';
    }
    out += "}\n{\\*\\listoverridetable";
    for (size_t i = 0; i < m_entries.size(); ++i) {
        out += "{\\listoverride\\listid" + QByteArray::number(int(i) + 1) + "\\listoverridecount0\\ls"
               + QByteArray::number(int(i) + 1) + '}';
    }
    out += "}\n";
    return out;
}

} // namespace kvrtb::rtf
