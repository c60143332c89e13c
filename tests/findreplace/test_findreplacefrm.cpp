// Tests of the "Find / Replace" dialog, driven through its own controls with key and mouse
// events on a shown control.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "editing/specialundo.h"
#include "findreplace/findreplace.h"
#include "findreplace/findreplacefrm.h"
#include "testregistry.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace kvrtb;

class TestFindReplaceFrm : public QObject {
    Q_OBJECT

    RecordingPlatformServices m_services;
    std::unique_ptr<KvRTB> m_control;
    FindReplaceFrm *m_dialog = nullptr;

    template <typename T>
    T *child(const char *name)
    {
        T *widget = m_dialog->findChild<T *>(QLatin1String(name));
        if (!widget)
            qFatal("no control %s in the dialog", name);
        return widget;
    }
    void click(const char *name) { QTest::mouseClick(child<QAbstractButton>(name), Qt::LeftButton); }
    QPair<int, int> selection() const { return {m_control->SelStart(), m_control->SelLength()}; }
    /// The text of the last message box, after checking its title and icon.
    QString lastMessage() const
    {
        const auto boxes = m_services.callsOf(QStringLiteral("messageBox"));
        if (boxes.isEmpty())
            return QString();
        if (boxes.last().title != QLatin1String("Search Complete") || boxes.last().icon != int(MessageIcon::Information))
            return QStringLiteral("wrong box: ") + boxes.last().title;
        return boxes.last().text;
    }
    int messageCount() const { return int(m_services.callsOf(QStringLiteral("messageBox")).size()); }
    void typeFindText(const QString &text)
    {
        QLineEdit *find = child<QLineEdit>("FindTxt");
        find->selectAll();
        QTest::keyClick(find, Qt::Key_Delete);
        QTest::keyClicks(find, text);
    }

private slots:
    void init()
    {
        threadState().cancelRequested = false;
        m_services = RecordingPlatformServices();
        m_control = std::make_unique<KvRTB>(m_services);
        m_control->resize(500, 300);
        m_control->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_control.get()));
        m_control->setText(QStringLiteral("The cat sat on the Cat mat with cats."));
        m_control->setSelStart(0);
        m_control->ShowFindReplace();
        m_dialog = m_control->core().findReplace().dialog();
        QVERIFY(m_dialog);
        QVERIFY(QTest::qWaitForWindowExposed(m_dialog));
    }

    void cleanup()
    {
        m_control.reset();
        m_dialog = nullptr;
    }

    void layoutAndButtons()
    {
        QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Find / Replace"));
        QVERIFY(!m_dialog->isModal());
        QCOMPARE(child<QPushButton>("ReplaceAllButton")->text(), QStringLiteral("Replace All"));
        QVERIFY(m_dialog->findChild<QGroupBox *>() != nullptr);
        // Nothing to find: the search buttons wait for text.
        QVERIFY(!child<QPushButton>("FindNextButton")->isEnabled());
        typeFindText(QStringLiteral("cat"));
        QVERIFY(child<QPushButton>("FindNextButton")->isEnabled());
        QVERIFY(child<QPushButton>("ReplaceAllButton")->isEnabled());
        // Showing it again keeps the one dialog and takes a selected word as the text to find.
        m_control->setSelStart(19);
        m_control->setSelLength(3);
        m_control->ShowFindReplace();
        QCOMPARE(m_control->core().findReplace().dialog(), m_dialog);
        QCOMPARE(child<QLineEdit>("FindTxt")->text(), QStringLiteral("Cat"));
    }

    void findNextAndPrevious()
    {
        // Without wrap-around, a search stops at the end of the document and says so.
        click("WrapAroundCheck");
        typeFindText(QStringLiteral("cat"));
        click("WholeWordCheck");
        click("FindNextButton");
        QCOMPARE(selection(), qMakePair(4, 3));
        // Enter in the find box is "Find Next".
        QTest::keyClick(child<QLineEdit>("FindTxt"), Qt::Key_Return);
        QCOMPARE(selection(), qMakePair(19, 3));
        click("FindNextButton");
        QCOMPARE(selection(), qMakePair(19, 3));
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''cat'' not found after cursor location."));

        click("MatchCaseCheck");
        click("FindPreviousButton");
        QCOMPARE(selection(), qMakePair(4, 3));
        click("FindPreviousButton");
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''cat'' not found ahead of cursor location."));
        QCOMPARE(messageCount(), 2);
    }

    void replaceAllFromTheDialog()
    {
        typeFindText(QStringLiteral("cat"));
        QTest::keyClicks(child<QLineEdit>("ReplacementTxt"), QStringLiteral("dog"));
        click("WholeWordCheck");
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("2 replacements made to this document."));
        QCOMPARE(m_control->Text(), QStringLiteral("The dog sat on the dog mat with cats."));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''cat'' not found in this document."));

        // The editor's own undo holds no step; the control's undo takes the pass back in one go.
        QVERIFY(!m_control->CanUndo());
        m_control->HyperUndo();
        QCOMPARE(m_control->Text(), QStringLiteral("The cat sat on the Cat mat with cats."));

        // With a colour chosen from the dialog's button, the replacements take it.
        m_services.colourDialogAnswers << ColourDialogResult{true, 0x00008000};
        click("FontColorButton");
        QVERIFY(child<QCheckBox>("ApplyFontColorCheck")->isChecked());
        typeFindText(QStringLiteral("mat"));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("1 replacements made to this document."));
        QCOMPARE(m_control->Text(), QStringLiteral("The cat sat on the Cat dog with cats."));
        m_control->setSelStart(23);
        m_control->setSelLength(3);
        QCOMPARE(m_control->SelColor(), QVariant(uint(0x00008000)));
        m_control->setSelStart(19);
        QVERIFY(m_control->SelColor() != QVariant(uint(0x00008000)));
    }

    void replaceButton()
    {
        typeFindText(QStringLiteral("cat"));
        QTest::keyClicks(child<QLineEdit>("ReplacementTxt"), QStringLiteral("cow"));
        click("ReplaceButton"); // finds the first
        QCOMPARE(selection(), qMakePair(4, 3));
        QCOMPARE(messageCount(), 0);
        click("ReplaceButton"); // replaces it, finds the next
        QCOMPARE(m_control->Text(), QStringLiteral("The cow sat on the Cat mat with cats."));
        QCOMPARE(selection(), qMakePair(19, 3));
        click("ReplaceButton");
        click("ReplaceButton");
        QCOMPARE(m_control->Text(), QStringLiteral("The cow sat on the cow mat with cows."));
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''cat'' not found after cursor location."));
    }

    void closingStops()
    {
        QVERIFY(!threadState().cancelRequested);
        click("CloseButton");
        QVERIFY(!m_dialog->isVisible());
        QVERIFY(threadState().cancelRequested);
        threadState().cancelRequested = false;
        m_control->ShowFindReplace();
        QVERIFY(m_dialog->isVisible());
        QTest::keyClick(m_dialog, Qt::Key_Escape);
        QVERIFY(!m_dialog->isVisible());
        QVERIFY(threadState().cancelRequested);
    }
};

KVRTB_REGISTER_TEST(TestFindReplaceFrm)
#include "test_findreplacefrm.moc"
