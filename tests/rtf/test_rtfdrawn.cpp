// What the surface draws of the formats Qt keeps but does not draw: paragraph borders (one box
// for consecutive paragraphs with the same borders, room above and below that is never written
// back), tab leaders in the gap before their stop, and shadowed letters. Each drawing is checked
// on rendered pixels against the same document rendered without it, in the editor on screen and
// on a printed page, and none of it may become text.

#include "rtftesthelpers.h"
#include "testregistry.h"
#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "surface/drawnformats.h"
#include "surface/formatmapping.h"
#include "surface/paragraphborders.h"
#include "surface/rtf/rtfformats.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>

using namespace kvrtb;

namespace {

// A plain paragraph, a shaded box of two paragraphs (30-twip lines 80 twips from the text), a
// paragraph with a double line below it only, and a plain one.
const QByteArray kBorderDocument =
    "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red0\\green0\\blue255;\\red255\\green255\\blue160;}\\f0\\fs20"
    "\\pard plain above\\par"
    "\\pard\\li1440\\ri1440\\box\\brdrs\\brdrw30\\brsp80\\brdrcf1\\cbpat2 boxed one\\par"
    "\\pard\\li1440\\ri1440\\box\\brdrs\\brdrw30\\brsp80\\brdrcf1\\cbpat2 boxed two\\par"
    "\\pard\\brdrb\\brdrdb\\brdrw15\\brsp40 underlined twice\\par"
    "\\pard plain below\\par}";

// A right tab with dots, one with a line, and a tab stop without a leader.
const QByteArray kLeaderDocument =
    "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20"
    "\\pard\\tqr\\tldot\\tx5000 Dotted\\tab 12\\par"
    "\\pard\\tlul\\tx5000 Lined\\tab 13\\par"
    "\\pard\\tx5000 Bare\\tab 14\\par}";

// Red letters, shadowed and not.
const QByteArray kShadowDocument = "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red220\\green0\\blue0;}"
                                   "\\f0\\fs40\\cf1 {\\shad Shadowed} Plain\\par}";

enum class Drawn { Nothing, Everything };

QImage render(QTextDocument &doc, Drawn drawn)
{
    doc.setTextWidth(600);
    QImage image(600, int(doc.size().height()) + 10, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const QRectF all(image.rect());
    if (drawn == Drawn::Everything)
        drawnformats::paintUnderText(painter, doc, all);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, Qt::black);
    doc.documentLayout()->draw(&painter, context);
    if (drawn == Drawn::Everything)
        drawnformats::paintOverText(painter, doc, all, QRectF(QPointF(0, 0), doc.size()), Qt::black);
    return image;
}

bool dark(QRgb pixel)
{
    return qGray(pixel) < 160;
}

// The lines of \a image across \a area that are dark all the way (rows for horizontal rules,
// columns for vertical ones).
QList<int> rulesIn(const QImage &image, const QRect &area, Qt::Orientation orientation)
{
    const QRect clipped = area & image.rect();
    const bool rows = orientation == Qt::Horizontal;
    QList<int> found;
    for (int line = rows ? clipped.top() : clipped.left(); line <= (rows ? clipped.bottom() : clipped.right()); ++line) {
        bool all = true;
        for (int along = rows ? clipped.left() : clipped.top(); along <= (rows ? clipped.right() : clipped.bottom()) && all; ++along)
            all = dark(rows ? image.pixel(along, line) : image.pixel(line, along));
        if (all)
            found << line;
    }
    return found;
}

QList<int> ruleRows(const QImage &image, int left, int right, int top, int bottom)
{
    return rulesIn(image, QRect(QPoint(left, top), QPoint(right, bottom)), Qt::Horizontal);
}

QList<int> ruleColumns(const QImage &image, int left, int right, int top, int bottom)
{
    return rulesIn(image, QRect(QPoint(left, top), QPoint(right, bottom)), Qt::Vertical);
}

// Grey: in documents of red letters, only a shadow.
bool shadowGrey(QRgb p)
{
    return qAbs(qRed(p) - qGreen(p)) < 12 && qAbs(qGreen(p) - qBlue(p)) < 12 && qGray(p) > 90 && qGray(p) < 200;
}

int inkIn(const QImage &image, const QRect &area, const std::function<bool(QRgb)> &counts)
{
    int count = 0;
    const QRect clipped = area & image.rect();
    for (int y = clipped.top(); y <= clipped.bottom(); ++y)
        for (int x = clipped.left(); x <= clipped.right(); ++x)
            count += counts(image.pixel(x, y)) ? 1 : 0;
    return count;
}

QRectF boundsOf(const QTextDocument &doc, int blockNumber)
{
    return doc.documentLayout()->blockBoundingRect(doc.findBlockByNumber(blockNumber));
}

// The gap a block's first tab leaves, in document pixels.
QRect tabGap(const QTextDocument &doc, int blockNumber)
{
    const QTextBlock block = doc.findBlockByNumber(blockNumber);
    const int tab = int(block.text().indexOf(QLatin1Char('\t')));
    const QTextLine line = block.layout()->lineForTextPosition(tab);
    const QRectF bounds = boundsOf(doc, blockNumber);
    return QRectF(bounds.left() + line.cursorToX(tab), bounds.top() + line.y(),
                  line.cursorToX(tab + 1) - line.cursorToX(tab), line.height())
        .toAlignedRect();
}

// The dark runs of the page images of \a pdf at 50 dots an inch that are longer than a third of
// the page's width.
int longRulesOnFirstPage(const QString &pdf, const QString &dir)
{
    QProcess raster;
    raster.start(QStringLiteral("pdftoppm"), {QStringLiteral("-r"), QStringLiteral("50"), QStringLiteral("-f"),
                                              QStringLiteral("1"), QStringLiteral("-l"), QStringLiteral("1"),
                                              QStringLiteral("-png"), pdf, dir + QStringLiteral("/page")});
    if (!raster.waitForFinished(60000) || raster.exitCode() != 0)
        return -1;
    const QImage page(dir + QStringLiteral("/page-1.png"));
    if (page.isNull())
        return -1;
    int rules = 0;
    for (int y = 0; y < page.height(); ++y) {
        int run = 0;
        int longest = 0;
        for (int x = 0; x < page.width(); ++x) {
            run = dark(page.pixel(x, y)) ? run + 1 : 0;
            longest = std::max(longest, run);
        }
        rules += longest > page.width() / 3 ? 1 : 0;
    }
    return rules;
}


} // namespace

class TestRtfDrawn : public QObject {
    Q_OBJECT

private slots:
    void bordersAreDrawnAroundTheirBoxWithRoomThatIsNeverWritten()
    {
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, kBorderDocument).ok);
        const QString text = doc.toPlainText();
        QCOMPARE(text, QStringLiteral("plain above\nboxed one\nboxed two\nunderlined twice\nplain below"));
        const QImage bare = render(doc, Drawn::Nothing);
        const QImage drawn = render(doc, Drawn::Everything);

        const QRectF above = boundsOf(doc, 0);
        const QRectF one = boundsOf(doc, 1);
        const QRectF two = boundsOf(doc, 2);
        const QRectF twice = boundsOf(doc, 3);
        const QRectF below = boundsOf(doc, 4);
        // Room for the top line above the box (80 twips of space and a 30-twip line: 7.3 px) and
        // for the bottom line below it; none between the box's two paragraphs.
        QVERIFY2(one.top() - above.bottom() >= 7, qPrintable(QString::number(one.top() - above.bottom())));
        QVERIFY2(two.top() - one.bottom() < 1, qPrintable(QString::number(two.top() - one.bottom())));
        QVERIFY2(twice.top() - two.bottom() >= 7, qPrintable(QString::number(twice.top() - two.bottom())));

        // The box's text stands an inch (96 px) in from each side: its lines stand 5.3 px out
        // from it, 2 px wide, in blue.
        const int textLeft = int(one.left() + 96);
        const int textRight = int(doc.textWidth() - doc.documentMargin() - 96);
        const QList<int> topRule = ruleRows(drawn, textLeft, textRight, int(above.bottom()), int(one.top()));
        QVERIFY2(!topRule.isEmpty(), "no top border");
        QVERIFY(topRule.first() >= one.top() - 8 && topRule.last() < one.top() - 4);
        QCOMPARE(drawn.pixel(textLeft + 50, topRule.first()), qRgb(0, 0, 255));
        QVERIFY(ruleRows(bare, textLeft, textRight, int(above.bottom()), int(one.top())).isEmpty());
        QVERIFY2(ruleRows(drawn, textLeft, textRight, int(one.bottom()) - 2, int(two.top()) + 2).isEmpty(),
                 "a line between two paragraphs of one box");
        const QList<int> bottomRule = ruleRows(drawn, textLeft, textRight, int(two.bottom()), int(twice.top()));
        QVERIFY2(!bottomRule.isEmpty(), "no bottom border");
        QVERIFY(bottomRule.first() > two.bottom() + 4 && bottomRule.last() <= two.bottom() + 8);
        // The sides run down the whole box, outside the indents.
        const QList<int> leftRule = ruleColumns(drawn, textLeft - 9, textLeft, int(one.top()), int(two.bottom()));
        QVERIFY2(!leftRule.isEmpty(), "no left border");
        QVERIFY(leftRule.last() < textLeft - 4);
        QVERIFY(!ruleColumns(drawn, textRight, textRight + 9, int(one.top()), int(two.bottom())).isEmpty());
        QVERIFY(ruleColumns(bare, textLeft - 9, textLeft, int(one.top()), int(two.bottom())).isEmpty());
        // The shading fills the box out to its lines: the space between line and text too.
        const QPoint padding(textLeft - 3, int(one.center().y()));
        QCOMPARE(drawn.pixel(padding), qRgb(255, 255, 160));
        QCOMPARE(bare.pixel(padding), qRgb(255, 255, 255));
        QCOMPARE(drawn.pixel(textLeft + 200, int(one.top()) - 2), qRgb(255, 255, 160));
        // A double line below the next paragraph only: two rules, none above it; the plain
        // paragraphs get none.
        const QList<int> doubled = ruleRows(drawn, 20, 580, int(twice.bottom()), int(below.top()));
        QVERIFY2(doubled.size() >= 2 && doubled.last() - doubled.first() >= 2, qPrintable(QString::number(doubled.size())));
        QVERIFY(ruleRows(drawn, 20, 580, 0, int(above.bottom())).isEmpty());
        QVERIFY(ruleRows(drawn, 20, 580, int(below.top()), drawn.height() - 1).isEmpty());

        // Nothing of it is text, and the room is not spacing: the paragraphs report and write
        // back the spacing and borders they were given.
        QCOMPARE(doc.toPlainText(), text);
        QCOMPARE(*format::readPara(doc.findBlockByNumber(1)).spaceBefore, 0);
        QCOMPARE(*format::readPara(doc.findBlockByNumber(2)).spaceAfter, 0);
        const QByteArray written = rtf::writeRtf(doc);
        QVERIFY(!written.contains("\\sb") && !written.contains("\\sa"));
        QCOMPARE(written.count("\\brsp80"), 8);
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, written).ok);
        QCOMPARE(back.toPlainText(), text);
        QCOMPARE(rtf::writeRtf(back), written);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(back.findBlockByNumber(i).blockFormat().property(rtf::ParagraphBorders),
                     doc.findBlockByNumber(i).blockFormat().property(rtf::ParagraphBorders));
            QCOMPARE(back.findBlockByNumber(i).blockFormat().topMargin(), doc.findBlockByNumber(i).blockFormat().topMargin());
        }
        // Spacing given later keeps the room on top of it, and writes only itself.
        QTextCursor cursor(doc.findBlockByNumber(1));
        ParaFormat spaced;
        spaced.spaceBefore = 150;
        format::applyParaFormat(cursor, spaced);
        QCOMPARE(*format::readPara(doc.findBlockByNumber(1)).spaceBefore, 150);
        QVERIFY(doc.findBlockByNumber(1).blockFormat().topMargin() > 10 + 7);
        QVERIFY(rtf::writeRtf(doc).contains("\\sb150"));
        // Border styles that show no line (none, nil, the table's) draw nothing and leave no room.
        QTextDocument none;
        QVERIFY(rtf::readRtf(none, "{\\rtf1\\ansi a\\par\\pard\\box\\brdrnone b\\par\\pard\\brdrt\\brdrtbl c\\par}").ok);
        QVERIFY(!paragraphborders::hasBorders(none.findBlockByNumber(1).blockFormat()));
        QCOMPARE(none.findBlockByNumber(2).blockFormat().topMargin(), 0.0);
        QVERIFY(ruleRows(render(none, Drawn::Everything), 20, 580, 0, int(none.size().height())).isEmpty());
    }

    void copiesLeaveTheRoomForBordersBehind()
    {
        // A box whose first paragraph has 120 twips (8 px) of spacing above: the room for its
        // top line stands on top of that on screen, but no copy of it may carry the room.
        test::ShownControl shown;
        QVERIFY(shown.load(QString::fromLatin1(kBorderDocument).replace(QStringLiteral("\\cbpat2 boxed one"),
                                                                        QStringLiteral("\\cbpat2\\sb120 boxed one"))));
        QTextEdit *edit = shown.edit;
        const QTextDocument &doc = shown.doc();
        QVERIFY(doc.findBlockByNumber(1).blockFormat().topMargin() > 8 + 7);

        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
        const QMimeData *copied = QApplication::clipboard()->mimeData();
        QCOMPARE(copied->text(), doc.toPlainText());
        QVERIFY(copied->hasFormat(QStringLiteral("application/vnd.oasis.opendocument.text")));
        QTextDocument html;
        html.setHtml(copied->html());
        QCOMPARE(html.toPlainText(), doc.toPlainText());
        const QList<std::pair<int, int>> given{{0, 0}, {1, 8}, {2, 0}, {3, 0}, {4, 0}}; // block, px above
        for (const auto &[block, above] : given) {
            QCOMPARE(html.findBlockByNumber(block).blockFormat().topMargin(), qreal(above));
            QCOMPARE(html.findBlockByNumber(block).blockFormat().bottomMargin(), 0.0);
        }

        // Pasted back at the end, the box gets its room once, as the original has it.
        QTest::keyClick(edit, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(doc.blockCount(), 9);
        QCOMPARE(doc.findBlockByNumber(5).text(), QStringLiteral("boxed one"));
        for (int i = 1; i <= 3; ++i) {
            QCOMPARE(doc.findBlockByNumber(i + 4).blockFormat().topMargin(), doc.findBlockByNumber(i).blockFormat().topMargin());
            QCOMPARE(doc.findBlockByNumber(i + 4).blockFormat().bottomMargin(),
                     doc.findBlockByNumber(i).blockFormat().bottomMargin());
        }
        QCOMPARE(*format::readPara(doc.findBlockByNumber(5)).spaceBefore, 120);
    }

    void breaksAndJoinsInsideABoxKeepItsRoomAtItsEdges()
    {
        test::ShownControl shown;
        QVERIFY(shown.load(QString::fromLatin1(kBorderDocument)));
        KvRTB &control = shown.control;
        QTextEdit *edit = shown.edit;
        const QTextDocument &doc = shown.doc();
        const auto margins = [&doc](int block) {
            const QTextBlockFormat f = doc.findBlockByNumber(block).blockFormat();
            return std::pair(f.topMargin(), f.bottomMargin());
        };
        const auto first = margins(1); // room above only
        const auto last = margins(2);  // room below only
        QVERIFY(first.first > 7 && first.second == 0 && last.first == 0 && last.second > 7);
        const QByteArray written = rtf::writeRtf(doc);

        // Enter in the middle of the box's first paragraph: the room above stays with its first
        // half, and no gap opens between the halves.
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_End);
        QTest::keyClick(edit, Qt::Key_Left);
        QTest::keyClick(edit, Qt::Key_Left);
        QTest::keyClick(edit, Qt::Key_Left);
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(doc.findBlockByNumber(1).text(), QStringLiteral("boxed "));
        QCOMPARE(doc.findBlockByNumber(2).text(), QStringLiteral("one"));
        QCOMPARE(edit->textCursor().position(), doc.findBlockByNumber(2).position());
        QCOMPARE(margins(1), std::pair(first.first, 0.0));
        QCOMPARE(margins(2), std::pair(0.0, 0.0));
        QVERIFY(boundsOf(doc, 2).top() - boundsOf(doc, 1).bottom() < 1);
        // One step of the control's undo takes the break and the room's move back together.
        control.Undo();
        QCOMPARE(doc.findBlockByNumber(1).text(), QStringLiteral("boxed one"));
        QCOMPARE(margins(1), first);
        QCOMPARE(rtf::writeRtf(doc), written);

        // Enter at the end of the box's last paragraph: the new one ends the box and takes the
        // room below; Backspace joins them again and gives it back.
        QTest::keyClick(edit, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_End);
        QCOMPARE(edit->textCursor().block().text(), QStringLiteral("boxed two"));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(margins(2), std::pair(0.0, 0.0));
        QCOMPARE(margins(3), last);
        QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(doc.blockCount(), 5);
        QCOMPARE(edit->textCursor().position(), doc.findBlockByNumber(2).position() + 9); // where they joined
        QCOMPARE(margins(2), last);
        QCOMPARE(rtf::writeRtf(doc), written);

        // Selecting across the box, copying and moving change nothing, nor does Backspace in a
        // locked control.
        const int steps = doc.availableUndoSteps();
        QTest::keyClick(edit, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_Right);
        control.setLocked(true);
        QTest::keyClick(edit, Qt::Key_Backspace);
        control.setLocked(false);
        QCOMPARE(doc.availableUndoSteps(), steps);
        QCOMPARE(rtf::writeRtf(doc), written);

        // Typing over a selection from the end of the box's first paragraph to the end of its
        // last: the one paragraph left is both and has the room above and below.
        QTest::keyClick(edit, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_End);
        QTest::keyClick(edit, Qt::Key_Down, Qt::ShiftModifier);
        QTest::keyClick(edit, Qt::Key_X);
        QCOMPARE(doc.blockCount(), 4);
        QCOMPARE(doc.findBlockByNumber(1).text(), QStringLiteral("boxed onex"));
        QCOMPARE(edit->textCursor().position(), doc.findBlockByNumber(1).position() + 10);
        QCOMPARE(margins(1), std::pair(first.first, last.second));
    }

    void aBoxAtTheTopOfTheDocumentHasItsRoomThere()
    {
        test::ShownControl shown;
        QVERIFY(shown.load(QStringLiteral("{\\rtf1\\ansi\\pard\\box\\brdrs\\brdrw30\\brsp80 first\\par\\pard plain\\par}")));
        KvRTB &control = shown.control;
        QTextEdit *edit = shown.edit;
        const QTextDocument &doc = shown.doc();
        // The top line (80 twips out from the text, 2 px wide) stands in room above the text,
        // below the document's margin, not on the text at the edge.
        const qreal margin = doc.documentMargin();
        const QRectF first = boundsOf(doc, 0);
        QVERIFY2(first.top() >= margin + 7, qPrintable(QString::number(first.top())));
        const QImage screen = edit->viewport()->grab().toImage();
        const QList<int> topRule = ruleRows(screen, 40, 400, 0, int(first.top()) + 4);
        QVERIFY2(!topRule.isEmpty() && topRule.first() >= int(margin) && topRule.last() < first.top() - 4,
                 qPrintable(QString::number(topRule.value(0, -1))));
        QVERIFY(!control.TextRTF().contains(QStringLiteral("\\sb")));

        // A break at the very start leaves the room at the top (the new empty paragraph begins
        // the box), and Backspace puts the document back as it was.
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(edit->textCursor().position(), 1);
        QCOMPARE(boundsOf(doc, 0).top(), first.top());
        QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(edit->textCursor().position(), 0);
        QCOMPARE(boundsOf(doc, 0), first);

        // Printed, the line stands above the text there too, not on it.
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("top.pdf"));
        control.SelPrint(QVariant(pdf));
        QProcess raster;
        raster.start(QStringLiteral("pdftoppm"), {QStringLiteral("-r"), QStringLiteral("100"), QStringLiteral("-singlefile"),
                                                  QStringLiteral("-png"), pdf, dir.filePath(QStringLiteral("top"))});
        QVERIFY(raster.waitForFinished(60000) && raster.exitCode() == 0);
        const QImage page(dir.filePath(QStringLiteral("top.png")));
        const QList<int> rules = ruleRows(page, page.width() / 3, page.width() / 2, 0, page.height() / 2);
        QVERIFY(!rules.isEmpty());
        int ink = rules.first() + 1; // the first row below the top line with dark pixels: the text
        while (rules.contains(ink))
            ++ink;
        // (looked for between the side lines: the text starts an inch in, the left line before it)
        while (ink < page.height() && inkIn(page, QRect(page.width() / 8, ink, page.width() / 2, 1), dark) == 0)
            ++ink;
        QVERIFY2(ink - rules.first() >= 6, qPrintable(QStringLiteral("%1 %2").arg(rules.first()).arg(ink)));

        // Without a box at the top, the document starts at its margin again.
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi plain\\par\\pard\\box\\brdrs boxed\\par}"));
        QCOMPARE(boundsOf(doc, 0).top(), margin);
        for (const QString &plain : {QStringLiteral("{\\rtf1\\ansi no borders\\par}"), QStringLiteral("plain text")}) {
            control.setTextRTF(QString::fromLatin1(kBorderDocument).replace(QStringLiteral("\\pard plain above\\par"), QString()));
            QVERIFY(boundsOf(doc, 0).top() >= margin + 7);
            if (plain.startsWith(QLatin1Char('{')))
                control.setTextRTF(plain);
            else
                control.setText(plain);
            QCOMPARE(boundsOf(doc, 0).top(), margin);
        }
    }

    void leadersFillTheGapBeforeTheirStop()
    {
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, kLeaderDocument).ok);
        const QImage bare = render(doc, Drawn::Nothing);
        const QImage drawn = render(doc, Drawn::Everything);
        const auto isDark = [](QRgb p) { return dark(p); };
        // The dotted gap: ink in it only when drawn, spread over its length (dots, not one mark).
        const QRect dotted = tabGap(doc, 0);
        QVERIFY2(dotted.width() > 200, qPrintable(QString::number(dotted.width())));
        QCOMPARE(inkIn(bare, dotted.adjusted(1, 0, -1, 0), isDark), 0);
        const QRect firstHalf(dotted.left(), dotted.top(), dotted.width() / 2, dotted.height());
        const QRect secondHalf(dotted.center().x(), dotted.top(), dotted.width() / 2, dotted.height());
        QVERIFY(inkIn(drawn, firstHalf, isDark) > 10);
        QVERIFY(inkIn(drawn, secondHalf, isDark) > 10);
        QVERIFY(ruleRows(drawn, dotted.left() + 4, dotted.right() - 4, dotted.top(), dotted.bottom()).isEmpty());
        // The line leader: one rule along the gap, under the baseline.
        const QRect lined = tabGap(doc, 1);
        const QList<int> rule = ruleRows(drawn, lined.left() + 1, lined.right() - 1, lined.top(), lined.bottom());
        QVERIFY(!rule.isEmpty());
        const QTextLine line = doc.findBlockByNumber(1).layout()->lineAt(0);
        QVERIFY(rule.first() >= boundsOf(doc, 1).top() + line.ascent());
        // A stop without a leader leaves its gap empty.
        QCOMPARE(inkIn(drawn, tabGap(doc, 2).adjusted(1, 0, -1, 0), isDark), 0);

        // Leaders are no text, and read back as they were written.
        QCOMPARE(doc.toPlainText(), QStringLiteral("Dotted\t12\nLined\t13\nBare\t14"));
        const QByteArray written = rtf::writeRtf(doc);
        QVERIFY(written.contains("\\tqr\\tldot\\tx5000") && written.contains("\\tlul\\tx5000"));
        QTextDocument back;
        QVERIFY(rtf::readRtf(back, written).ok);
        QCOMPARE(render(back, Drawn::Everything), drawn);
    }

    void shadowsLieUnderShadowedLettersOnly()
    {
        QTextDocument doc;
        QVERIFY(rtf::readRtf(doc, kShadowDocument).ok);
        const QImage bare = render(doc, Drawn::Nothing);
        const QImage drawn = render(doc, Drawn::Everything);
        const QTextBlock block = doc.begin();
        const QTextLine line = block.layout()->lineAt(0);
        const QRectF bounds = boundsOf(doc, 0);
        const int split = int(bounds.left() + line.cursorToX(8));
        const QRect shadowed(int(bounds.left()), int(bounds.top()), split - int(bounds.left()), int(line.height()) + 4);
        const QRect plain(split + 8, int(bounds.top()), 200, int(line.height()) + 4);
        QCOMPARE(inkIn(bare, shadowed, shadowGrey), 0);
        QVERIFY2(inkIn(drawn, shadowed, shadowGrey) > 20, qPrintable(QString::number(inkIn(drawn, shadowed, shadowGrey))));
        QCOMPARE(inkIn(drawn, plain, shadowGrey), 0);
        // The letters stay on top: as much red as without the shadow.
        const auto red = [](QRgb p) { return qRed(p) > 180 && qGreen(p) < 60 && qBlue(p) < 60; };
        QVERIFY(inkIn(drawn, shadowed, red) >= inkIn(bare, shadowed, red) * 9 / 10);
        QCOMPARE(doc.toPlainText(), QStringLiteral("Shadowed Plain"));
        QVERIFY(rtf::writeRtf(doc).contains("\\shad Shadowed"));
    }

    void theEditorAndPrintedPagesShowThemAsNoText()
    {
        test::ShownControl shown;
        QVERIFY(shown.load(QString::fromLatin1(kBorderDocument), QSize(700, 500)));
        KvRTB &control = shown.control;
        QTextEdit *edit = shown.edit;
        const QTextDocument &doc = shown.doc();
        const QRectF one = boundsOf(doc, 1);
        const QRectF two = boundsOf(doc, 2);
        const int textLeft = int(one.left() + doc.findBlockByNumber(1).blockFormat().leftMargin());
        QImage screen = edit->viewport()->grab().toImage();
        QVERIFY(!ruleRows(screen, textLeft + 2, textLeft + 200, int(one.top()) - 9, int(one.top()) - 1).isEmpty());
        QVERIFY(!ruleColumns(screen, textLeft - 9, textLeft - 1, int(one.top()), int(two.bottom())).isEmpty());

        // The user selects everything and copies it: the text as it is, no border or leader.
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), doc.toPlainText());
        QCOMPARE(control.SelText().remove(QLatin1Char('\r')), doc.toPlainText());
        screen = edit->viewport()->grab().toImage();
        QVERIFY(!ruleColumns(screen, textLeft - 9, textLeft - 1, int(one.top()), int(two.bottom())).isEmpty());

        // Shadows on screen: grey beside the red letters.
        control.setTextRTF(QString::fromLatin1(kShadowDocument));
        QApplication::processEvents();
        const QRectF shadowLine = boundsOf(doc, 0);
        QVERIFY(inkIn(edit->viewport()->grab().toImage(), shadowLine.toAlignedRect().adjusted(0, 0, 0, 4), shadowGrey) > 20);
        control.setTextRTF(QString::fromLatin1(kBorderDocument));

        // Printed: the borders and the leaders are on the page.
        QTemporaryDir dir;
        const QString pdf = dir.filePath(QStringLiteral("drawn.pdf"));
        control.SelPrint(QVariant(pdf));
        const int bordered = longRulesOnFirstPage(pdf, dir.path());
        QVERIFY2(bordered >= 3, qPrintable(QString::number(bordered)));
        control.setTextRTF(QStringLiteral("{\\rtf1\\ansi plain above\\par boxed one\\par boxed two\\par}"));
        const QString plainPdf = dir.filePath(QStringLiteral("plain.pdf"));
        control.SelPrint(QVariant(plainPdf));
        QCOMPARE(longRulesOnFirstPage(plainPdf, dir.path()), 0);

        control.setTextRTF(QString::fromLatin1(kLeaderDocument));
        const QString leaders = dir.filePath(QStringLiteral("leaders.pdf"));
        control.SelPrint(QVariant(leaders));
        QProcess text;
        text.start(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), leaders, QStringLiteral("-")});
        QVERIFY(text.waitForFinished(60000));
        const QString printed = QString::fromUtf8(text.readAllStandardOutput());
        QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("Dotted\\s*\\.{10,}\\s*12"))), qPrintable(printed));
        QVERIFY2(printed.contains(QRegularExpression(QStringLiteral("Bare\\s+14"))), qPrintable(printed));
        control.SetRTBChanged(false);
    }
};

KVRTB_REGISTER_TEST(TestRtfDrawn)

#include "test_rtfdrawn.moc"
