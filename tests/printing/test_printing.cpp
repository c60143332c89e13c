// Printing: a formatted corpus document printed to PDF and read back as text (headings, page
// numbers, dates, body words), the selection alone, the print dialog's choices and its cancel,
// the print preview, and settings or margins that make no sense.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "printing/pagedecorations.h"
#include "printing/pagesetup.h"
#include "printing/printing.h"
#include "testsupport.h"

#include <QApplication>
#include <QDate>
#include <QFile>
#include <QImage>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

using namespace kvrtb;

namespace {

/// The text of each page of a PDF, as `pdftotext -layout` reads it.
QStringList pdfPages(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), path, QStringLiteral("-")});
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return {};
    QStringList pages = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

/// Words of letters only, at least six long, in the order they first appear.
QStringList plainWords(const QString &text)
{
    QStringList words;
    QSet<QString> seen;
    static const QRegularExpression word(QStringLiteral("(?<![\\w'-])[A-Za-z]{6,}(?![\\w'-])"));
    for (auto it = word.globalMatch(text); it.hasNext();) {
        const QString w = it.next().captured();
        if (!seen.contains(w)) {
            seen.insert(w);
            words << w;
        }
    }
    return words;
}

/// A printed word and its top-left corner in points from the paper's corner.
struct PrintedWord {
    QString text;
    double x = -1;
    double y = -1;
};

/// The printed words in the order printed (`pdftotext -bbox`).
QList<PrintedWord> wordPositions(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), {QStringLiteral("-bbox"), path, QStringLiteral("-")});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return {};
    QList<PrintedWord> words;
    static const QRegularExpression word(
        QStringLiteral("<word xMin=\"([0-9.]+)\" yMin=\"([0-9.]+)\"[^>]*>([^<]*)</word>"));
    const QString html = QString::fromUtf8(process.readAllStandardOutput());
    for (auto it = word.globalMatch(html); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        words.append({m.captured(3), m.captured(1).toDouble(), m.captured(2).toDouble()});
    }
    return words;
}

int indexOfWord(const QList<PrintedWord> &words, const QString &text)
{
    for (int i = 0; i < words.size(); ++i) {
        if (words[i].text == text)
            return i;
    }
    return -1;
}

PrintedWord printed(const QList<PrintedWord> &words, const QString &text)
{
    const int i = indexOfWord(words, text);
    return i >= 0 ? words[i] : PrintedWord();
}

QString squeezed(const QString &text)
{
    return text.simplified();
}

/// The widths of ink of each line of text within \a area of \a image, top to bottom: a line is a
/// band of rows with dark pixels.
QList<int> lineInkWidths(const QImage &image, const QRect &area)
{
    QList<int> widths;
    int left = -1;
    int right = -1;
    for (int y = area.top(); y <= area.bottom() + 1; ++y) {
        int rowLeft = -1;
        int rowRight = -1;
        for (int x = area.left(); y <= area.bottom() && x <= area.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 128) {
                rowLeft = rowLeft < 0 ? x : rowLeft;
                rowRight = x;
            }
        }
        if (rowLeft >= 0) {
            left = left < 0 ? rowLeft : std::min(left, rowLeft);
            right = std::max(right, rowRight);
        } else if (left >= 0) {
            widths << right - left + 1;
            left = right = -1;
        }
    }
    return widths;
}

/// The white paper of a previewed page (the preview's grey background and the page's shadow
/// left out): the run of white around the middle of the grabbed preview's middle row.
QRect previewedPaper(const QImage &image)
{
    const int y = image.height() / 2;
    const auto white = [&](int x) { return qGray(image.pixel(x, y)) >= 250; };
    int left = image.width() / 2;
    int right = left;
    if (!white(left))
        return QRect();
    while (left > 0 && white(left - 1))
        --left;
    while (right + 1 < image.width() && white(right + 1))
        ++right;
    return QRect(left + 4, 0, right - left - 8, image.height());
}

} // namespace

class TestPrinting : public QObject {
    Q_OBJECT

    RecordingPlatformServices m_services;
    QTemporaryDir m_dir;

    QString pdf(const QString &name) const { return m_dir.filePath(name); }

    void loadCorpus(KvRTB &control)
    {
        bool ok = false;
        control.LoadFile(test::corpusPath(QStringLiteral("rtf/pandoc__writer.rtf")), rtfRTF, nullptr, &ok);
        QVERIFY(ok);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QProcess probe;
        probe.start(QStringLiteral("pdftotext"), {QStringLiteral("-v")});
        QVERIFY2(probe.waitForFinished(10000), "pdftotext (poppler-utils) is needed to read the printed pages");
        // Load the print preview (and the libraries it brings) before anything else. The
        // sanitizer build's leak checker cannot walk the thread-local storage of libraries
        // loaded late in a process that has already loaded many, and stops with a fatal error
        // at exit; loading them first keeps that check working for every test below.
        QPrinter printer;
        QPrintPreviewDialog(&printer).grab();
    }

    void printedCorpusCarriesHeadingPageNumbersDateAndEveryWord()
    {
        KvRTB control(m_services);
        loadCorpus(control);
        QVERIFY(control.setProperty("PageHeading", QStringLiteral("Quarterly Writer Report")));
        QVERIFY(control.setProperty("PageNumbersAndDate", int(PrintBoth)));
        QCOMPARE(control.property("PageHeadingAlignment").toInt(), int(CenterAlignHeading));
        control.RichTextBox1().setSelection(0, 0);
        // By name, as a host does: a file name prints into that PDF.
        QVERIFY(QMetaObject::invokeMethod(&control, "SelPrint", Q_ARG(QVariant, QVariant(pdf("all.pdf")))));

        const QStringList pages = pdfPages(pdf("all.pdf"));
        QVERIFY2(pages.size() >= 3, qPrintable(QString::number(pages.size())));
        const QString date = printedDateText(QDate::currentDate());
        for (int i = 0; i < pages.size(); ++i) {
            const QString page = pages[i];
            QVERIFY2(page.contains(QStringLiteral("Quarterly Writer Report")), qPrintable(QString::number(i + 1)));
            QVERIFY2(page.contains(QStringLiteral("Page %1").arg(i + 1)), qPrintable(page.left(300)));
            QVERIFY(page.contains(date));
            // The heading is above the text, the number and date below it.
            const QStringList lines = page.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            QVERIFY(lines.first().contains(QStringLiteral("Quarterly Writer Report")));
            QVERIFY(lines.last().contains(QStringLiteral("Page %1").arg(i + 1)));
        }
        QVERIFY(!pages.join(QString()).contains(QStringLiteral("Page %1").arg(pages.size() + 1)));

        // Every word of the document is on the pages.
        const QString printed = squeezed(pages.join(QLatin1Char(' ')));
        const QStringList words = plainWords(control.Text());
        QVERIFY(words.size() > 100);
        for (const QString &w : words)
            QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("\\b%1\\b").arg(w))), qPrintable(w));
        // Printing does not touch the document.
        QVERIFY(!control.HasRTBChanged());
    }

    void headingAtTheFootAndCustomTextWithNumbers()
    {
        KvRTB control(m_services);
        loadCorpus(control);
        control.setPageHeading(QStringLiteral("Footed Heading"));
        control.setPageHeadingAlignment(LeftAlignHeadingBottom);
        control.setPageNumbersAndDate(PrintCustomWNum);
        control.setPageCustomText(QStringLiteral("Draft copy"));
        control.SelPrint(QVariant(pdf("foot.pdf")));
        const QStringList pages = pdfPages(pdf("foot.pdf"));
        QVERIFY(pages.size() >= 3);
        const QString date = printedDateText(QDate::currentDate());
        for (int i = 0; i < pages.size(); ++i) {
            const QStringList lines = pages[i].split(QLatin1Char('\n'), Qt::SkipEmptyParts);
            QVERIFY(lines.last().contains(QStringLiteral("Footed Heading")));
            QVERIFY(lines.last().trimmed().startsWith(QStringLiteral("Footed Heading")));
            QVERIFY(lines.first().contains(QStringLiteral("Draft copy")));
            QVERIFY(lines.first().contains(QStringLiteral("Page %1").arg(i + 1)));
            QVERIFY(!pages[i].contains(date));
        }

        // Nothing in the margins: only the document's words.
        control.setPageHeading(QString());
        control.setPageNumbersAndDate(PrintNiether);
        control.SelPrint(QVariant(pdf("bare.pdf")));
        const QString bare = pdfPages(pdf("bare.pdf")).join(QString());
        QVERIFY(!bare.contains(QStringLiteral("Page 1")));
        QVERIFY(!bare.contains(QStringLiteral("Draft copy")));

        // Only the date.
        control.setPageNumbersAndDate(PrintNowOnly);
        control.SelPrint(QVariant(pdf("date.pdf")));
        const QStringList dated = pdfPages(pdf("date.pdf"));
        QVERIFY(dated.first().contains(date));
        QVERIFY(!dated.first().contains(QStringLiteral("Page 1")));
    }

    void indentsTabStopsAndSpacingPrintWhereTheEditorHasThem()
    {
        KvRTB control(m_services);
        control.setText(QStringLiteral("Indented starts an inch in.\nOne\tThreeInches\nHanging first line "
                                       "runs on long enough to wrap to a second line which starts further "
                                       "in than the first line does, as the ruler's lower handle says.\n"
                                       "Spaced\nAbove"));
        EditorSurface &surface = control.RichTextBox1();
        auto formatParagraphAt = [&surface](int position, const ParaFormat &format) {
            surface.setSelection(position, 0);
            surface.setSelectionParaFormat(format);
        };
        ParaFormat indented;
        indented.leftIndent = 1440;
        formatParagraphAt(0, indented);
        ParaFormat tabbed;
        tabbed.tabStops = QList<int>{4320};
        formatParagraphAt(30, tabbed);
        ParaFormat hanging;
        hanging.leftIndent = 720;
        hanging.hangingIndent = 1440;
        formatParagraphAt(50, hanging);
        ParaFormat spaced;
        spaced.spaceBefore = 720; // half an inch: 36 points
        formatParagraphAt(surface.text().indexOf(QStringLiteral("Above")), spaced);
        surface.setSelection(0, 0);
        // With the default margin of an inch (72 points), at printer resolution.
        control.SelPrint(QVariant(pdf("geometry.pdf")));
        const QList<PrintedWord> words = wordPositions(pdf("geometry.pdf"));
        QVERIFY(!words.isEmpty());
        auto near = [](double actual, double expected) { return qAbs(actual - expected) < 2; };
        QVERIFY2(near(printed(words, QStringLiteral("Indented")).x, 144),
                 qPrintable(QString::number(printed(words, QStringLiteral("Indented")).x)));
        QVERIFY(near(printed(words, QStringLiteral("One")).x, 72));
        QVERIFY(near(printed(words, QStringLiteral("ThreeInches")).x, 288));
        QVERIFY(near(printed(words, QStringLiteral("Hanging")).x, 108));
        // The hanging paragraph's second line starts at 0.5 + 1 inch.
        int i = indexOfWord(words, QStringLiteral("Hanging"));
        QVERIFY(i >= 0);
        for (++i; i < words.size() && words[i].x >= words[i - 1].x; ++i) {
        }
        QVERIFY(i < words.size());
        QVERIFY2(near(words[i].x, 180), qPrintable(QString::number(words[i].x)));
        // Space before a paragraph: the line's own height plus 36 points.
        const double gap = printed(words, QStringLiteral("Above")).y - printed(words, QStringLiteral("Spaced")).y;
        const double lineHeight = words[i].y - printed(words, QStringLiteral("Hanging")).y;
        QVERIFY2(near(gap - lineHeight, 36), qPrintable(QStringLiteral("%1 %2").arg(gap).arg(lineHeight)));
        QCOMPARE(pdfPages(pdf("geometry.pdf")).size(), 1);
    }

    void selectionPrintsAloneAndTheDialogDecides()
    {
        KvRTB control(m_services);
        control.setText(QStringLiteral("Opening words stay home.\nChosen paragraph goes out.\nClosing words stay too."));
        control.RichTextBox1().setSelection(25, 26);
        control.SelPrint(QVariant(pdf("selection.pdf")));
        const QString selected = squeezed(pdfPages(pdf("selection.pdf")).join(QString()));
        QCOMPARE(selected, QStringLiteral("Chosen paragraph goes out."));
        QCOMPARE(control.SelText(), QStringLiteral("Chosen paragraph goes out."));

        // Cancelled: nothing printed, the cancel error, the selection offered.
        m_services.calls.clear();
        short err = 0;
        QCOMPARE(control.CommonDialogPrint(&err), 0);
        QCOMPARE(err, Printing::kCancelled);
        QCOMPARE(m_services.callsOf(QStringLiteral("printDialog")).size(), 1);
        QCOMPARE(m_services.callsOf(QStringLiteral("printDialog")).first().buttons, 1);

        // The user picks the selection and a file.
        m_services.onPrintDialog = [this](QPrinter &printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf("dialog.pdf"));
            printer.setPrintRange(QPrinter::Selection);
        };
        m_services.printDialogAnswers = {true};
        QCOMPARE(control.CommonDialogPrint(&err), 1);
        QCOMPARE(err, short(0));
        QCOMPARE(squeezed(pdfPages(pdf("dialog.pdf")).join(QString())), QStringLiteral("Chosen paragraph goes out."));

        // By name, with the error as a reference; a page range of a longer document.
        loadCorpus(control);
        control.setPageNumbersAndDate(PrintPageOnly);
        m_services.onPrintDialog = [this](QPrinter &printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf("range.pdf"));
            printer.setPrintRange(QPrinter::PageRange);
            printer.setFromTo(2, 3);
        };
        m_services.printDialogAnswers = {true};
        int pages = -1;
        short byNameErr = 7;
        QVERIFY(QMetaObject::invokeMethod(&control, "CommonDialogPrint", Q_RETURN_ARG(int, pages),
                                          Q_ARG(short &, byNameErr)));
        QCOMPARE(pages, 2);
        QCOMPARE(byNameErr, short(0));
        const QStringList range = pdfPages(pdf("range.pdf"));
        QCOMPARE(range.size(), 2);
        QVERIFY(range[0].contains(QStringLiteral("Page 2")));
        QVERIFY(range[1].contains(QStringLiteral("Page 3")));

        // A file that cannot be written: a printer error, no crash, the document unchanged.
        const QString before = control.TextRTF();
        m_services.onPrintDialog = [](QPrinter &printer) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(QStringLiteral("/nonexistent-folder/out.pdf"));
        };
        m_services.printDialogAnswers = {true};
        QCOMPARE(control.CommonDialogPrint(&err), 0);
        QCOMPARE(err, Printing::kPrinterError);
        control.SelPrint(QVariant(QStringLiteral("/nonexistent-folder/out.pdf")));
        QVERIFY(!QFile::exists(QStringLiteral("/nonexistent-folder/out.pdf")));
        QCOMPARE(control.TextRTF(), before);
        m_services.onPrintDialog = nullptr;
    }

    void previewShowsThePagesAndBadSettingsAreRefused()
    {
        KvRTB control(m_services);
        loadCorpus(control);
        control.setPageHeading(QStringLiteral("Preview Heading"));
        control.setPageNumbersAndDate(PrintPageOnly);
        m_services.previewOutput = pdf("preview.pdf");
        control.ShowPrintPreview();
        QCOMPARE(m_services.callsOf(QStringLiteral("printPreview")).size(), 1);
        const QStringList pages = pdfPages(pdf("preview.pdf"));
        QVERIFY(pages.size() >= 3);
        QVERIFY(pages.last().contains(QStringLiteral("Page %1").arg(pages.size())));
        QVERIFY(pages.first().contains(QStringLiteral("Preview Heading")));
        m_services.previewOutput.clear();

        // Values outside the enums are refused; the settings stay.
        control.setPageHeadingAlignment(0);
        control.setPageHeadingAlignment(7);
        QCOMPARE(control.PageHeadingAlignment(), int(CenterAlignHeading));
        control.setPageNumbersAndDate(-1);
        control.setPageNumbersAndDate(6);
        QCOMPARE(control.PageNumbersAndDate(), int(PrintPageOnly));

        // The margin sets the width of the lines; margins past reason still leave text to print.
        control.setText(QStringLiteral("Words that fill a long paragraph across many lines. ").repeated(200));
        control.setPrinterMargin(TenEighty);
        control.SelPrint(QVariant(pdf("narrow.pdf")));
        control.setPrinterMargin(Academic);
        control.SelPrint(QVariant(pdf("academic.pdf")));
        const auto lineCount = [](const QStringList &pages) {
            return pages.join(QString()).split(QLatin1Char('\n'), Qt::SkipEmptyParts).size();
        };
        // Wider text on a narrower margin: fewer lines for the same words.
        QVERIFY(lineCount(pdfPages(pdf("narrow.pdf"))) < lineCount(pdfPages(pdf("academic.pdf"))));
        control.setPrinterMargin(99999999);
        control.SelPrint(QVariant(pdf("huge.pdf")));
        const QStringList huge = pdfPages(pdf("huge.pdf"));
        QVERIFY(huge.size() > pdfPages(pdf("academic.pdf")).size());
        QVERIFY(huge.first().contains(QStringLiteral("Preview Heading")));
        QCOMPARE(squeezed(huge.join(QLatin1Char(' '))).count(QStringLiteral("across")), 200);

        // Print to PDF needs no printer; the answer only says whether the system has one.
        const bool installed = control.PrinterInstalled();
        bool byName = !installed;
        QVERIFY(QMetaObject::invokeMethod(&control, "PrinterInstalled", Q_RETURN_ARG(bool, byName)));
        QCOMPARE(byName, installed);
    }

    void previewShowsSmallCapitalsAsTheEditorDoes()
    {
        // The preview records its pages and plays them back; small capitals must come back as
        // wide as the editor shows them, measured against the same words in full capitals.
        KvRTB control;
        control.resize(900, 300);
        control.show();
        QVERIFY(QTest::qWaitForWindowExposed(&control));
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi\\pard\\sa480\\fs56 {\\scaps Small capitals here}\\par"
                                          "\\pard\\fs56 {\\caps Small capitals here}\\par}"));
        QApplication::processEvents();
        QWidget *viewport = control.findChild<QTextEdit *>()->viewport();
        const QImage screen = viewport->grab().toImage();
        const QList<int> onScreen = lineInkWidths(screen, screen.rect());
        QCOMPARE(onScreen.size(), 2);
        const double screenRatio = double(onScreen[0]) / onScreen[1];
        QVERIFY2(screenRatio > 0.6 && screenRatio < 0.95, qPrintable(QString::number(screenRatio)));

        QImage page;
        bool sawDialog = false;
        QTimer::singleShot(0, [&] {
            auto *dialog = qobject_cast<QPrintPreviewDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            sawDialog = dialog->objectName() == QStringLiteral("PrintPreview");
            auto *preview = dialog->findChild<QPrintPreviewWidget *>();
            dialog->resize(900, 1000);
            preview->fitToWidth();
            preview->updatePreview();
            QApplication::processEvents();
            page = preview->grab().toImage();
            dialog->reject();
        });
        control.ShowPrintPreview();
        QVERIFY(sawDialog);
        const QRect paper = previewedPaper(page);
        QVERIFY(paper.width() > 300);
        const QList<int> previewed = lineInkWidths(page, paper);
        QVERIFY(previewed.size() >= 2);
        const double previewRatio = double(previewed[0]) / previewed[1];
        QVERIFY2(qAbs(previewRatio - screenRatio) < 0.08,
                 qPrintable(QStringLiteral("preview %1, screen %2").arg(previewRatio).arg(screenRatio)));
    }

    void documentPaperAndMarginsArePrinted()
    {
        KvRTB control(m_services);
        const auto pageSize = [](const QString &path) {
            QProcess info;
            info.start(QStringLiteral("pdfinfo"), {path});
            info.waitForFinished(60000);
            static const QRegularExpression size(QStringLiteral("Page size:\\s+([0-9.]+) x ([0-9.]+) pts"));
            const QRegularExpressionMatch m = size.match(QString::fromUtf8(info.readAllStandardOutput()));
            return m.hasMatch() ? QSizeF(m.captured(1).toDouble(), m.captured(2).toDouble()) : QSizeF();
        };
        // A landscape A4 document with a two-inch left margin and an inch at the top.
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi\\paperw16838\\paperh11906\\margl2880\\margr1440\\margt1440"
                                          "\\margb1440\\landscape\\pard Landscaped words.\\par}"));
        control.SelPrint(QVariant(pdf("document-page.pdf")));
        const QSizeF landscape = pageSize(pdf("document-page.pdf"));
        QVERIFY2(std::abs(landscape.width() - 841.9) < 1 && std::abs(landscape.height() - 595.3) < 1,
                 qPrintable(QStringLiteral("%1 x %2").arg(landscape.width()).arg(landscape.height())));
        const PrintedWord first = printed(wordPositions(pdf("document-page.pdf")), QStringLiteral("Landscaped"));
        QVERIFY2(std::abs(first.x - 144) < 1.5, qPrintable(QString::number(first.x)));
        QVERIFY2(first.y >= 71 && first.y < 90, qPrintable(QString::number(first.y)));
        // The print dialog starts on the document's paper.
        m_services.onPrintDialog = [this](QPrinter &printer) {
            QCOMPARE(printer.pageLayout().orientation(), QPageLayout::Landscape);
            QCOMPARE(printer.pageLayout().pageSize().id(), QPageSize::A4);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf("document-dialog.pdf"));
        };
        m_services.printDialogAnswers = {true};
        short err = 0;
        QCOMPARE(control.CommonDialogPrint(&err), 1);
        m_services.onPrintDialog = nullptr;

        // Margins that leave no inch of text on the paper are not used; a document without page
        // setup prints within PrinterMargin on the default paper.
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi\\margl9000\\margr9000\\pard Squeezed words.\\par}"));
        control.SelPrint(QVariant(pdf("wide-margins.pdf")));
        QCOMPARE(printed(wordPositions(pdf("wide-margins.pdf")), QStringLiteral("Squeezed")).x, 72.0);
        control.setText(QStringLiteral("Ordinary words."));
        control.SelPrint(QVariant(pdf("plain-page.pdf")));
        QCOMPARE(printed(wordPositions(pdf("plain-page.pdf")), QStringLiteral("Ordinary")).x, 72.0);
        QCOMPARE(pageSize(pdf("plain-page.pdf")).toSize(), defaultPaperSize().size(QPageSize::Point));
    }
};

QTEST_MAIN(TestPrinting)
#include "test_printing.moc"
