#include "printing/pagesetup.h"

#include <QLocale>
#include <QSizeF>

#include <algorithm>

namespace kvrtb {

QPageSize defaultPaperSize()
{
    const bool inches = QLocale().measurementSystem() != QLocale::MetricSystem;
    return QPageSize(inches ? QPageSize::Letter : QPageSize::A4);
}

int effectiveMarginTwips(int printerMargin, const QPageSize &paper)
{
    const QSizeF points = paper.size(QPageSize::Point);
    const int narrowSide = int(std::min(points.width(), points.height()) * 20);
    const int widest = std::max(0, (narrowSide - kTwipsPerInch) / 2);
    return std::clamp(printerMargin, 0, widest);
}

int printableWidthTwips(int printerMargin, const QPageSize &paper)
{
    const int width = int(paper.size(QPageSize::Point).width() * 20);
    return width - 2 * effectiveMarginTwips(printerMargin, paper);
}

} // namespace kvrtb
