// Tests of the find dialog's own abilities (regular expressions, wrap-around, the match count,
// highlighting every match, find in selection), driven through its widgets on a shown control.

#include "core/editorsurface.h"
#include "finddialogdriver.h"
#include "findreplace/findsession.h"
#include "testregistry.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

using namespace kvrtb;

namespace {

using Span = EditorSurface::TextSpan;

} // namespace

class TestFindDialog : public QObject, kvrtb::test::FindDialogDriver {
    Q_OBJECT

    QString status() const { return child<QLabel>("StatusLabel")->text(); }
    QString count() const { return child<QLabel>("MatchCountLabel")->text(); }
    QList<Span> highlights() const
    {
        return m_control->core().surface().decorations(EditorSurface::DecorationLayer::FindMatch);
    }
    void pressEnter(Qt::KeyboardModifiers modifiers = Qt::NoModifier) const
    {
        QTest::keyClick(child<QLineEdit>("FindTxt"), Qt::Key_Return, modifiers);
    }

private slots:
    void cleanup() { close(); }

    void regexErrorsAndLimits()
    {
        open(QStringLiteral("cat cot cut"));
        click("RegexCheck");
        typeFindText(QStringLiteral("c(a|o"));
        QCOMPARE(status(), QStringLiteral("Invalid regular expression: missing closing parenthesis at offset 5."));
        click("FindNextButton");
        QCOMPARE(selection(), qMakePair(0, 0));
        QCOMPARE(messageCount(), 0);
        click("ReplaceAllButton");
        QCOMPARE(m_control->Text(), QStringLiteral("cat cot cut"));
        QCOMPARE(messageCount(), 0);
        QCOMPARE(status(), QStringLiteral("Invalid regular expression: missing closing parenthesis at offset 5."));
        typeFindText(QStringLiteral("x{3,1}"));
        QCOMPARE(status(), QStringLiteral("Invalid regular expression: numbers out of order in {} quantifier at offset 5."));
        // Fixed, the pattern finds; taken literally, the same characters find nothing.
        typeFindText(QStringLiteral("c[ou]t"));
        QCOMPARE(status(), QString());
        pressEnter();
        QCOMPARE(selection(), qMakePair(4, 3));
        click("RegexCheck");
        pressEnter();
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''c[ou]t'' not found after cursor location."));
        click("RegexCheck");

        // Catastrophic backtracking stops at the engine's limit with a message, and the
        // count says it stopped; the document and selection stay.
        const QString line = QString(20000, QLatin1Char('a')) + QStringLiteral("b\nend");
        m_control->setText(line);
        m_control->setSelStart(0);
        typeFindText(QStringLiteral("(a+)+$"));
        pressEnter();
        const QString tooComplex = QStringLiteral(
            "The regular expression needs too many steps on this text, so the search stopped. Make it simpler.");
        QCOMPARE(status(), tooComplex);
        QCOMPARE(selection(), qMakePair(0, 0));
        QTRY_COMPARE(count(), QStringLiteral("Count stopped"));
        click("ReplaceAllButton");
        QCOMPARE(status(), tooComplex);
        QCOMPARE(m_control->Text(), line);
    }

    void brokenCharactersInTheText()
    {
        // A lone surrogate (which pasted or read text can hold) becomes U+FFFD for the search
        // only; positions stay those of the document and a well-formed pair is kept.
        const QString text = QStringLiteral("a") + QChar(0xD800) + QStringLiteral("b x ") + QChar(0xD83D)
            + QChar(0xDE00) + QStringLiteral(" x") + QChar(0xDC00);
        const QString searchable = FindQuery::searchable(text);
        QCOMPARE(searchable.size(), text.size());
        QCOMPARE(searchable.at(1), QChar(QChar::ReplacementCharacter));
        QCOMPARE(searchable.mid(5, 2), text.mid(5, 2));
        QCOMPARE(searchable.back(), QChar(QChar::ReplacementCharacter));
        QVERIFY(QStringView(searchable).isValidUtf16());

        open(text);
        click("RegexCheck");
        typeFindText(QStringLiteral("\\bx\\b"));
        pressEnter();
        const int first = m_control->Text().indexOf(QLatin1Char('x'));
        QCOMPARE(selection(), qMakePair(first, 1));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(selection(), qMakePair(int(m_control->Text().lastIndexOf(QLatin1Char('x'))), 1));
        QTRY_COMPARE(count(), QStringLiteral("2 of 2"));
    }

    void regexReplacementsUseGroups()
    {
        open(QStringLiteral("Smith, John\nDoe, Jane"));
        click("RegexCheck");
        typeFindText(QStringLiteral("(\\w+), (\\w+)"));
        typeInto("ReplacementTxt", QStringLiteral("$2 \\1 ($$, \\\\)"));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("2 replacements made to this document."));
        QCOMPARE(m_control->Text(), QStringLiteral("John Smith ($, \\)\nJane Doe ($, \\)"));
        m_control->HyperUndo();
        QCOMPARE(m_control->Text(), QStringLiteral("Smith, John\nDoe, Jane"));

        // Zero-length matches: every paragraph start takes a prefix, each once.
        typeFindText(QStringLiteral("^"));
        typeInto("ReplacementTxt", QStringLiteral("> "));
        click("ReplaceAllButton");
        QCOMPARE(m_control->Text(), QStringLiteral("> Smith, John\n> Doe, Jane"));

        // "Replace" replaces the selected match with its groups, then selects the next one.
        m_control->setText(QStringLiteral("2024-05-01 and 1999-12-31"));
        m_control->setSelStart(0);
        typeFindText(QStringLiteral("(\\d+)-(\\d+)-(\\d+)"));
        typeInto("ReplacementTxt", QStringLiteral("\\3/\\2/\\1"));
        click("ReplaceButton");
        QCOMPARE(selection(), qMakePair(0, 10));
        click("ReplaceButton");
        QCOMPARE(m_control->Text(), QStringLiteral("01/05/2024 and 1999-12-31"));
        QCOMPARE(selection(), qMakePair(15, 10));

        // Whole word keeps regex matches that are not inside longer words.
        click("WholeWordCheck");
        typeFindText(QStringLiteral("an?"));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''an?'' not found in this document."));
        typeFindText(QStringLiteral("and|\\d{4}"));
        typeInto("ReplacementTxt", QStringLiteral("#"));
        click("ReplaceAllButton");
        QCOMPARE(m_control->Text(), QStringLiteral("01/05/# # #-12-31"));
    }

    void wrapAround()
    {
        open(QStringLiteral("cat one\ncat two"));
        typeFindText(QStringLiteral("cat"));
        pressEnter();
        QCOMPARE(selection(), qMakePair(0, 3));
        QCOMPARE(status(), QString());
        pressEnter();
        QCOMPARE(selection(), qMakePair(8, 3));
        pressEnter();
        QCOMPARE(selection(), qMakePair(0, 3));
        QCOMPARE(status(), QStringLiteral("Passed the end of the document; continued from the start."));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(selection(), qMakePair(8, 3));
        QCOMPARE(status(), QStringLiteral("Passed the start of the document; continued from the end."));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(selection(), qMakePair(0, 3));
        QCOMPARE(status(), QString());
        QCOMPARE(messageCount(), 0);

        // Nothing to find anywhere: one message, no loop.
        typeFindText(QStringLiteral("dog"));
        pressEnter();
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''dog'' not found after cursor location."));
        QCOMPARE(selection(), qMakePair(0, 3));

        // A zero-length pattern moves on each time and wraps, never sticking in place.
        click("RegexCheck");
        typeFindText(QStringLiteral("^"));
        m_control->setSelStart(0);
        pressEnter();
        QCOMPARE(selection(), qMakePair(8, 0));
        pressEnter();
        QCOMPARE(selection(), qMakePair(0, 0));
        QCOMPARE(status(), QStringLiteral("Passed the end of the document; continued from the start."));

        // With wrap-around off, the end of the document is the end of the search.
        click("WrapAroundCheck");
        typeFindText(QStringLiteral("two"));
        pressEnter();
        QCOMPARE(selection(), qMakePair(12, 3));
        pressEnter();
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''two'' not found after cursor location."));

        // Tab goes through the options as they stand: down one column, then the other.
        QWidget *focus = child<QCheckBox>("WholeWordCheck");
        focus->setFocus();
        QStringList visited;
        for (int i = 0; i < 7; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            visited << QApplication::focusWidget()->objectName();
        }
        QCOMPARE(visited, (QStringList{"MatchCaseCheck", "RegexCheck", "WrapAroundCheck", "HighlightAllCheck",
                                       "InSelectionCheck", "ApplyFontColorCheck", "FontColorButton"}));
        QTest::keyClick(m_dialog, Qt::Key_Escape);
        QVERIFY(!m_dialog->isVisible());
    }

    void countAndHighlightAll()
    {
        open(QStringLiteral("A cat, a Cat, a caterpillar and a dog."));
        const QString rtf = m_control->TextRTF();
        typeFindText(QStringLiteral("cat"));
        QTRY_COMPARE(count(), QStringLiteral("3 matches"));
        QCOMPARE(highlights(), (QList<Span>{{2, 3}, {9, 3}, {16, 3}}));
        pressEnter();
        QCOMPARE(count(), QStringLiteral("1 of 3"));
        pressEnter();
        QCOMPARE(count(), QStringLiteral("2 of 3"));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(selection(), qMakePair(2, 3));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(count(), QStringLiteral("3 of 3"));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(count(), QStringLiteral("2 of 3"));
        click("WholeWordCheck");
        QTRY_COMPARE(count(), QStringLiteral("2 of 2"));
        click("MatchCaseCheck");
        QTRY_COMPARE(count(), QStringLiteral("1 match"));
        QCOMPARE(highlights(), (QList<Span>{{2, 3}}));

        // The highlights are paint only: not in the text's RTF, its undo, the modified flag
        // or the formats the control reports.
        QCOMPARE(m_control->TextRTF(), rtf);
        QVERIFY(!m_control->CanUndo());
        select(2, 3);
        QCOMPARE(m_control->SelUnderline(), QVariant(false));
        QCOMPARE(m_control->SelColor(), QVariant(uint(0)));

        // A new search text drops them at once; the dialog closing drops them too.
        typeFindText(QStringLiteral("dog"));
        QCOMPARE(highlights(), QList<Span>());
        QTRY_COMPARE(highlights(), (QList<Span>{{34, 3}}));
        click("HighlightAllCheck");
        QCOMPARE(highlights(), QList<Span>());
        click("HighlightAllCheck");
        QCOMPARE(highlights(), (QList<Span>{{34, 3}}));
        // Typing in the document recounts.
        m_control->setSelStart(0);
        m_control->setSelText(QStringLiteral("dog "));
        QTRY_COMPARE(count(), QStringLiteral("2 matches"));
        click("CloseButton");
        QCOMPARE(highlights(), QList<Span>());
        QCOMPARE(count(), QStringLiteral("2 matches"));
    }

    void findInSelection()
    {
        open(QStringLiteral("cat cat | cat cat | cat"));
        typeFindText(QStringLiteral("cat"));
        QTRY_COMPARE(count(), QStringLiteral("5 matches"));
        // Nothing selected: the option does not stay on.
        click("InSelectionCheck");
        QVERIFY(!child<QCheckBox>("InSelectionCheck")->isChecked());
        QCOMPARE(status(), QStringLiteral("Select the text to search in first."));

        select(8, 10); // "| cat cat "
        click("InSelectionCheck");
        QVERIFY(child<QCheckBox>("InSelectionCheck")->isChecked());
        QTRY_COMPARE(count(), QStringLiteral("2 matches"));
        pressEnter();
        QCOMPARE(selection(), qMakePair(10, 3));
        QCOMPARE(status(), QString());
        pressEnter();
        QCOMPARE(selection(), qMakePair(14, 3));
        pressEnter();
        QCOMPARE(selection(), qMakePair(10, 3));
        QCOMPARE(status(), QStringLiteral("Passed the end of the selection; continued from its start."));

        // Replace all stays inside; the range grows with the replacements and keeps its matches.
        typeInto("ReplacementTxt", QStringLiteral("tiger"));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("2 replacements made in the selection."));
        QCOMPARE(m_control->Text(), QStringLiteral("cat cat | tiger tiger | cat"));
        QTRY_COMPARE(count(), QStringLiteral("No matches"));
        typeFindText(QStringLiteral("tiger"));
        typeInto("ReplacementTxt", QStringLiteral("cat"));
        click("RegexCheck");
        click("ReplaceAllButton");
        QCOMPARE(m_control->Text(), QStringLiteral("cat cat | cat cat | cat"));
        click("ReplaceAllButton");
        QCOMPARE(lastMessage(), QStringLiteral("The text: ''tiger'' not found in the selection."));
        // Typing before the range moves it along.
        m_control->setSelStart(0);
        m_control->setSelText(QStringLiteral("cat "));
        typeFindText(QStringLiteral("cat"));
        QTRY_COMPARE(count(), QStringLiteral("2 matches"));
        pressEnter(Qt::ShiftModifier);
        QCOMPARE(selection(), qMakePair(18, 3));

        // Typing over all of it ends find in selection, and the dialog says so.
        select(0, int(m_control->Text().size()));
        m_control->setSelText(QStringLiteral("cat and cat"));
        QVERIFY(!child<QCheckBox>("InSelectionCheck")->isChecked());
        QCOMPARE(status(), QStringLiteral("The text searched in was replaced, so the whole document is searched."));
        QTRY_COMPARE(count(), QStringLiteral("2 matches"));
    }
};

KVRTB_REGISTER_TEST(TestFindDialog)
#include "test_finddialog.moc"
