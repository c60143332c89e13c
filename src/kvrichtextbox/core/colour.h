#pragma once

#include <QColor>
#include <QtGlobal>

namespace kvrtb {

/// \brief A colour as the control's interface exchanges it: 0x00BBGGRR.
///
/// A value with the top bit set names a system colour (0x80000000 | index, e.g. 0x80000005 the
/// window background) and is translated to RGB with `translateColour` before it is used.
using Colour = quint32;

/// The "automatic" colour: for a background it means no highlight, for text the default colour.
inline constexpr Colour kAutoColour = 0xFFFFFFFFu;

/// True when the value names a system colour rather than an RGB value.
inline constexpr bool isSystemColour(Colour colour)
{
    return (colour & 0x80000000u) != 0 && colour != kAutoColour;
}

/// Translates a system colour to its RGB value from the application palette; RGB values and
/// `kAutoColour` come back unchanged. An unknown system colour index translates to `kAutoColour`
/// (the failed translation the highlight commands compare against).
Colour translateColour(Colour colour);

/// 0x00BBGGRR to QColor (system colours are translated first; `kAutoColour` gives an invalid QColor).
QColor toQColor(Colour colour);

/// QColor to 0x00BBGGRR; an invalid QColor gives `kAutoColour`.
Colour fromQColor(const QColor &colour);

} // namespace kvrtb
