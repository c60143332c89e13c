// Spelling as you type, driven as a user drives it: keys typed into a shown control, the idle
// checking let run, the underline read back from the surface, the pop-up menu answered.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "editorinput/popupmenu.h"
#include "spelling/misspellingscanner.h"
#include "spelling/spellasyoutype.h"

#include <QTest>
#include <QTextEdit>

using namespace kvrtb;
using Span = EditorSurface::TextSpan;
using Layer = EditorSurface::DecorationLayer;

namespace {

struct Shown {
    RecordingPlatformServices services;
    KvRTB control{services};

    explicit Shown(const QString &text = QString())
    {
        control.resize(500, 200);
        control.show();
        if (!QTest::qWaitForWindowExposed(&control))
            qFatal("the control was not shown");
        control.setText(text);
        control.EmptyRTBUndoRedoBuffer();
        control.SetInFocus();
    }
    QTextEdit *editor() { return qobject_cast<QTextEdit *>(control.RichTextBox1().widget()); }
    EditorSurface &surface() { return control.core().surface(); }
    SpellAsYouType &spelling() { return control.core().spellAsYouType(); }
    /// Lets the idle checking finish, as the event loop would between keystrokes.
    void settle()
    {
        QTRY_VERIFY(!spelling().hasPending());
        QCoreApplication::processEvents();
    }
    QStringList underlined()
    {
        QStringList words;
        for (const Span &span : surface().decorations(Layer::Misspelling))
            words << surface().textRange(span.start, span.length);
        return words;
    }
    void rightClickAt(int position)
    {
        QTextCursor cursor(editor()->document());
        cursor.setPosition(position);
        const QPoint point = editor()->cursorRect(cursor).center() + QPoint(2, 0);
        services.cursor = editor()->viewport()->mapToGlobal(point);
        QTest::mouseClick(editor()->viewport(), Qt::RightButton, Qt::NoModifier, point);
    }
};

QStringList wordsOf(const QString &text, const QList<Span> &spans)
{
    QStringList words;
    for (const Span &span : spans)
        words << text.mid(span.start, span.length);
    return words;
}

} // namespace

class TestSpellAsYouType : public QObject {
    Q_OBJECT
private slots:
    void init() { threadState() = ThreadState(); }

    void findsWhatTheScanFindsWhereItStands()
    {
        // The spans give exactly the words a whole-text scan reports, at their own places,
        // with addresses, listed abbreviations, outer apostrophes and "word:" left out.
        const QString text = QStringLiteral("Teh cat visits www.exampel.com and mail@speling.org, "
                                            "'quux' sees e.g.x bzzt: and wrold# but not a 1 2; zorp ends.");
        QStringList scanned;
        MisspellingScanner::scan(text, scanned, {});
        const QList<Span> spans = SpellAsYouType::misspeltSpans(text);
        QCOMPARE(wordsOf(text, spans), scanned);
        QCOMPARE(scanned, (QStringList{"Teh", "zorp"}));
        QCOMPARE(spans.first().start, 0);
        QCOMPARE(spans.last().start, text.indexOf(QStringLiteral("zorp")));
        // A piece removed from inside a word joins it, as the scan joins it.
        const QString joined = QStringLiteral("abchttp://x.y.comdef");
        QStringList joinedScan;
        MisspellingScanner::scan(joined, joinedScan, {});
        QCOMPARE(wordsOf(joined, SpellAsYouType::misspeltSpans(joined)).size(), joinedScan.size());
        QVERIFY(SpellAsYouType::misspeltSpans(QString()).isEmpty());
    }

    void offByDefaultAndUnderlinesWhileTyping()
    {
        Shown s(QStringLiteral("The cat sat.\nA second line."));
        QCOMPARE(s.control.SpellAsYouType(), false);
        QCOMPARE(s.control.property("SpellAsYouType").toBool(), false);
        QTest::keyClicks(s.editor(), QStringLiteral("wrold "));
        QCoreApplication::processEvents();
        QVERIFY(s.surface().decorations(Layer::Misspelling).isEmpty());

        s.control.setSpellAsYouType(true);
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrold"}));

        // Typing a misspelt word in the second paragraph underlines it; fixing one removes its line.
        s.control.setSelStart(s.control.Text().size());
        QTest::keyClicks(s.editor(), QStringLiteral(" Anothr"));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrold", "Anothr"}));
        QTest::keyClick(s.editor(), Qt::Key_Backspace);
        QTest::keyClicks(s.editor(), QStringLiteral("er"));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrold"}));

        // Edits before a mark move it; a new document is checked whole; off removes every mark.
        s.control.setSelStart(0);
        QTest::keyClicks(s.editor(), QStringLiteral("So "));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrold"}));
        s.control.setText(QStringLiteral("one twoo\n\nthree fuor"));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"twoo", "fuor"}));
        s.control.setSpellAsYouType(false);
        QVERIFY(s.surface().decorations(Layer::Misspelling).isEmpty());
        QTest::keyClicks(s.editor(), QStringLiteral("zxqv "));
        QCoreApplication::processEvents();
        QVERIFY(s.surface().decorations(Layer::Misspelling).isEmpty());
    }

    void underlineNeverReachesTextRtfUndoOrSelUnderline()
    {
        Shown plain(QStringLiteral("Teh quick fox"));
        const QString rtfBefore = plain.control.TextRTF();

        Shown s(QStringLiteral("Teh quick fox"));
        s.control.SetRTBChanged(false);
        s.control.setSpellAsYouType(true);
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"Teh"}));
        QCOMPARE(s.control.TextRTF(), rtfBefore);
        QCOMPARE(s.control.CanUndo(), false);
        QCOMPARE(s.control.HasRTBChanged(), false);
        s.control.setSelStart(0);
        s.control.setSelLength(3);
        QCOMPARE(s.control.SelUnderline().toBool(), false);

        // Typing then undoing brings back the same text and RTF, and the word is marked again.
        s.control.setSelStart(s.control.Text().size());
        QTest::keyClicks(s.editor(), QStringLiteral(" jmups"));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"Teh", "jmups"}));
        s.control.Undo();
        s.settle();
        QCOMPARE(s.control.Text(), QStringLiteral("Teh quick fox"));
        QCOMPARE(s.control.TextRTF(), rtfBefore);
        QCOMPARE(s.underlined(), (QStringList{"Teh"}));
    }

    void rightClickOffersRankedSuggestionsFirst()
    {
        Shown s(QStringLiteral("the wrold is big"));
        // Off: the menu is the documented one, whatever the word.
        s.rightClickAt(5);
        QCOMPARE(s.services.menus.size(), 1);
        QCOMPARE(s.services.menus.last().first().text, QStringLiteral("Undo"));

        s.control.setSpellAsYouType(true);
        s.settle();
        s.rightClickAt(5);
        const QList<MenuItem> menu = s.services.menus.last();
        QVERIFY(menu.first().enabled);
        QCOMPARE(menu.first().id, int(MenuCommand::FirstSuggestion));
        QCOMPARE(menu.first().text, QStringLiteral("world"));
        // The documented items follow the separator with their ids unchanged.
        int separator = 0;
        while (!menu.at(separator).isSeparator())
            ++separator;
        QVERIFY(separator <= 10);
        QCOMPARE(menu.at(separator + 1).id, 2);
        QCOMPARE(menu.at(separator + 1).text, QStringLiteral("Undo"));
        QCOMPARE(menu.at(separator + 3).id, 4);

        // On a known word the menu has no suggestions.
        s.rightClickAt(1);
        QCOMPARE(s.services.menus.last().first().text, QStringLiteral("Undo"));

        // Choosing the first suggestion replaces the word, and the underline goes.
        s.services.menuAnswers << int(MenuCommand::FirstSuggestion);
        s.rightClickAt(6);
        QCOMPARE(s.control.Text(), QStringLiteral("the world is big"));
        s.settle();
        QVERIFY(s.underlined().isEmpty());

        // A word with no suggestion gets the greyed item.
        s.control.setText(QStringLiteral("qzxqzxqzx"));
        s.settle();
        s.rightClickAt(2);
        QCOMPARE(s.services.menus.last().first().text, QStringLiteral("No Spelling Suggestions"));
        QCOMPARE(s.services.menus.last().first().enabled, false);
        QCOMPARE(s.services.menus.last().first().id, 0);
    }
};

QTEST_MAIN(TestSpellAsYouType)
#include "test_spellasyoutype.moc"
