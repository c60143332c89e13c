// Tests of the "Find / Replace" dialog, driven through its own controls with key and mouse
// events on a shown control.

#include "editing/specialundo.h"
#include "finddialogdriver.h"
#include "testregistry.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace kvrtb;

class TestFindReplaceFrm : public QObject, kvrtb::test::FindDialogDriver {
    Q_OBJECT

private slots:
    void init() { open(QStringLiteral("The cat sat on the Cat mat with cats.")); }
    void cleanup() { close(); }

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
