#include "printing/pagedecorations.h"

#include "core/editorsurface.h"

#include <QFontDatabase>
#include <QLocale>
#include <QPainter>

namespace kvrtb {

namespace {

bool headingAtBottom(int align)
{
    return align == CenterAlignHeadingBottom || align == RightAlignHeadingBottom || align == LeftAlignHeadingBottom;
}

Qt::Alignment headingAlignment(int align)
{
    switch (align) {
    case RightAlignHeading:
    case RightAlignHeadingBottom: return Qt::AlignRight;
    case LeftAlignHeading:
    case LeftAlignHeadingBottom: return Qt::AlignLeft;
    default: return Qt::AlignHCenter;
    }
}

} // namespace

QString pageNumberText(int page)
{
    return QStringLiteral("Page %1").arg(page);
}

QString printedDateText(const QDate &date)
{
    return QLocale().toString(date, QLocale::ShortFormat);
}

void drawPageDecorations(QPainter &painter, const PageFrame &frame, const PageDecorations &decorations,
                         const QDate &date)
{
    const bool bottomHeading = headingAtBottom(decorations.headingAlign);
    // The margin bands, as wide as the text, the text centred in them vertically.
    const QRectF top(frame.body.left(), frame.paper.top(), frame.body.width(), frame.body.top() - frame.paper.top());
    const QRectF bottom(frame.body.left(), frame.body.bottom(), frame.body.width(),
                        frame.paper.bottom() - frame.body.bottom());
    const QRectF headingBand = bottomHeading ? bottom : top;
    const QRectF numberBand = bottomHeading ? top : bottom;

    painter.save();
    painter.setPen(Qt::black);
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    if (!decorations.heading.isEmpty()) {
        font.setPointSize(12);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(headingBand, headingAlignment(decorations.headingAlign) | Qt::AlignVCenter | Qt::TextSingleLine,
                         decorations.heading);
    }
    const int choice = decorations.pageNumAndNow;
    const bool withDate = choice == PrintBoth || choice == PrintNowOnly;
    const bool withNumber = choice == PrintBoth || choice == PrintPageOnly || choice == PrintCustomWNum;
    const bool withCustom = choice == PrintCustom || choice == PrintCustomWNum;
    font.setPointSize(10);
    font.setBold(false);
    painter.setFont(font);
    const int flags = Qt::AlignVCenter | Qt::TextSingleLine;
    if (withDate)
        painter.drawText(numberBand, Qt::AlignLeft | flags, printedDateText(date));
    if (withCustom && !decorations.customText.isEmpty())
        painter.drawText(numberBand, Qt::AlignHCenter | flags, decorations.customText);
    if (withNumber)
        painter.drawText(numberBand, Qt::AlignRight | flags, pageNumberText(frame.page));
    painter.restore();
}

} // namespace kvrtb
