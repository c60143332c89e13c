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

// The Unicode character a symbol font's character looks like (0 when it has none of its own).
char16_t fromSymbolFont(int code, bool wingdings)
{
    if (wingdings) {
        switch (code) {
        case 0x6C: return 0x25CF; // black circle
        case 0x6E: return 0x25A0; // black square
        case 0x71: return 0x2751; // shadowed white square
        case 0x76: return 0x2756; // black diamond minus white X
        case 0x9F: return 0x2022;
        case 0xA1: return 0x25CB; // white circle
        case 0xA7: return 0x25AA; // small black square
        case 0xA8: return 0x25FB; // white medium square
        case 0xD8: return 0x27A2; // arrowhead
        case 0xFC: return 0x2713; // check mark
        default: return 0;
        }
    }
    switch (code) {
    case 0xB7: return 0x2022; // bullet
    case 0xA8: return 0x2666; // diamond
    default: return 0;
    }
}

} // namespace

QString bulletOfLevel(const QString &characters, const QString &fontName)
{
    const bool wingdings = fontName.startsWith(QLatin1String("Wingdings"), Qt::CaseInsensitive);
    const bool symbol = wingdings || fontName.compare(QLatin1String("Symbol"), Qt::CaseInsensitive) == 0;
    QString bullet;
    // The first character is the text's length; what follows it (such as the ";" that ends the
    // group) is not shown.
    const qsizetype length = characters.isEmpty() ? 0 : std::min<qsizetype>(characters.at(0).unicode(), characters.size() - 1);
    for (qsizetype i = 1; i <= length; ++i) {
        char16_t c = characters.at(i).unicode();
        if (c < 0x20 || c == 0xFFFD)
            continue; // a number placeholder or an undecodable byte
        const bool privateUse = c >= 0xF000 && c <= 0xF0FF;
        if (privateUse || symbol) {
            const char16_t mapped = fromSymbolFont(privateUse ? c - 0xF000 : c, wingdings || (privateUse && !symbol));
            if (mapped)
                c = mapped;
            else if (privateUse)
                c = 0x2022;
        }
        bullet += QChar(c);
    }
    bullet = bullet.trimmed();
    return bullet.isEmpty() || bullet == QLatin1String("?") ? QStringLiteral("\u2022") : bullet;
}

int ListTableBuilder::overrideOf(const QTextList *list, Numbering numbering, int start, NumberingStyle style, int level,
                                 bool followsList, const QString &bullet)
{
    const auto found = m_index.constFind(list);
    if (found != m_index.constEnd()) {
        m_last = found.value();
        return m_last + 1;
    }
    level = std::clamp(level, 0, 8);
    if (!followsList || m_last < 0 || m_entries[size_t(m_last)].levels[level].set) {
        m_entries.emplace_back();
        m_last = int(m_entries.size()) - 1;
    }
    m_entries[size_t(m_last)].levels[level] = Level{true, numbering, start, style, bullet};
    m_index.insert(list, m_last);
    return m_last + 1;
}

QByteArray ListTableBuilder::levelText(Numbering numbering, NumberingStyle style, int level, const QString &bullet)
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
        const char16_t shown = bullet.isEmpty() ? char16_t(0x2022) : bullet.at(0).unicode();
        const bool plain = shown >= 0x20 && shown < 0x7F && shown != '\\' && shown != '{' && shown != '}';
        text = plain ? QByteArray(1, char(shown)) : "\\u" + QByteArray::number(int(qint16(shown))) + " ?";
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
        // Levels up to the deepest one used (a list of one level is "simple").
        int levels = 9;
        while (levels > 1 && !entry.levels[levels - 1].set)
            --levels;
        out += "\n{\\list\\listtemplateid" + QByteArray::number(int(i) + 1) + (levels == 1 ? "\\listsimple1" : "\\listsimple0");
        for (int level = 0; level < levels; ++level) {
            // Levels no list uses are numbered 1., 2., ... as word processors do.
            const Level &own = entry.levels[level];
            const Numbering numbering = own.numbering;
            const NumberingStyle style = own.style;
            const QByteArray nfc = QByteArray::number(nfcOf(numbering, style));
            const QByteArray text = levelText(numbering, style, level, own.bullet);
            const bool hasNumber = numbering != Numbering::Bullet && style != NumberingStyle::NoNumber;
            out += "{\\listlevel\\levelnfc" + nfc + "\\levelnfcn" + nfc + "\\leveljc0\\levelfollow0\\levelstartat"
                   + QByteArray::number(own.start) + "{\\leveltext" + text + ";}{\\levelnumbers"
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
