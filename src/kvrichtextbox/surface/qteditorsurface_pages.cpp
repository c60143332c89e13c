// Paged rendering of the document (printing, print preview) and the paragraph and origin
// queries the ruler draws from.

#include "surface/formatmapping.h"
#include "surface/drawnformats.h"
#include "surface/qteditorsurface.h"
#include "surface/rtf/rtfformats.h"
#include "surface/surfacetextedit.h"

#include <QAbstractTextDocumentLayout>
#include <QPagedPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>

#include <algorithm>
#include <memory>

namespace kvrtb {

namespace {

constexpr double kTwipsPerInch = 1440.0;

// A copy of the document to lay out on pages: the selection only when asked for and there is
// one, else everything. The copy keeps every format, list, table and picture.
std::unique_ptr<QTextDocument> printableCopy(const QTextDocument *source, const QTextCursor &selection,
                                             bool selectionOnly)
{
    std::unique_ptr<QTextDocument> copy(source->clone());
    if (selectionOnly && selection.hasSelection()) {
        QTextCursor tail(copy.get());
        tail.setPosition(selection.selectionEnd());
        tail.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
        tail.removeSelectedText();
        QTextCursor head(copy.get());
        head.setPosition(selection.selectionStart(), QTextCursor::KeepAnchor);
        head.removeSelectedText();
    }
    return copy;
}

// The layout scales fonts, frames, tables, pictures, tab stops, paragraph spacing and line
// heights to the device it lays out for, but not the paragraphs' left and right margins and
// first-line indent, which the editor keeps in screen pixels: scaled here, a paragraph indented an
// inch on screen is an inch in on paper.
void scaleParagraphGeometry(QTextDocument *document, qreal factor)
{
    if (qFuzzyCompare(factor, 1.0))
        return;
    QTextCursor cursor(document);
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        QTextBlockFormat format = block.blockFormat();
        format.setLeftMargin(format.leftMargin() * factor);
        format.setRightMargin(format.rightMargin() * factor);
        format.setTextIndent(format.textIndent() * factor);
        cursor.setPosition(block.position());
        cursor.setBlockFormat(format);
    }
}

// Small capitals spelt out as the capitals they show: each run of lower-case letters becomes its
// upper-case letters at seven tenths of the size, the rest stays at full size, as the layout
// draws small capitals itself. Needed on recording devices (the print preview records its pages
// and plays them back): they keep each text item's text and font but lose the reduced font of a
// small-capitals item, so the lower-case letters would play back shrunk out of sight.
void spellOutSmallCaps(QTextDocument *document)
{
    struct Run {
        int position;
        QString text;
        QTextCharFormat format;
    };
    QList<Run> runs;
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (fragment.charFormat().fontCapitalization() == QFont::SmallCaps)
                runs.append({fragment.position(), fragment.text(), fragment.charFormat()});
        }
    }
    QTextCursor cursor(document);
    // From the end backwards: upper-casing may lengthen a run (a sharp s becomes two letters),
    // which would move every run after it.
    for (auto run = runs.crbegin(); run != runs.crend(); ++run) {
        QTextCharFormat small = run->format;
        small.setFontCapitalization(QFont::MixedCase);
        const QFont font = run->format.font().resolve(document->defaultFont());
        if (font.pointSizeF() > 0)
            small.setFontPointSize(font.pointSizeF() * 0.7);
        else
            small.setProperty(QTextFormat::FontPixelSize, (font.pixelSize() * 7 + 5) / 10);
        const QString &text = run->text;
        for (qsizetype end = text.size(); end > 0;) {
            const bool lower = text.at(end - 1).isLower();
            qsizetype start = end - 1;
            while (start > 0 && text.at(start - 1).isLower() == lower)
                --start;
            cursor.setPosition(run->position + int(start));
            cursor.setPosition(run->position + int(end), QTextCursor::KeepAnchor);
            if (lower) {
                cursor.insertText(text.mid(start, end - start).toUpper(), small);
            } else {
                // Merged, not replaced: the piece may hold a picture, whose format must stay.
                QTextCharFormat mixed;
                mixed.setFontCapitalization(QFont::MixedCase);
                cursor.mergeCharFormat(mixed);
            }
            end = start;
        }
    }
}

} // namespace

ParaFormat QtEditorSurface::paraFormatAt(int position) const
{
    flushBatch();
    return format::readPara(document()->findBlock(clamp(position)));
}

int QtEditorSurface::textOriginX() const
{
    const QWidget *viewport = m_edit->viewport();
    const int margin = int(document()->documentMargin());
    return viewport->mapTo(m_edit, QPoint(0, 0)).x() + margin - m_edit->horizontalScrollBar()->value();
}

std::optional<DocumentPage> QtEditorSurface::documentPage() const
{
    const QList<int> setup = document()->rootFrame()->frameFormat().property(rtf::PageSetupProperty).value<QList<int>>();
    if (setup.size() != rtf::PageSetupFields)
        return std::nullopt;
    DocumentPage page;
    page.paperTwips = QSize(setup[rtf::PaperWidth], setup[rtf::PaperHeight]);
    if (!page.hasPaper())
        page.paperTwips = QSize();
    // Margins not given take the defaults of RTF: an inch and a quarter at the sides, an inch
    // at the top and bottom.
    const bool anyMargin = setup[rtf::MarginLeft] || setup[rtf::MarginTop] || setup[rtf::MarginRight]
                           || setup[rtf::MarginBottom];
    if (anyMargin) {
        const auto orDefault = [](int given, int fallback) { return given > 0 ? given : fallback; };
        page.marginsTwips = QMargins(orDefault(setup[rtf::MarginLeft], 1800), orDefault(setup[rtf::MarginTop], 1440),
                                     orDefault(setup[rtf::MarginRight], 1800), orDefault(setup[rtf::MarginBottom], 1440));
    }
    page.landscape = setup[rtf::Landscape] != 0
                     || (page.hasPaper() && page.paperTwips.width() > page.paperTwips.height());
    if (!page.hasPaper() && !page.hasMargins())
        return std::nullopt;
    return page;
}

int QtEditorSurface::renderPages(QPagedPaintDevice *device, const PageRenderRequest &request, QString *error) const
{
    auto fail = [error](const QString &reason) {
        if (error)
            *error = reason;
        return -1;
    };
    if (!device)
        return fail(QStringLiteral("There is no device to print on."));
    flushBatch();

    // The device prints the whole sheet; the request's margins place the text.
    QPageLayout layout = device->pageLayout();
    layout.setMode(QPageLayout::FullPageMode);
    layout.setMargins(QMarginsF());
    device->setPageLayout(layout);
    const int resolution = std::max(1, device->logicalDpiX());
    const QRectF paper = device->pageLayout().fullRectPixels(resolution);
    const auto toDevice = [resolution](int twips) { return twips * resolution / kTwipsPerInch; };
    const QMargins &m = request.marginsTwips;
    const QRectF body = paper.adjusted(toDevice(m.left()), toDevice(m.top()), -toDevice(m.right()),
                                       -toDevice(m.bottom()));
    if (body.width() < resolution / 4.0 || body.height() < resolution / 4.0)
        return fail(QStringLiteral("The margins leave no room for text on the page."));

    std::unique_ptr<QTextDocument> copy = printableCopy(document(), cursor(), request.selectionOnly);
    QTextFrameFormat rootFormat = copy->rootFrame()->frameFormat();
    rootFormat.setMargin(0);
    rootFormat.setPadding(0);
    copy->rootFrame()->setFrameFormat(rootFormat);
    copy->setDocumentMargin(0);
    if (device->paintEngine() && device->paintEngine()->type() == QPaintEngine::Picture)
        spellOutSmallCaps(copy.get());

    QPainter painter;
    if (!painter.begin(device))
        return fail(QStringLiteral("The printer or output file cannot be written."));
    // Laid out at the device's resolution: fonts are in points; the rest is scaled by the layout
    // but for the paragraphs' side margins and indents, scaled here.
    QAbstractTextDocumentLayout *textLayout = copy->documentLayout();
    textLayout->setPaintDevice(painter.device());
    scaleParagraphGeometry(copy.get(), resolution / (kTwipsPerInch / kTwipsPerPixel));
    copy->setPageSize(body.size());
    const int pageCount = std::max(1, copy->pageCount());
    const int first = std::clamp(request.fromPage > 0 ? request.fromPage : 1, 1, pageCount);
    const int last = std::clamp(request.toPage > 0 ? request.toPage : pageCount, first, pageCount);

    for (int page = first; page <= last; ++page) {
        if (page > first && !device->newPage()) {
            painter.end();
            return fail(QStringLiteral("The printer refused a new page."));
        }
        painter.save();
        const QRectF view(0, (page - 1) * body.height(), body.width(), body.height());
        painter.translate(body.left(), body.top() - view.top());
        painter.setClipRect(view);
        QAbstractTextDocumentLayout::PaintContext context;
        // Lines that only touch the page's edges belong to the next or the previous page: drawn
        // here they would be clipped from sight but still be in the page's text (a PDF would
        // show them twice to search and copy).
        context.clip = view.adjusted(0, 1, 0, -1);
        context.palette.setColor(QPalette::Text, Qt::black);
        drawnformats::paintUnderText(painter, *copy, context.clip);
        textLayout->draw(&painter, context);
        // Borders may stand in the page's side margins, as the left and right ones of a
        // paragraph without indents do; a box that goes on over the next page stops at the body.
        const QRectF sheet(-body.left(), view.top(), paper.width(), view.height());
        painter.setClipRect(sheet);
        drawnformats::paintOverText(painter, *copy, context.clip, sheet, Qt::black);
        painter.restore();
        if (request.decorate)
            request.decorate(painter, PageFrame{page, pageCount, paper, body});
    }
    painter.end();
    return last - first + 1;
}

} // namespace kvrtb
