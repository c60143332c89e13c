#include "printing/printing.h"

#include "core/controlcore.h"
#include "printing/pagesetup.h"

#include <QDate>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

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

int Printing::printTo(QPagedPaintDevice &device, bool selectionOnly, int fromPage, int toPage, QString *error) const
{
    const QPageSize paper = device.pageLayout().pageSize().isValid() ? device.pageLayout().pageSize()
                                                                       : defaultPaperSize();
    const int margin = effectiveMarginTwips(m_core.properties().PrinterMargin, paper);
    PageRenderRequest request;
    request.marginsTwips = QMargins(margin, margin, margin, margin);
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
    if (!prepareSystemPrinter(printer))
        printer.setPageSize(defaultPaperSize());
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
        printer.setPageSize(defaultPaperSize());
    } else if (!prepareSystemPrinter(printer)) {
        qWarning("KvRTB: SelPrint: the system has no printer; nothing was printed.");
        return;
    }
    QString error;
    if (printTo(printer, true, 0, 0, &error) < 0)
        qWarning("KvRTB: SelPrint: printing failed: %s", qPrintable(error));
}

void Printing::ShowPrintPreview()
{
    QPrinter printer(QPrinter::HighResolution);
    if (!prepareSystemPrinter(printer))
        printer.setPageSize(defaultPaperSize());
    m_core.services().printPreview(printer, [this](QPrinter &target) {
        QString error;
        const bool selectionOnly = target.printRange() == QPrinter::Selection;
        if (printTo(target, selectionOnly, 0, 0, &error) < 0)
            qWarning("KvRTB: print preview: %s", qPrintable(error));
    });
}

} // namespace kvrtb
