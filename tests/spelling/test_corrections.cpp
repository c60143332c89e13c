// Tests of correcting misspelt words in a control's document: one word, every occurrence, and
// taking a correction back, with the control's undo and with UndoSpellCorrection.

#include "corefixture.h"
#include "editing/specialundo.h"
#include "spelling/spellingcorrections.h"
#include "testregistry.h"

#include <QTest>

using namespace kvrtb;
using kvrtb::test::CoreFixture;

class TestCorrections : public QObject {
    Q_OBJECT

private slots:
    void fixOneWord()
    {
        CoreFixture f;
        SpellingCorrections &fix = f.core.spellingCorrections();
        f.surface().setText(QStringLiteral("Teh cat sat on teh mat."));

        // The selected word is replaced, in its capitalisation; the caret ends after it.
        f.surface().setSelection(0, 3);
        f.events.names.clear();
        QCOMPARE(fix.FixSpelling(QStringLiteral("the")), 3);
        QCOMPARE(f.surface().text(), QStringLiteral("The cat sat on teh mat."));
        QCOMPARE(f.surface().selStart(), 3);
        QCOMPARE(f.surface().selLength(), 0);
        QCOMPARE(f.events.names, (QStringList{QStringLiteral("Finish"), QStringLiteral("Ready")}));

        // With nothing selected, the word the caret is in.
        f.surface().setSelection(16, 0);
        QCOMPARE(fix.FixSpelling(QStringLiteral("the"), true, 0xFFFF), 18);
        QCOMPARE(f.surface().text(), QStringLiteral("The cat sat on the mat."));
        QCOMPARE(f.surface().rangeCharFormat(15, 3).backColor, std::optional<Colour>(0x00FFFF));
        QCOMPARE(f.surface().rangeCharFormat(19, 3).backColor, std::optional<Colour>(kAutoColour));

        // Taken back: the misspelt word, selected, without the highlight.
        QCOMPARE(fix.UndoSpellCorrection(), 15);
        QCOMPARE(f.surface().text(), QStringLiteral("The cat sat on teh mat."));
        QCOMPARE(f.surface().selectedText(), QStringLiteral("teh"));
        QCOMPARE(f.surface().rangeCharFormat(15, 3).backColor, std::optional<Colour>(kAutoColour));
        QCOMPARE(fix.UndoSpellCorrection(), -1);   // once only

        // Nothing to correct: blanks at the caret, an empty correction, a read-only editor.
        f.surface().setSelection(3, 0);
        f.surface().setText(QStringLiteral("a  b"));
        f.surface().setSelection(2, 0);
        QCOMPARE(fix.FixSpelling(QStringLiteral("x")), -1);
        f.surface().setSelection(0, 1);
        QCOMPARE(fix.FixSpelling(QString()), -1);
        f.surface().setReadOnly(true);
        QCOMPARE(fix.FixSpelling(QStringLiteral("x")), -1);
        QCOMPARE(fix.FixSpelling2(QStringLiteral("x")), 0);
        QCOMPARE(f.surface().text(), QStringLiteral("a  b"));
    }

    void capitalisation()
    {
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("Teh"), QStringLiteral("the")), QStringLiteral("The"));
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("TEH"), QStringLiteral("the")), QStringLiteral("THE"));
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("teh"), QStringLiteral("the")), QStringLiteral("the"));
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("I"), QStringLiteral("in")), QStringLiteral("In"));
        // A correction with capitals of its own is kept as it is.
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("mcdonalds"), QStringLiteral("McDonald's")),
                 QStringLiteral("McDonald's"));
        QCOMPARE(SpellingCorrections::matchCapitalisation(QStringLiteral("'teh"), QStringLiteral("the")), QStringLiteral("the"));
        QCOMPARE(SpellingCorrections::matchCapitalisation(QString(), QStringLiteral("the")), QStringLiteral("the"));
        // Whole words only, apostrophes inside a word belong to it.
        QCOMPARE(SpellingCorrections::wholeWordOccurrences(QStringLiteral("teh tehs Teh teh's xteh TEH"), QStringLiteral("teh")),
                 (QList<int>{0, 9, 24}));
        QCOMPARE(SpellingCorrections::wholeWordOccurrences(QStringLiteral("teh 'teh' teh."), QStringLiteral("teh")),
                 (QList<int>{0, 5, 10}));
        QVERIFY(SpellingCorrections::wholeWordOccurrences(QStringLiteral("abc"), QString()).isEmpty());
    }

    void changeAllIsOneUndo()
    {
        CoreFixture f;
        SpellingCorrections &fix = f.core.spellingCorrections();
        const QString text = QStringLiteral("Teh end. teh\nTEH, tehran teh");
        f.surface().setText(text);
        f.surface().emptyUndoBuffer();
        f.surface().setSelection(9, 3);
        f.events.names.clear();
        QCOMPARE(fix.FixSpelling2(QStringLiteral("the")), 4);
        const QString fixed = QStringLiteral("The end. the\nTHE, tehran the");
        QCOMPARE(f.surface().text(), fixed);
        QCOMPARE(f.surface().selStart(), 12);   // after the occurrence that was selected
        QCOMPARE(f.events.names, (QStringList{QStringLiteral("Begin"), QStringLiteral("Finish"), QStringLiteral("Ready")}));

        // One undo of the control takes every change back; the next one brings them again.
        QVERIFY(f.core.specialUndo().CanUndo());
        f.core.specialUndo().Undo();
        QCOMPARE(f.surface().text(), text);
        f.core.specialUndo().Undo();
        QCOMPARE(f.surface().text(), fixed);

        // UndoSpellCorrection takes it back too, and selects the first restored word.
        QCOMPARE(fix.UndoSpellCorrection(), 0);
        QCOMPARE(f.surface().text(), text);
        QCOMPARE(f.surface().selectedText(), QStringLiteral("Teh"));

        // A longer correction shifts the later words; taking it back puts each one back.
        f.surface().setSelection(0, 3);
        QCOMPARE(fix.FixSpelling2(QStringLiteral("therefore")), 4);
        QCOMPARE(f.surface().text(), QStringLiteral("Therefore end. therefore\nTHEREFORE, tehran therefore"));
        QCOMPARE(fix.UndoSpellCorrection(), 0);
        QCOMPARE(f.surface().text(), text);

        // After the user changed a corrected word, nothing is taken back.
        f.surface().setSelection(0, 3);
        QCOMPARE(fix.FixSpelling(QStringLiteral("the")), 3);
        f.surface().setSelection(0, 1);
        f.surface().replaceSelection(QStringLiteral("X"));
        const QString edited = f.surface().text();
        QCOMPARE(fix.UndoSpellCorrection(), -1);
        QCOMPARE(f.surface().text(), edited);
    }

    void changeAllSkipsLinks()
    {
        CoreFixture f;
        f.surface().setText(QStringLiteral("wrod http://wrod.example.com wrod"));
        CharFormat link;
        link.locale = kLinkMarkerLocale;
        link.linkEffect = true;
        f.surface().setRangeCharFormat(5, 23, link);
        f.surface().setSelection(0, 4);
        QCOMPARE(f.core.spellingCorrections().FixSpelling2(QStringLiteral("word")), 2);
        QCOMPARE(f.surface().text(), QStringLiteral("word http://wrod.example.com word"));
    }
};

KVRTB_REGISTER_TEST(TestCorrections)
#include "test_corrections.moc"
