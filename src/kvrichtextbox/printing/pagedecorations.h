#pragma once

#include "core/kvrtbtypes.h"

#include <QDate>
#include <QString>

class QPainter;

namespace kvrtb {

struct PageFrame;

/// \brief What the control prints around the text of each page.
///
/// The heading goes in the top margin (`CenterAlignHeading`, `RightAlignHeading`,
/// `LeftAlignHeading`) or the bottom margin (the `...Bottom` values), aligned as named. Page
/// numbers, the date and the custom text go in the other margin: the date at the left, the
/// custom text in the middle, "Page N" at the right, as `PageNumAndNow` says: `PrintBoth` date
/// and number, `PrintPageOnly` the number, `PrintNowOnly` the date, `PrintCustom` the custom
/// text, `PrintCustomWNum` the custom text and the number, `PrintNiether` nothing. Values
/// outside the enums count as the default (centred heading at the top; nothing).
struct PageDecorations {
    QString heading;
    int headingAlign = CenterAlignHeading;
    int pageNumAndNow = PrintNiether;
    QString customText;
};

/// "Page 3": the page-number text.
QString pageNumberText(int page);
/// The date as printed: the locale's short form.
QString printedDateText(const QDate &date);

/// Draws the decorations of one page in its margins; \a date is the day printed.
void drawPageDecorations(QPainter &painter, const PageFrame &frame, const PageDecorations &decorations,
                         const QDate &date);

} // namespace kvrtb
