// How lists look: the markers the surface draws (start numbers, the document's bullets, the
// paragraph's font), where list paragraphs sit, and that markers never become text: in the
// document, the selection, RTF read back, the editor on screen and printed pages.

#include "rtftesthelpers.h"
#include "testregistry.h"
#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "surface/formatmapping.h"
#include "surface/listmarkers.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextList>

using namespace kvrtb;

namespace {

// A list that starts at 7, then a level of each kind of bullet word processors write: "o" in
// Courier New, the Symbol font's bullet, a Wingdings square and a hyphen. Every paragraph gives
// its own indents (text at 720 twips per level, the marker 360 twips before it).
const QByteArray kListDocument =
    "{\\rtf1\\ansi{\\fonttbl{\\f0 Times New Roman;}{\\f1 Courier New;}{\\f2\\fcharset2 Symbol;}"
    "{\\f3\\fcharset2 Wingdings;}}"
    "{\\*\\listtable{\\list\\listtemplateid1"
    "{\\listlevel\\levelnfc0\\levelstartat7{\\leveltext\\'02\\'00.;}{\\levelnumbers\\'01;}\\fi-360\\li720}"
    "{\\listlevel\\levelnfc23{\\leveltext\\'01o;}\\f1\\fi-360\\li1440}"
    "{\\listlevel\\levelnfc23{\\leveltext\\'01\\u-3913 ?;}\\f2\\fi-360\\li2160}"
    "{\\listlevel\\levelnfc23{\\leveltext\\'01\\'a7;}\\f3\\fi-360\\li2880}"
    "{\\listlevel\\levelnfc23{\\leveltext\\'01-;}\\fi-360\\li3600}\\listid9}}"
    "{\\*\\listoverridetable{\\listoverride\\listid9\\ls1}}"
    "\\pard\\ls1\\fi-360\\li720 {\\super 1}st seventh\\par"
    "\\pard\\ls1\\ilvl1\\fi-360\\li1440 circle\\par"
    "\\pard\\ls1\\ilvl2\\fi-360\\li2160 dot\\par"
    "\\pard\\ls1\\ilvl3\\fi-360\\li2880 square\\par"
    "\\pard\\ls1\\ilvl4\\fi-360\\li3600 dash\\par"
    "\\pard\\ls1\\fi-360\\li720 eighth\\par"
    "\\pard plain\\par}";

QStringList markers(const QTextDocument &doc)
{
    QStringList out;
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next())
        out << listmarkers::markerText(block);
    return out;
}

QImage render(QTextDocument &doc, bool withMarkers)
{
    doc.setTextWidth(600);
    QImage image(640, int(doc.size().height()) + 10, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, Qt::black);
    doc.documentLayout()->draw(&painter, context);
    if (withMarkers)
        listmarkers::paint(painter, doc, QRectF(image.rect()), Qt::black);
    return image;
}

// The box of the dark pixels of \a image within \a area (empty when there are none).
QRect inkIn(const QImage &image, const QRect &area)
{
    QRect box;
    const QRect clipped = area & image.rect();
    for (int y = clipped.top(); y <= clipped.bottom(); ++y) {
        for (int x = clipped.left(); x <= clipped.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

// Where a block's first line's text starts, and the rows of that line, in document pixels.
QRect firstLineOf(const QTextDocument &doc, const QTextBlock &block)
{
    const QRectF bounds = doc.documentLayout()->blockBoundingRect(block);
    const QTextLine line = block.layout()->lineAt(0);
    return line.naturalTextRect().translated(bounds.topLeft()).toAlignedRect();
}

} // namespace

class TestRtfLists : public QObject {
    Q_OBJECT

private slots:
    void markersShowStartNumbersAndTheDocumentsBullets()
    {
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, kListDocument).ok);
        const QStringList expected{QStringLiteral("7."), QStringLiteral("o"), QStringLiteral("\u2022"),
                                   QStringLiteral("\u25aa"), QStringLiteral("-"), QStringLiteral("8."), QString()};
        QCOMPARE(markers(doc), expected);
        // Markers are no text of the document.
        QCOMPARE(doc.toPlainText(), QStringLiteral("1st seventh\ncircle\ndot\nsquare\ndash\neighth\nplain"));

        // Written and read back, the list shows the same markers at the same levels; other readers
        // get the start number, the bullets and the numbers as text.
        const QByteArray written = rtf::writeRtf(doc);
        QVERIFY(written.contains("\\levelstartat7"));
        QVERIFY(written.contains("{\\listtext 8.\\tab}"));
        QVERIFY(written.contains("{\\leveltext\\'01o;}"));
        QVERIFY(written.contains("{\\leveltext\\'01\\u9642 ?;}"));
        QVERIFY(written.contains("\\ls1\\ilvl4"));
        QVERIFY(written.contains("\\fi-360\\li2880"));
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, written).ok);
        QCOMPARE(markers(back), expected);
        QCOMPARE(back.toPlainText(), doc.toPlainText());
        QCOMPARE(rtf::writeRtf(back), written);
        // A part of a list item is its text alone.
        const QByteArray part = rtf::writeRtf(doc, 4, 11);
        QTextDocument partDoc;
        QVERIFY(rtf::readRtf(partDoc, part).ok);
        QCOMPARE(partDoc.toPlainText(), QStringLiteral("seventh"));

        // Number formats, including those past the alphabet and past roman numerals.
        QCOMPARE(listmarkers::formatNumber(28, QTextListFormat::ListLowerAlpha), QStringLiteral("bb"));
        QCOMPARE(listmarkers::formatNumber(1994, QTextListFormat::ListUpperRoman), QStringLiteral("MCMXCIV"));
        QCOMPARE(listmarkers::formatNumber(0, QTextListFormat::ListLowerRoman), QStringLiteral("0"));
        QCOMPARE(listmarkers::formatNumber(4000, QTextListFormat::ListUpperRoman), QStringLiteral("4000"));
        QCOMPARE(listmarkers::formatNumber(-2, QTextListFormat::ListUpperAlpha), QStringLiteral("-2"));
    }

    void listParagraphsSitWhereTheirIndentsPutThem()
    {
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, kListDocument).ok);
        doc.setDocumentMargin(0);
        const QImage bare = render(doc, false);
        const QImage drawn = render(doc, true);
        int level = 0;
        for (QTextBlock block = doc.begin(); block.isValid() && block.textList(); block = block.next(), ++level) {
            const int depth = level == 5 ? 0 : level;
            // The text of every line at the paragraph's left indent (720 twips a level), not
            // further in by Qt's own indent per level.
            const QRect line = firstLineOf(doc, block);
            QCOMPARE(line.left(), 48 * (depth + 1));
            // The paragraph's format reads back as the document gave it.
            const ParaFormat para = format::readPara(block);
            QCOMPARE(*para.leftIndent, 720 * (depth + 1) - 360);
            QCOMPARE(*para.hangingIndent, 360);
            // Qt draws no marker there; the surface draws it at the start of the hanging indent.
            const QRect markerArea(line.left() - 24, line.top(), 24, line.height());
            QVERIFY2(inkIn(bare, markerArea).isEmpty(), qPrintable(block.text()));
            const QRect ink = inkIn(drawn, markerArea);
            QVERIFY2(!ink.isEmpty(), qPrintable(block.text()));
            QVERIFY2(ink.left() <= line.left() - 24 + 3, qPrintable(QString::number(ink.left())));
        }
        // The first item starts with a superscript: its marker is as big and as low as that of
        // the item at the same level further down (same number of digits, same font).
        const QTextBlock first = doc.begin();
        const QTextBlock last = doc.findBlockByNumber(5);
        const QRect firstLine = firstLineOf(doc, first);
        const QRect lastLine = firstLineOf(doc, last);
        const QRect firstInk = inkIn(drawn, QRect(0, firstLine.top(), 48, firstLine.height()));
        const QRect lastInk = inkIn(drawn, QRect(0, lastLine.top(), 48, lastLine.height()));
        QCOMPARE(firstInk.height(), lastInk.height());
        QCOMPARE(firstInk.bottom() - firstLine.top() - int(first.layout()->lineAt(0).ascent()),
                 lastInk.bottom() - lastLine.top() - int(last.layout()->lineAt(0).ascent()));
    }

    void theEditorAndItsPrintedPagesShowTheMarkers()
    {
        test::ShownControl shown;
        QVERIFY(shown.load(QString::fromLatin1(kListDocument)));
        KvRTB &control = shown.control;
        QTextEdit *edit = shown.edit;
        // On screen: ink in the hanging indent of the first item.
        const QTextBlock first = edit->document()->begin();
        const QRect line = firstLineOf(*edit->document(), first);
        const QImage screen = edit->viewport()->grab().toImage();
        QVERIFY(!inkIn(screen, QRect(line.left() - 24, line.top(), 24, line.height())).isEmpty());
        // The user's selection and text hold no marker.
        control.RichTextBox1().setSelection(0, 11);
        QCOMPARE(control.SelText(), QStringLiteral("1st seventh"));

        // The user numbers two plain paragraphs: the markers follow, and typing a new item
        // numbers it next.
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi one\\par two\\par}"));
        control.RichTextBox1().setSelection(0, 7);
        ParaFormat numbered;
        numbered.numbering = Numbering::UpperRoman;
        numbered.numberingStart = 4;
        numbered.numberingStyle = NumberingStyle::RightParen;
        control.RichTextBox1().setSelectionParaFormat(numbered);
        QCOMPARE(markers(*edit->document()), (QStringList{QStringLiteral("IV)"), QStringLiteral("V)")}));
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClicks(edit, QStringLiteral("six"));
        QCOMPARE(markers(*edit->document()), (QStringList{QStringLiteral("IV)"), QStringLiteral("V)"), QStringLiteral("VI)")}));
        QCOMPARE(edit->document()->toPlainText(), QStringLiteral("one\ntwo\nsix"));

        // Printed: the markers are on the page, before their items.
        control.setTextRTF(QString::fromLatin1(kListDocument));
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("list.pdf"));
        control.SelPrint(QVariant(pdf));
        QProcess text;
        text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        QVERIFY(text.waitForFinished(60000));
        const QString printed = QString::fromUtf8(text.readAllStandardOutput());
        QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("7\\.\\s+1?st seventh"))), qPrintable(printed));
        QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("o\\s+circle"))), qPrintable(printed));
        QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("8\\.\\s+eighth"))), qPrintable(printed));
        control.SetRTBChanged(false);
    }
};

KVRTB_REGISTER_TEST(TestRtfLists)

#include "test_rtflists.moc"
