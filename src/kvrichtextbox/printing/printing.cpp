#include "printing/printing.h"

#include "core/controlcore.h"
#include "printing/pagesetup.h"

#include <QDate>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

#include <algorithm>

namespace kvrtb {

namespace {

const QString kJobName = QStringLiteral("KvRichTextBox document");

} // namespace

Printing::Printing(ControlCore &core) : m_core(core) {}

bool Printing::PrinterInstalled() const
{
    return !QPrinterInfo::availablePrinterNames().isEmpty();
}

bool Printing::prepareSystemPrinter(QPrinter &printer) const
{
    printer.setDocName(kJobName);
    if (!PrinterInstalled())
        return false;
    printer.setOutputFormat(QPrinter::NativeFormat);
    return true;
}

void Printing::useDocumentPaper(QPrinter &printer, bool systemPrinter) const
{
    const std::optional<DocumentPage> page = m_core.surface().documentPage();
    if (!page || !page->hasPaper()) {
        if (!systemPrinter)
            printer.setPageSize(defaultPaperSize());
        return;
    }
    // Paper sizes are named upright; the orientation turns them.
    const QSize twips = page->paperTwips;
    const QSizeF upright(std::min(twips.width(), twips.height()) / 20.0, std::max(twips.width(), twips.height()) / 20.0);
    printer.setPageSize(QPageSize(upright, QPageSize::Point, QString(), QPageSize::FuzzyMatch));
    printer.setPageOrientation(page->landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
}

int Printing::printTo(QPagedPaintDevice &device, bool selectionOnly, int fromPage, int toPage, QString *error) const
{
    const QPageSize paper = device.pageLayout().pageSize().isValid() ? device.pageLayout().pageSize()
                                                                       : defaultPaperSize();
    const int margin = effectiveMarginTwips(m_core.properties().PrinterMargin, paper);
    PageRenderRequest request;
    request.marginsTwips = QMargins(margin, margin, margin, margin);
    // The document's own margins, while they leave an inch of text each way on this paper.
    const std::optional<DocumentPage> page = m_core.surface().documentPage();
    if (page && page->hasMargins()) {
        const QSizeF size = device.pageLayout().fullRectPoints().size() * 20.0;
        const QMargins &m = page->marginsTwips;
        if (size.width() - m.left() - m.right() >= kTwipsPerInch && size.height() - m.top() - m.bottom() >= kTwipsPerInch)
            request.marginsTwips = m;
    }
    request.selectionOnly = selectionOnly;
    request.fromPage = fromPage;
    request.toPage = toPage;
    const PageDecorations decorations = m_decorations;
    const QDate today = QDate::currentDate();
    request.decorate = [decorations, today](QPainter &painter, const PageFrame &frame) {
        drawPageDecorations(painter, frame, decorations, today);
    };
    BusyGuard busy(m_core.services());
    return m_core.surface().renderPages(&device, request, error);
}

int Printing::CommonDialogPrint(short *MyErr)
{
    if (MyErr)
        *MyErr = 0;
    QPrinter printer(QPrinter::HighResolution);
    useDocumentPaper(printer, prepareSystemPrinter(printer));
    const bool hasSelection = m_core.surface().selLength() > 0;
    if (!m_core.services().printDialog(printer, hasSelection)) {
        if (MyErr)
            *MyErr = kCancelled;
        return 0;
    }
    int from = 0;
    int to = 0;
    if (printer.printRange() == QPrinter::PageRange) {
        from = printer.fromPage();
        to = printer.toPage();
    }
    const bool selectionOnly = printer.printRange() == QPrinter::Selection;
    QString error;
    const int pages = printTo(printer, selectionOnly, from, to, &error);
    if (pages < 0) {
        qWarning("KvRTB: printing failed: %s", qPrintable(error));
        if (MyErr)
            *MyErr = kPrinterError;
        return 0;
    }
    return pages;
}

void Printing::SelPrint(const QVariant &vStartDoc)
{
    QPrinter printer(QPrinter::HighResolution);
    const bool toFile = vStartDoc.metaType().id() == QMetaType::QString;
    if (toFile) {
        printer.setDocName(kJobName);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(vStartDoc.toString());
        useDocumentPaper(printer, false);
    } else if (!prepareSystemPrinter(printer)) {
        qWarning("KvRTB: SelPrint: the system has no printer; nothing was printed.");
        return;
    } else {
        useDocumentPaper(printer, true);
    }
    QString error;
    if (printTo(printer, true, 0, 0, &error) < 0)
        qWarning("KvRTB: SelPrint: printing failed: %s", qPrintable(error));
}

void Printing::ShowPrintPreview()
{
    QPrinter printer(QPrinter::HighResolution);
    useDocumentPaper(printer, prepareSystemPrinter(printer));
    m_core.services().printPreview(printer, [this](QPrinter &target) {
        QString error;
        const bool selectionOnly = target.printRange() == QPrinter::Selection;
        if (printTo(target, selectionOnly, 0, 0, &error) < 0)
            qWarning("KvRTB: print preview: %s", qPrintable(error));
    });
}

} // namespace kvrtb
