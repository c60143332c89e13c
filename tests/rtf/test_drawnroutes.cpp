// The editor skips drawing borders, leaders, shadows and list markers in a document none of whose
// formats has one. Whatever route brings a bordered paragraph in (reading, pasting, typing inside
// the box, undoing its removal), its borders show at once, and a repaint of only part of the
// view still draws the part of the box inside it.

#include "rtftesthelpers.h"
#include "testregistry.h"
#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "surface/drawnformats.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>

using namespace kvrtb;

namespace {

const QString kPlain = QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20 plain above\\par plain below\\par}");

// One indented paragraph boxed by 30-twip lines 80 twips from its text, between two plain ones.
const QByteArray kBoxedParagraph = "\\pard\\li1440\\ri1440\\box\\brdrs\\brdrw30\\brsp80 boxed\\par";

QString boxedDocument()
{
    return QStringLiteral("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20\\pard plain above\\par ")
           + QString::fromLatin1(kBoxedParagraph) + QStringLiteral("\\pard plain below\\par}");
}

bool dark(QRgb pixel)
{
    return qGray(pixel) < 160;
}

// True when a column just left of \a block's text is dark from \a top to \a bottom (document
// pixels; the view is not scrolled): the box's left border runs beside the paragraph there.
bool leftBorderBeside(const QImage &image, const QTextBlock &block, qreal top, qreal bottom)
{
    const QRectF bounds = block.document()->documentLayout()->blockBoundingRect(block);
    const int textLeft = int(bounds.left() + block.blockFormat().leftMargin());
    for (int x = textLeft - 12; x < textLeft; ++x) {
        bool all = x >= 0;
        for (int y = int(top) + 1; y < int(bottom) - 1 && all; ++y)
            all = dark(image.pixel(x, y));
        if (all)
            return true;
    }
    return false;
}

bool leftBorderBeside(const QImage &image, const QTextBlock &block)
{
    const QRectF bounds = block.document()->documentLayout()->blockBoundingRect(block);
    return leftBorderBeside(image, block, bounds.top(), bounds.bottom());
}

} // namespace

class TestDrawnRoutes : public QObject {
    Q_OBJECT

private slots:
    void bordersShowWhicheverRouteBringsThemIn()
    {
        test::ShownControl onScreen;
        QVERIFY(onScreen.load(kPlain, QSize(700, 500)));
        KvRTB &control = onScreen.control;
        QTextEdit *edit = onScreen.edit;
        QTextDocument &doc = onScreen.doc();
        const auto view = [edit] {
            QApplication::processEvents();
            return edit->viewport()->grab().toImage();
        };

        // A plain document: nothing to draw, and the editor knows it.
        control.setTextRTF(kPlain);
        QVERIFY(!drawnformats::mayHoldDrawnFormats(doc));

        // Reading.
        control.setTextRTF(boxedDocument());
        QVERIFY(drawnformats::mayHoldDrawnFormats(doc));
        QVERIFY(leftBorderBeside(view(), doc.findBlockByNumber(1)));

        // Pasting into a plain document.
        control.setTextRTF(kPlain);
        QVERIFY(!leftBorderBeside(view(), doc.findBlockByNumber(1)));
        auto *data = new QMimeData;
        data->setData(QStringLiteral("text/rtf"),
                      "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0\\fs20 " + kBoxedParagraph + kBoxedParagraph + "}");
        QApplication::clipboard()->setMimeData(data);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
        const QTextBlock pasted = doc.findBlock(doc.toPlainText().lastIndexOf(QStringLiteral("boxed")));
        QVERIFY(pasted.isValid());
        QVERIFY(leftBorderBeside(view(), pasted));

        // Typing inside the box: a new paragraph made there joins it, and its side shows.
        control.setTextRTF(boxedDocument());
        QTest::mouseClick(edit->viewport(), Qt::LeftButton, {},
                          edit->cursorRect(QTextCursor(doc.findBlockByNumber(1))).center());
        QTest::keyClick(edit, Qt::Key_End);
        QTest::keyClick(edit, Qt::Key_Return);
        QTest::keyClicks(edit, QStringLiteral("typed in the box"));
        QCOMPARE(doc.findBlockByNumber(2).text(), QStringLiteral("typed in the box"));
        QImage shown = view();
        QVERIFY(leftBorderBeside(shown, doc.findBlockByNumber(1)));
        QVERIFY(leftBorderBeside(shown, doc.findBlockByNumber(2)));

        // Undoing the removal of everything brings the box back, drawn.
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        QVERIFY(doc.toPlainText().isEmpty());
        QVERIFY(!leftBorderBeside(view(), doc.firstBlock()));
        QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(doc.findBlockByNumber(2).text(), QStringLiteral("typed in the box"));
        shown = view();
        QVERIFY(leftBorderBeside(shown, doc.findBlockByNumber(1)));
        QVERIFY(leftBorderBeside(shown, doc.findBlockByNumber(2)));

        // A repaint of the lower part of the view only, from its left edge and from the middle of
        // the box's last paragraph down: the part of the box inside it is drawn.
        const QTextBlock last = doc.findBlockByNumber(2);
        const QRectF lastBounds = doc.documentLayout()->blockBoundingRect(last);
        const qreal from = lastBounds.center().y();
        QImage part(edit->viewport()->size(), QImage::Format_RGB32);
        part.fill(Qt::white);
        {
            QPainter painter(&part);
            const QRectF clip(0, from, part.width(), part.height() - from);
            painter.setClipRect(clip);
            drawnformats::paintOverText(painter, doc, clip, QRectF(QPointF(0, 0), doc.size()), Qt::black);
        }
        QVERIFY(leftBorderBeside(part, last, from, lastBounds.bottom()));
        QVERIFY(!leftBorderBeside(part, doc.findBlockByNumber(1)));
        control.SetRTBChanged(false);
    }
};

KVRTB_REGISTER_TEST(TestDrawnRoutes)

#include "test_drawnroutes.moc"
