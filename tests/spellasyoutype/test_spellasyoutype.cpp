// Spelling as you type, driven as a user drives it: keys typed into a shown control, the idle
// checking let run, the underline read back from the surface, the pop-up menu answered.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "core/textspans.h"
#include "core/threadstate.h"
#include "editorinput/popupmenu.h"
#include "spelling/misspellingscanner.h"
#include "spelling/spellasyoutype.h"

#include <QTest>
#include <QTextEdit>

namespace kvrtb {
// Spans read as [start, end) in failure messages.
char *toString(const EditorSurface::TextSpan &span)
{
    return QTest::toString(QStringLiteral("[%1, %2)").arg(span.start).arg(span.end()));
}
} // namespace kvrtb

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

/// The stretches the editor widget paints as extra selections, in order.
QList<Span> painted(QTextEdit *editor)
{
    QList<Span> spans;
    for (const QTextEdit::ExtraSelection &selection : editor->extraSelections()) {
        const int start = selection.cursor.selectionStart();
        spans.append({start, selection.cursor.selectionEnd() - start});
    }
    return spans;
}

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

    void spansMoveWithEdits()
    {
        struct Moved {
            QList<Span> spans;
            QList<Span> touched;
            bool changed;
        };
        const QList<Span> marks{{2, 3}, {10, 4}, {20, 2}};
        auto move = [&](int position, int removed, int added) {
            Moved result{marks, {}, false};
            result.changed = moveTextSpans(result.spans, position, removed, added,
                                           [&](const Span &span) { result.touched.append(span); });
            return result;
        };
        // Insertions: before a span moves it, at its start moves it, inside drops it, at its end
        // keeps it where it is but says the painted one would grow.
        Moved m = move(0, 0, 2);
        QCOMPARE(m.spans, (QList<Span>{{4, 3}, {12, 4}, {22, 2}}));
        QCOMPARE(m.changed, false);
        m = move(10, 0, 1);
        QCOMPARE(m.spans, (QList<Span>{{2, 3}, {11, 4}, {21, 2}}));
        QCOMPARE(m.changed, false);
        m = move(11, 0, 1);
        QCOMPARE(m.spans, (QList<Span>{{2, 3}, {21, 2}}));
        QCOMPARE(m.touched, (QList<Span>{{10, 4}}));
        QCOMPARE(m.changed, true);
        m = move(14, 0, 3);
        QCOMPARE(m.spans, (QList<Span>{{2, 3}, {10, 4}, {23, 2}}));
        QVERIFY(m.touched.isEmpty());
        QCOMPARE(m.changed, true);
        m = move(30, 0, 3);
        QCOMPARE(m.spans, marks);
        QCOMPARE(m.changed, false);
        // Removals: ending at a span's start moves it; reaching into two spans drops both.
        m = move(5, 5, 0);
        QCOMPARE(m.spans, (QList<Span>{{2, 3}, {5, 4}, {15, 2}}));
        QCOMPARE(m.changed, false);
        m = move(4, 8, 0);
        QCOMPARE(m.spans, (QList<Span>{{12, 2}}));
        QCOMPARE(m.touched, (QList<Span>{{2, 3}, {10, 4}}));
        QCOMPARE(m.changed, true);
        // A replacement over a whole span drops it; an empty list stays empty.
        m = move(20, 2, 5);
        QCOMPARE(m.spans, (QList<Span>{{2, 3}, {10, 4}}));
        QCOMPARE(m.changed, true);
        QList<Span> none;
        QCOMPARE(moveTextSpans(none, 0, 3, 1), false);
        QVERIFY(none.isEmpty());
    }

    void paintedUnderlinesFollowEveryEdit()
    {
        // What the widget paints always matches the marks: an edit that cuts into a misspelt word
        // takes its underline away at once, one typed at its end does not stretch it, before
        // the edited paragraph is checked again; after the check the painted lines are the
        // misspelt words.
        Shown s(QStringLiteral("One wrold here.\nTwo speling mistaks and a thrid.\nLast lnie"));
        s.control.setSpellAsYouType(true);
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrold", "speling", "mistaks", "thrid", "lnie"}));
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));

        const QString text = s.control.Text();
        s.control.setSelStart(text.indexOf(QStringLiteral("wrold")) + 5);
        QTest::keyClicks(s.editor(), QStringLiteral("s"));
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));
        QCOMPARE(s.underlined().first(), QStringLiteral("wrold"));
        s.control.setSelStart(s.control.Text().indexOf(QStringLiteral("speling")) + 3);
        QTest::keyClick(s.editor(), Qt::Key_L);
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));
        QCOMPARE(s.underlined(), (QStringList{"wrold", "mistaks", "thrid", "lnie"}));
        s.settle();
        QCOMPARE(s.underlined(), (QStringList{"wrolds", "mistaks", "thrid", "lnie"}));

        // Deleting across a paragraph mark joins two paragraphs; a selection typed over goes.
        s.control.setSelStart(s.control.Text().indexOf(QStringLiteral("\nLast")));
        QTest::keyClick(s.editor(), Qt::Key_Delete);
        s.control.setSelStart(s.control.Text().indexOf(QStringLiteral("mistaks")));
        s.control.setSelLength(7);
        QTest::keyClicks(s.editor(), QStringLiteral("erors"));
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));
        s.settle();
        const QString now = s.control.Text();
        QCOMPARE(now, QStringLiteral("One wrolds here.\nTwo spelling erors and a thrid.Last lnie"));
        QCOMPARE(s.surface().decorations(Layer::Misspelling), SpellAsYouType::misspeltSpans(now));
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));
        // Undo of the whole stretch of typing brings the marks back with the text.
        s.control.Undo();
        s.settle();
        QCOMPARE(s.surface().decorations(Layer::Misspelling), SpellAsYouType::misspeltSpans(s.control.Text()));
        QCOMPARE(painted(s.editor()), s.surface().decorations(Layer::Misspelling));
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
