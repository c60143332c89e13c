#pragma once

#include <QPageSize>

namespace kvrtb {

/// Twips in an inch and in a centimetre.
inline constexpr int kTwipsPerInch = 1440;
inline constexpr double kTwipsPerCentimetre = 1440.0 / 2.54;

/// \brief The paper the control prints on unless the user picks another in the print dialog:
/// Letter where the locale measures in inches, A4 where it is metric.
QPageSize defaultPaperSize();

/// \brief The page margin in twips as printing applies it.
///
/// `PrinterMargin` is meant as one of `PrinterMarginSetting` (1080 or 1440 twips), but any value
/// is taken: a negative one counts as no margin, and one so wide that less than an inch of
/// text would remain is narrowed to leave that inch.
int effectiveMarginTwips(int printerMargin, const QPageSize &paper);

/// The width of the text on a printed page in twips: the paper's width less both margins.
/// The ruler's right margin sits there, and wrapping to the ruler wraps there.
int printableWidthTwips(int printerMargin, const QPageSize &paper = defaultPaperSize());

} // namespace kvrtb
