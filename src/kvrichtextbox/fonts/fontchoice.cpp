#include "fonts/fontchoice.h"

#include <QStringList>

#include <cmath>

namespace kvrtb {

QStringList FontChoice::styleNames()
{
    return {QStringLiteral("Regular"), QStringLiteral("Italic"), QStringLiteral("Bold"), QStringLiteral("Bold Italic")};
}

QString FontChoice::styleName() const
{
    return styleNames().at((bold ? 2 : 0) + (italic ? 1 : 0));
}

void FontChoice::setStyleName(const QString &name)
{
    const int index = int(styleNames().indexOf(name.trimmed(), 0));
    const QString lower = name.trimmed().toLower();
    if (index >= 0) {
        bold = index >= 2;
        italic = index % 2 == 1;
        return;
    }
    // Names from elsewhere ("bold italic", "Oblique", "Bold Oblique"): read their words.
    bold = lower.contains(QLatin1String("bold"));
    italic = lower.contains(QLatin1String("italic")) || lower.contains(QLatin1String("oblique"));
}

FontChoice FontChoice::fromCharFormat(const CharFormat &format, const QFont &fallback)
{
    FontChoice choice = fromFont(fallback);
    if (format.fontName && !format.fontName->isEmpty())
        choice.family = *format.fontName;
    if (format.fontSize && *format.fontSize > 0)
        choice.size = *format.fontSize;
    choice.bold = format.bold.value_or(choice.bold);
    choice.italic = format.italic.value_or(choice.italic);
    choice.underline = format.underline.value_or(choice.underline);
    choice.strikeThrough = format.strikeThrough.value_or(choice.strikeThrough);
    if (format.color && *format.color != kAutoColour)
        choice.colour = *format.color;
    return choice;
}

FontChoice FontChoice::fromFont(const QFont &font)
{
    FontChoice choice;
    choice.family = font.family();
    choice.bold = font.bold();
    choice.italic = font.italic();
    choice.size = font.pointSizeF() > 0 ? font.pointSizeF() : 10;
    choice.strikeThrough = font.strikeOut();
    choice.underline = font.underline();
    return choice;
}

FontChoice FontChoice::fromDefaultFontData(const DEFUALT_FONT_DATA &data)
{
    FontChoice choice;
    choice.family = data.tFONTNAME;
    choice.setStyleName(data.tFONTSTYLE);
    choice.size = data.tFONTSIZE > 0 ? data.tFONTSIZE : 10;
    choice.strikeThrough = data.tFONTSTRIKETHROUGH;
    choice.underline = data.tFONTUNDERLINE;
    return choice;
}

QFont FontChoice::toFont() const
{
    QFont font(family);
    font.setPointSizeF(size > 0 ? size : 10);
    font.setBold(bold);
    font.setItalic(italic);
    font.setStrikeOut(strikeThrough);
    font.setUnderline(underline);
    return font;
}

CharFormat FontChoice::toCharFormat() const
{
    CharFormat format;
    if (!family.isEmpty())
        format.fontName = family;
    format.fontSize = size;
    format.bold = bold;
    format.italic = italic;
    format.strikeThrough = strikeThrough;
    format.underline = underline;
    if (colour)
        format.color = *colour;
    return format;
}

DEFUALT_FONT_DATA FontChoice::toDefaultFontData() const
{
    DEFUALT_FONT_DATA data;
    data.tFONTNAME = family;
    data.tFONTSTYLE = styleName();
    data.tFONTSIZE = qint16(std::lround(qBound(1.0, size, 32767.0)));
    data.tFONTSTRIKETHROUGH = strikeThrough;
    data.tFONTUNDERLINE = underline;
    return data;
}

CharFormat FontChoice::changesFrom(const FontChoice &before) const
{
    CharFormat format;
    if (family != before.family && !family.isEmpty())
        format.fontName = family;
    if (!qFuzzyCompare(size, before.size))
        format.fontSize = size;
    if (bold != before.bold)
        format.bold = bold;
    if (italic != before.italic)
        format.italic = italic;
    if (strikeThrough != before.strikeThrough)
        format.strikeThrough = strikeThrough;
    if (underline != before.underline)
        format.underline = underline;
    if (colour && colour != before.colour)
        format.color = *colour;
    return format;
}

bool FontChoice::operator==(const FontChoice &other) const
{
    return family == other.family && bold == other.bold && italic == other.italic
        && qFuzzyCompare(size, other.size) && strikeThrough == other.strikeThrough
        && underline == other.underline && colour == other.colour;
}

} // namespace kvrtb
