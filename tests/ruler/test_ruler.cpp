// The ruler strip: dragging its handles and tab stops on a shown control, what it shows for the
// caret's paragraph, the control's layout with and without it, and wrapping to it.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "printing/pagesetup.h"
#include "ruler/ruler.h"
#include "ruler/rulerstrip.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QClipboard>
#include <QMouseEvent>
#include <QTest>
#include <QTextEdit>

using namespace kvrtb;

namespace {

constexpr int kInch = 1440;
constexpr int kPixelsPerInch = kInch / kTwipsPerPixel;

struct Indents {
    int first;
    int hanging;
    int right;
    bool operator==(const Indents &o) const { return first == o.first && hanging == o.hanging && right == o.right; }
};

char *toString(const Indents &i)
{
    return QTest::toString(QStringLiteral("{first %1, hanging %2, right %3}").arg(i.first).arg(i.hanging).arg(i.right));
}

} // namespace

class TestRuler : public QObject {
    Q_OBJECT

    RecordingPlatformServices m_services;
    std::unique_ptr<KvRTB> m_control;

    KvRTB &control() { return *m_control; }
    EditorSurface &surface() { return m_control->RichTextBox1(); }
    RulerStrip *strip() { return qobject_cast<RulerStrip *>(m_control->MasterPic()); }
    QWidget *part(const char *name) { return m_control->MasterPic()->findChild<QWidget *>(QLatin1String(name)); }

    Indents indentsOfParagraph(int paragraph)
    {
        int position = 0;
        const QStringList paragraphs = surface().text().split(QLatin1Char('\n'));
        for (int i = 0; i < paragraph; ++i)
            position += paragraphs[i].size() + 1;
        const ParaFormat f = surface().paraFormatAt(position);
        return {f.leftIndent.value_or(0), f.hangingIndent.value_or(0), f.rightIndent.value_or(0)};
    }

    QList<int> tabsOfParagraph(int paragraph)
    {
        int position = 0;
        const QStringList paragraphs = surface().text().split(QLatin1Char('\n'));
        for (int i = 0; i < paragraph; ++i)
            position += paragraphs[i].size() + 1;
        return surface().paraFormatAt(position).tabStops.value_or(QList<int>());
    }

    // Drags with the left button from one point of the strip to another, as a user does.
    void drag(QPoint from, QPoint to)
    {
        QTest::mousePress(strip(), Qt::LeftButton, {}, from);
        QTest::mouseMove(strip(), (from + to) / 2);
        QTest::mouseMove(strip(), to);
        QTest::mouseRelease(strip(), Qt::LeftButton, {}, to);
    }

    // The mouse passes over the strip with no button held (QTest moves the real cursor for that,
    // which an offscreen platform does not follow).
    void hover(QPoint pos)
    {
        QMouseEvent move(QEvent::MouseMove, pos, strip()->mapToGlobal(pos), Qt::NoButton, Qt::NoButton, {});
        QApplication::sendEvent(strip(), &move);
    }

    QPoint centreOf(const char *handle) { return part(handle)->geometry().center(); }

    // Four paragraphs; the middle two selected (from inside the second to inside the third).
    void selectMiddleParagraphs()
    {
        surface().setText(QStringLiteral("alpha one\nbravo two\ncharlie three\ndelta four"));
        surface().emptyUndoBuffer();
        surface().setSelection(12, 14);
        control().core().refreshRuler();
    }

private slots:
    void init()
    {
        m_control = std::make_unique<KvRTB>(m_services);
        m_control->resize(900, 300);
        m_control->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_control.get()));
        m_control->core().ruler().setUnit(Ruler::Unit::Inch);
    }

    void cleanup() { m_control.reset(); }

    void handleDragsIndentExactlyTheSelectedParagraphsAsOneUndoStep()
    {
        selectMiddleParagraphs();
        QVERIFY(strip());
        const Indents none{0, 0, 0};

        // The first-line handle, one inch to the right: the paragraph moves as a whole.
        drag(centreOf("LIHandle"), centreOf("LIHandle") + QPoint(kPixelsPerInch, 0));
        QCOMPARE(indentsOfParagraph(0), none);
        QCOMPARE(indentsOfParagraph(1), (Indents{kInch, 0, 0}));
        QCOMPARE(indentsOfParagraph(2), (Indents{kInch, 0, 0}));
        QCOMPARE(indentsOfParagraph(3), none);
        QCOMPARE(control().SelIndent(), QVariant(kInch));
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(kInch));

        // One undo takes the whole drag back, for both paragraphs.
        QVERIFY(control().CanUndo());
        control().Undo();
        for (int p = 0; p < 4; ++p)
            QCOMPARE(indentsOfParagraph(p), none);
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(0));
        surface().setSelection(12, 14); // undo leaves the caret where the change was

        // The hanging handle half an inch in: the following lines start there.
        drag(centreOf("HIHandle"), centreOf("HIHandle") + QPoint(kPixelsPerInch / 2, 0));
        QCOMPARE(indentsOfParagraph(1), (Indents{0, kInch / 2, 0}));
        QCOMPARE(indentsOfParagraph(2), (Indents{0, kInch / 2, 0}));
        QCOMPARE(indentsOfParagraph(0), none);
        QCOMPARE(control().SelHangingIndent(), QVariant(kInch / 2));

        // The right handle an inch to the left.
        drag(centreOf("RIHandle"), centreOf("RIHandle") - QPoint(kPixelsPerInch, 0));
        QCOMPARE(indentsOfParagraph(2), (Indents{0, kInch / 2, kInch}));
        QCOMPARE(indentsOfParagraph(3), none);
        QCOMPARE(control().SelRightIndent(), QVariant(kInch));

        // Positions snap to sixteenths of an inch.
        drag(centreOf("LIHandle"), centreOf("LIHandle") + QPoint(kPixelsPerInch / 4 + 2, 0));
        QCOMPARE(indentsOfParagraph(1).first, kInch / 4);
    }

    void dragsThatAreCancelledOrCannotApplyChangeNothing()
    {
        selectMiddleParagraphs();
        const QString before = surface().rtf();

        // Escape during a drag, then the release.
        const QPoint from = centreOf("LIHandle");
        QTest::mousePress(strip(), Qt::LeftButton, {}, from);
        QTest::mouseMove(strip(), from + QPoint(kPixelsPerInch, 0));
        QCOMPARE(part("LIHandle")->geometry().center().x(), from.x() + kPixelsPerInch);
        QTest::keyClick(strip(), Qt::Key_Escape);
        QTest::mouseRelease(strip(), Qt::LeftButton, {}, from + QPoint(kPixelsPerInch, 0));
        QCOMPARE(surface().rtf(), before);
        QCOMPARE(part("LIHandle")->geometry().center(), from);

        // The right button during a drag.
        QTest::mousePress(strip(), Qt::LeftButton, {}, centreOf("RIHandle"));
        QTest::mouseMove(strip(), centreOf("RIHandle") - QPoint(60, 0));
        QTest::mousePress(strip(), Qt::RightButton, {}, centreOf("RIHandle") - QPoint(60, 0));
        QTest::mouseRelease(strip(), Qt::LeftButton, {}, centreOf("RIHandle") - QPoint(60, 0));
        QCOMPARE(surface().rtf(), before);

        // Dragging past the end of the ruler stops at its margins.
        drag(centreOf("LIHandle"), centreOf("LIHandle") - QPoint(300, 0));
        QCOMPARE(indentsOfParagraph(1).first, 0);
        drag(centreOf("LIHandle"), QPoint(strip()->width() + 200, centreOf("LIHandle").y()));
        QVERIFY(indentsOfParagraph(1).first < control().core().ruler().rightMargin());
        QVERIFY(indentsOfParagraph(1).first > 0);
        control().Undo();

        // A locked editor: the user's text stays as it is.
        control().setLocked(true);
        drag(centreOf("LIHandle"), centreOf("LIHandle") + QPoint(kPixelsPerInch, 0));
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(2 * kInch), 14));
        QCOMPARE(surface().rtf(), before);
        control().setLocked(false);

        // A cleared ruler shows no handles and takes no clicks until it is drawn again.
        control().ClearRuler();
        QVERIFY(!part("LIHandle")->isVisible());
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(2 * kInch), 14));
        QCOMPARE(surface().rtf(), before);
        control().DrawRuler();
        QVERIFY(part("LIHandle")->isVisible());
    }

    void tabStopsAreAddedMovedAndRemovedOnTheStrip()
    {
        selectMiddleParagraphs();
        const int y = strip()->height() - 8;

        // A click adds a stop to both selected paragraphs.
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(kInch), y));
        QCOMPARE(tabsOfParagraph(1), QList<int>{kInch});
        QCOMPARE(tabsOfParagraph(2), QList<int>{kInch});
        QCOMPARE(tabsOfParagraph(0), QList<int>{});
        QCOMPARE(control().SelTabCount(), QVariant(1));
        // A click on an existing stop adds nothing.
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(kInch), y));
        QCOMPARE(tabsOfParagraph(1), QList<int>{kInch});

        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(3 * kInch), y));
        QCOMPARE(tabsOfParagraph(2), (QList<int>{kInch, 3 * kInch}));

        // Dragged along, a stop moves; the stops stay in order.
        drag(QPoint(strip()->xForTwips(kInch), y), QPoint(strip()->xForTwips(4 * kInch), y));
        QCOMPARE(tabsOfParagraph(1), (QList<int>{3 * kInch, 4 * kInch}));
        control().Undo();
        QCOMPARE(tabsOfParagraph(1), (QList<int>{kInch, 3 * kInch}));
        control().Undo(); // the surface's undo toggles: a second one redoes
        QCOMPARE(tabsOfParagraph(2), (QList<int>{3 * kInch, 4 * kInch}));
        surface().setSelection(12, 14);
        control().core().refreshRuler();

        // The pointer shows what can be dragged.
        hover(QPoint(strip()->xForTwips(3 * kInch), y));
        QCOMPARE(strip()->cursor().shape(), Qt::SizeHorCursor);
        hover(QPoint(strip()->xForTwips(2 * kInch), y));
        QCOMPARE(strip()->cursor().shape(), Qt::ArrowCursor);
        hover(centreOf("RIHandle"));
        QCOMPARE(strip()->cursor().shape(), Qt::SizeHorCursor);

        // Dragged off the strip, it goes.
        drag(QPoint(strip()->xForTwips(3 * kInch), y), QPoint(strip()->xForTwips(3 * kInch), strip()->height() + 40));
        QCOMPARE(tabsOfParagraph(1), QList<int>{4 * kInch});
        QCOMPARE(tabsOfParagraph(2), QList<int>{4 * kInch});

        // Clicks left of the text or past the right margin add nothing.
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(0) - 3, y));
        QTest::mouseClick(strip(), Qt::LeftButton, {},
                          QPoint(strip()->xForTwips(control().core().ruler().rightMargin()) + 10, y));
        QCOMPARE(tabsOfParagraph(1), QList<int>{4 * kInch});
    }

    void indentsAndTabStopsSurviveAnRtfRoundTrip()
    {
        selectMiddleParagraphs();
        const int y = strip()->height() - 8;
        drag(centreOf("LIHandle"), centreOf("LIHandle") + QPoint(kPixelsPerInch / 2, 0));
        drag(centreOf("HIHandle"), centreOf("HIHandle") + QPoint(kPixelsPerInch, 0));
        drag(centreOf("RIHandle"), centreOf("RIHandle") - QPoint(kPixelsPerInch / 4, 0));
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(2 * kInch), y));
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(5 * kInch / 2), y));
        // The hanging handle started where the first line now starts: an inch further on is
        // an inch of hanging indent.
        const Indents expected{kInch / 2, kInch, kInch / 4};
        QCOMPARE(indentsOfParagraph(2), expected);

        const QString rtf = control().TextRTF();
        KvRTB other(m_services);
        other.setTextRTF(rtf);
        for (int p = 0; p < 4; ++p) {
            int position = 0;
            const QStringList paragraphs = other.Text().split(QLatin1Char('\n'));
            for (int i = 0; i < p; ++i)
                position += paragraphs[i].size() + 1;
            const ParaFormat f = other.RichTextBox1().paraFormatAt(position);
            const bool selected = p == 1 || p == 2;
            QCOMPARE(f.leftIndent.value_or(0), selected ? expected.first : 0);
            QCOMPARE(f.hangingIndent.value_or(0), selected ? expected.hanging : 0);
            QCOMPARE(f.rightIndent.value_or(0), selected ? expected.right : 0);
            QCOMPARE(f.tabStops.value_or(QList<int>()), selected ? (QList<int>{2 * kInch, 5 * kInch / 2}) : QList<int>());
        }

        // Centimetres snap to quarter centimetres, and survive the round trip too.
        control().core().ruler().setUnit(Ruler::Unit::Centimetre);
        surface().setSelStart(0);
        control().core().refreshRuler();
        QTest::mouseClick(strip(), Qt::LeftButton, {}, QPoint(strip()->xForTwips(kInch) + 1, y));
        const int quarterCentimetres = int(std::lround(kInch / (kTwipsPerCentimetre / 4)));
        const int snapped = int(std::lround(quarterCentimetres * kTwipsPerCentimetre / 4));
        QCOMPARE(tabsOfParagraph(0), QList<int>{snapped});
        other.setTextRTF(control().TextRTF());
        QCOMPARE(other.RichTextBox1().paraFormatAt(0).tabStops.value_or(QList<int>()), QList<int>{snapped});
    }

    void theStripFollowsTheCaretUndoAndPaste()
    {
        surface().setText(QStringLiteral("plain\nindented\nplain again"));
        surface().setSelection(6, 0);
        ParaFormat indented;
        indented.leftIndent = 2 * kInch;
        indented.tabStops = QList<int>{3 * kInch};
        surface().setSelectionParaFormat(indented);
        surface().emptyUndoBuffer();

        surface().setSelStart(8);
        control().core().refreshRuler();
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(2 * kInch));
        QCOMPARE(control().core().ruler().marks().tabStops, QList<int>{3 * kInch});
        surface().setSelStart(1);
        control().core().refreshRuler();
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(0));
        QVERIFY(control().core().ruler().marks().tabStops.isEmpty());

        // As the user moves the caret: arrow keys and clicks in the editor.
        auto *area = qobject_cast<QAbstractScrollArea *>(surface().widget());
        QVERIFY(area);
        surface().setFocus();
        QTest::keyClick(area->viewport(), Qt::Key_Down);
        QCOMPARE(surface().paraFormatAt(surface().selStart()).leftIndent.value_or(0), 2 * kInch);
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(2 * kInch));
        QTest::keyClick(area->viewport(), Qt::Key_Up);
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(0));
        int clickY = 0;
        for (int y = 0; y < area->viewport()->height(); ++y) {
            if (surface().charFromPoint(QPoint(200, y)) >= 6 && surface().charFromPoint(QPoint(200, y)) <= 14) {
                clickY = y;
                break;
            }
        }
        QVERIFY(clickY > 0);
        QTest::mouseClick(area->viewport(), Qt::LeftButton, {}, QPoint(200, clickY));
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(2 * kInch));
        surface().setSelStart(1);
        control().core().refreshRuler();

        // Undo brings the handles back with the paragraph.
        drag(centreOf("LIHandle"), centreOf("LIHandle") + QPoint(kPixelsPerInch, 0));
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(kInch));
        control().Undo();
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(0));

        // A paste brings them in line with the paragraph the caret ends in.
        surface().setText(QStringLiteral("plain\nindented"));
        surface().setSelection(6, 0);
        surface().setSelectionParaFormat(indented);
        surface().setSelStart(0);
        control().core().refreshRuler();
        surface().setSelStart(6); // moved by the host: the ruler is not told
        QCOMPARE(control().core().ruler().marks().firstLine, 0);
        QApplication::clipboard()->setText(QStringLiteral("pasted "));
        QVERIFY(surface().canPaste());
        control().Paste();
        QCOMPARE(surface().text(), QStringLiteral("plain\npasted indented"));
        QCOMPARE(control().core().ruler().marks().firstLine, 2 * kInch);
        QCOMPARE(control().core().ruler().marks().tabStops, QList<int>{3 * kInch});
        QCOMPARE(part("LIHandle")->geometry().center().x(), strip()->xForTwips(2 * kInch));
    }

    void layoutLeavesTheTopStripToTheRulerOnlyWhileItIsShown()
    {
        QWidget *editor = surface().widget();
        control().resize(500, 300);
        QCOMPARE(control().MasterPic()->geometry(), QRect(0, 0, 500, KvRTB::kRulerStripHeight));
        QVERIFY(control().MasterPic()->isVisible());
        QCOMPARE(control().RTBPicture()->geometry(), QRect(0, KvRTB::kRulerStripHeight, 500, 300 - KvRTB::kRulerStripHeight));
        QCOMPARE(editor->geometry(), QRect(0, 0, 500, 300 - KvRTB::kRulerStripHeight));
        // The strip's children cover it; the handles sit on it.
        QCOMPARE(part("ShadeRulerPic")->geometry(), control().MasterPic()->rect());
        QCOMPARE(part("Image1")->geometry(), control().MasterPic()->rect());
        // (The right margin's handle may lie beyond a control narrower than the page.)
        for (const char *handle : {"LIHandle", "HIHandle"})
            QVERIFY(control().MasterPic()->rect().contains(part(handle)->geometry().center()));

        control().setDisplayRuler(false);
        QVERIFY(!control().MasterPic()->isVisible());
        QCOMPARE(control().RTBPicture()->geometry(), QRect(0, 0, 500, 300));
        QCOMPARE(editor->geometry(), QRect(0, 0, 500, 300));
        control().resize(420, 200);
        QCOMPARE(editor->geometry(), QRect(0, 0, 420, 200));

        control().setDisplayRuler(true);
        QVERIFY(control().MasterPic()->isVisible());
        QCOMPARE(control().MasterPic()->width(), 420);
        QCOMPARE(editor->geometry(), QRect(0, 0, 420, 200 - KvRTB::kRulerStripHeight));
        // The right margin's handle follows the new width of nothing but the page.
        QCOMPARE(part("RIHandle")->geometry().center().x(),
                 strip()->xForTwips(control().core().ruler().rightMargin()));

        // Lower than the strip: the editor gets no height, nothing breaks.
        control().resize(300, 10);
        QCOMPARE(control().MasterPic()->height(), 10);
        QCOMPARE(editor->height(), 0);
        control().resize(300, 200);
        QCOMPARE(editor->geometry(), QRect(0, 0, 300, 200 - KvRTB::kRulerStripHeight));
    }

    void wrappingToTheRulerWrapsAtItsRightMargin()
    {
        auto *edit = qobject_cast<QTextEdit *>(surface().widget());
        QVERIFY(edit);
        control().setRightMargin(2000);
        control().Word_Wrap(true, true);
        const int academic = printableWidthTwips(Academic);
        QCOMPARE(control().core().ruler().rightMargin(), academic);
        QCOMPARE(edit->lineWrapMode(), QTextEdit::FixedPixelWidth);
        QCOMPARE(edit->lineWrapColumnOrWidth(), academic / kTwipsPerPixel);

        // A narrower page margin widens the ruler, and the wrapping follows it.
        control().setPrinterMargin(TenEighty);
        QCOMPARE(control().core().ruler().rightMargin(), academic + 2 * (Academic - TenEighty));
        QCOMPARE(edit->lineWrapColumnOrWidth(), (academic + 720) / kTwipsPerPixel);
        QCOMPARE(part("RIHandle")->geometry().center().x(), strip()->xForTwips(academic + 720));

        // Margins past reason leave an inch of text; a negative one counts as none.
        control().setPrinterMargin(1000000);
        QCOMPARE(control().core().ruler().rightMargin(), kInch);
        control().setPrinterMargin(-5);
        QCOMPARE(control().core().ruler().rightMargin(), printableWidthTwips(0));

        // Other wrapping leaves the ruler's margin alone.
        control().Word_Wrap(true, false);
        const int width = edit->lineWrapColumnOrWidth();
        const QTextEdit::LineWrapMode mode = edit->lineWrapMode();
        control().setPrinterMargin(Academic);
        QCOMPARE(edit->lineWrapColumnOrWidth(), width);
        QCOMPARE(edit->lineWrapMode(), mode);
    }
};

QTEST_MAIN(TestRuler)
#include "test_ruler.moc"
