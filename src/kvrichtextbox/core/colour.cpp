#include "core/colour.h"

#include <QGuiApplication>
#include <QPalette>

namespace kvrtb {

namespace {

// The platform's system colour indexes, mapped to the palette role that plays the same part.
bool systemColourRole(quint32 index, QPalette::ColorGroup *group, QPalette::ColorRole *role)
{
    *group = QPalette::Active;
    switch (index) {
    case 0: *role = QPalette::Window; return true;          // scroll bar
    case 1: *role = QPalette::Window; return true;          // desktop
    case 2: *role = QPalette::Highlight; return true;       // active caption
    case 3: *role = QPalette::Window; return true;          // inactive caption
    case 4: *role = QPalette::Window; return true;          // menu
    case 5: *role = QPalette::Base; return true;            // window background
    case 6: *role = QPalette::Shadow; return true;          // window frame
    case 7: *role = QPalette::WindowText; return true;      // menu text
    case 8: *role = QPalette::Text; return true;            // window text
    case 9: *role = QPalette::HighlightedText; return true; // caption text
    case 10: *role = QPalette::Mid; return true;            // active border
    case 11: *role = QPalette::Mid; return true;            // inactive border
    case 12: *role = QPalette::Dark; return true;           // application workspace
    case 13: *role = QPalette::Highlight; return true;      // highlight
    case 14: *role = QPalette::HighlightedText; return true;
    case 15: *role = QPalette::Button; return true;         // button face
    case 16: *role = QPalette::Dark; return true;           // button shadow
    case 17: *group = QPalette::Disabled; *role = QPalette::Text; return true; // grey text
    case 18: *role = QPalette::ButtonText; return true;
    case 19: *group = QPalette::Inactive; *role = QPalette::WindowText; return true;
    case 20: *role = QPalette::Light; return true;          // button highlight
    case 21: *role = QPalette::Shadow; return true;         // 3-D dark shadow
    case 22: *role = QPalette::Midlight; return true;       // 3-D light
    case 23: *role = QPalette::ToolTipText; return true;
    case 24: *role = QPalette::ToolTipBase; return true;
    default: return false;
    }
}

} // namespace

Colour translateColour(Colour colour)
{
    if (!isSystemColour(colour))
        return colour;
    QPalette::ColorGroup group = QPalette::Active;
    QPalette::ColorRole role = QPalette::Base;
    if (!systemColourRole(colour & 0x00FFFFFFu, &group, &role))
        return kAutoColour;
    const QPalette palette = qGuiApp ? QGuiApplication::palette() : QPalette();
    return fromQColor(palette.color(group, role));
}

QColor toQColor(Colour colour)
{
    const Colour rgb = translateColour(colour);
    if (rgb == kAutoColour)
        return QColor();
    return QColor(int(rgb & 0xFF), int((rgb >> 8) & 0xFF), int((rgb >> 16) & 0xFF));
}

Colour fromQColor(const QColor &colour)
{
    if (!colour.isValid())
        return kAutoColour;
    return Colour(colour.red()) | (Colour(colour.green()) << 8) | (Colour(colour.blue()) << 16);
}

} // namespace kvrtb
