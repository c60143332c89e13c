// Lines and case, the control's own undo and the edit commands, on the real surface under the
// offscreen platform.

#include "corefixture.h"
#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/kvrtbtypes.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "editing/editcommands.h"
#include "editing/linesandcase.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"

#include <QApplication>
#include <QClipboard>
#include <QtTest>
#include <QWidget>

using namespace kvrtb;

namespace {

struct Control : test::CoreFixture {
    LinesAndCase &lines() { return core.linesAndCase(); }
    SpecialUndo &undo() { return core.specialUndo(); }
    EditCommands &edit() { return core.editCommands(); }
};

/// True when the surface reads back the RTF it writes (the snapshot undo depends on it).
bool rtfRoundTrips(EditorSurface &surface)
{
    const QString before = surface.text();
    const QString rtf = surface.rtf();
    if (!surface.setRtf(rtf))
        return false;
    return surface.text() == before;
}

QString numberedLines(int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << QStringLiteral("line %1").arg(i);
    return lines.join(QLatin1Char('\n'));
}

} // namespace

class TestEditing : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        threadState() = ThreadState();
    }

    void lineQueriesAndNumbering()
    {
        Control c;
        c.core.properties().DetectHyperLinks = false;
        // An empty document: one line, empty texts, out arguments left as they were.
        int start = 0;
        int length = 0;
        QCOMPARE(c.lines().GetLineText(&start, &length), QString());
        QCOMPARE(start, 0);
        QCOMPARE(length, 0);
        QCOMPARE(c.lines().TotalLineCount(), 1);
        QCOMPARE(c.lines().GetPrevLineText(), QString());
        QCOMPARE(c.lines().GetAnyLineText(0), QString());

        c.surface().setText(QStringLiteral("alpha\nbeta gamma\ndelta"));
        c.surface().setSelStart(2);
        QCOMPARE(c.lines().CurrentLine(), 1);
        // On the first line the previous line is the first line itself.
        QCOMPARE(c.lines().GetPrevLineText(), QStringLiteral("alpha"));
        QCOMPARE(c.lines().GetPosOfFirstCharInPrevLine(), 0);
        QCOMPARE(c.lines().GetAnyLineText(0), QStringLiteral("alpha"));
        QCOMPARE(c.lines().GetAnyLineText(7), QString());
        QCOMPARE(c.lines().GetPosOfFirstCharInLine(2), 17);
        QCOMPARE(c.lines().GetPosOfFirstCharInLine(3), -1);
        QCOMPARE(c.lines().GetPosOfFirstCharInLine(), 0);

        c.surface().setSelStart(13); // "beta g|amma"
        QCOMPARE(c.lines().CurrentLine(), 2);
        QCOMPARE(c.lines().GetLineText(&start, &length), QStringLiteral("beta gamma"));
        QCOMPARE(start, 7); // 1-based
        QCOMPARE(length, 10);
        QCOMPARE(c.lines().GetPrevLineText(), QStringLiteral("alpha"));
        QCOMPARE(c.lines().GetPosOfFirstCharInPrevLine(), 0);
        QCOMPARE(c.lines().GetPosOfFirstCharInLine(), 6);
        QCOMPARE(c.lines().TovrinLine(), 2);
        QCOMPARE(c.lines().TovrinColumn(), 8);
        QCOMPARE(c.lines().TovrinChar(), 14);
        QCOMPARE(c.lines().GetLineFromChar(18), 2);
        QCOMPARE(c.lines().TotalLineCount(), 3);

        c.lines().SelectLine();
        QCOMPARE(c.surface().selectedText(), QStringLiteral("beta gamma"));

        c.events.names.clear();
        c.lines().SelectAllText();
        c.lines().SelectAllText();
        QCOMPARE(c.events.names, (QStringList{"Ready", "Ready"}));
        QCOMPARE(c.surface().selLength(), c.surface().textLength());
    }

    void goToLineAndVisibleLines()
    {
        Control c;
        c.show();
        c.surface().setText(QStringLiteral("short\ntext"));
        // Text that ends above the bottom of the view: the last visible line is its last line.
        QCOMPARE(c.lines().LastVisibleLine(), 2);

        c.surface().setText(numberedLines(300));
        c.surface().setSelStart(3);
        QCOMPARE(c.lines().FirstVisibleLine(), 1);
        const int last = c.lines().LastVisibleLine();
        QVERIFY2(last > 3 && last < 30, qPrintable(QString::number(last)));

        c.lines().GoToLine(120);
        QCOMPARE(c.lines().FirstVisibleLine(), 121);
        QCOMPARE(c.surface().selStart(), 3); // not selected: the caret stays
        QCOMPARE(c.lines().LastVisibleLine() - c.lines().FirstVisibleLine(), last - 1);

        c.lines().GoToLine(40, true);
        QCOMPARE(c.lines().FirstVisibleLine(), 41);
        QCOMPARE(c.surface().selectedText(), QStringLiteral("line 40"));

        // A line past the end neither scrolls nor moves the caret.
        c.lines().GoToLine(300, true);
        QCOMPARE(c.lines().FirstVisibleLine(), 41);
        QCOMPARE(c.surface().selectedText(), QStringLiteral("line 40"));
    }

    void caseChanges_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::newRow("upper") << 1 << "HELLO WORLD. ANOTHER ONE";
        QTest::newRow("lower") << 0 << "hello world. another one";
        QTest::newRow("title") << 2 << "Hello World. Another One";
        QTest::newRow("sentence") << 4 << "Hello world. Another one";
        QTest::newRow("toggle") << 5 << "HElLO wORLD. ANOTHER ONE";
    }

    void caseChanges()
    {
        QFETCH(int, kind);
        QFETCH(QString, expected);
        Control c;
        c.surface().setText(QStringLiteral("heLlo World. another one"));
        c.surface().setSelection(0, -1);
        switch (kind) {
        case 0: c.lines().TovrinLowerCase(); break;
        case 1: c.lines().TovrinUpperCase(); break;
        case 2: c.lines().TovrinTitleCase(); break;
        case 4: c.lines().TovrinSentenceCase(); break;
        case 5: c.lines().TovrinToggleCase(); break;
        }
        QCOMPARE(c.surface().text(), expected);
    }

    void undoRunStates()
    {
        Control c;
        c.surface().setText(QStringLiteral("start"));
        SpecialUndoSlot &slot = threadState().specialUndo;
        const auto typed = [&c](const QString &text) {
            c.surface().setSelStart(c.surface().textLength());
            QTest::keyClicks(c.surface().widget(), text);
        };

        // State 1: only SaveDeleteUndoData acts, and only on the surface's undo.
        typed(QStringLiteral(" one"));
        c.undo().setUndoRunState(1);
        c.undo().SaveRegularUndoData();
        c.undo().SaveInLinkUndoData();
        QVERIFY(!slot.available);
        QVERIFY(c.surface().canUndo());
        c.undo().SaveDeleteUndoData();
        QVERIFY(!slot.available);
        QVERIFY(!c.surface().canUndo());
        QCOMPARE(c.surface().text(), QStringLiteral("start one"));

        // State 2: only SaveDeleteUndoData captures: the state before the last edit, kept edit.
        typed(QStringLiteral(" two"));
        c.undo().setUndoRunState(2);
        c.undo().SaveRegularUndoData();
        c.undo().SaveInLinkUndoData();
        QVERIFY(!slot.available);
        c.undo().SaveDeleteUndoData();
        QVERIFY(slot.available);
        QVERIFY(SpecialUndo::snapshotText().contains(QLatin1String("start one")));
        QVERIFY(!SpecialUndo::snapshotText().contains(QLatin1String("two")));
        QCOMPARE(c.surface().text(), QStringLiteral("start one two"));
        QVERIFY(!c.surface().canUndo());
        // The undo round trip resets the run state.
        QCOMPARE(c.undo().undoRunState(), 0);

        // State 0: SaveRegularUndoData captures the state before the last edit and keeps it.
        typed(QStringLiteral(" three"));
        c.events.names.clear();
        c.undo().SaveRegularUndoData();
        QVERIFY(!SpecialUndo::snapshotText().contains(QLatin1String("three")));
        QVERIFY(SpecialUndo::snapshotText().contains(QLatin1String("two")));
        QCOMPARE(c.surface().text(), QStringLiteral("start one two three"));
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready", "Begin", "Finish", "Ready"}));
        // SaveInLinkUndoData at 0 takes the current state, with no undo round trip.
        c.events.names.clear();
        c.undo().SaveInLinkUndoData();
        QVERIFY(SpecialUndo::snapshotText().contains(QLatin1String("three")));
        QVERIFY(c.events.names.isEmpty());

        // With nothing to undo, the regular save takes the current state; both undos only begin.
        c.surface().emptyUndoBuffer();
        c.surface().setSelection(2, 3);
        c.undo().SaveRegularUndoData();
        QCOMPARE(c.events.names, (QStringList{"Begin", "Begin"}));
        QCOMPARE(slot.selStart, 2);
        QCOMPARE(slot.selLength, 3);
    }

    void undoAndCanUndo()
    {
        Control c;
        c.surface().setText(QStringLiteral("abc"));
        QVERIFY(!c.undo().CanUndo());
        c.undo().Undo();
        QCOMPARE(c.events.names, QStringList{"Begin"});

        c.surface().setSelStart(3);
        QTest::keyClicks(c.surface().widget(), QStringLiteral("d"));
        QVERIFY(c.undo().CanUndo());
        threadState().colouringBusy = true;
        QVERIFY(!c.undo().CanUndo());
        threadState().colouringBusy = false;

        c.undo().setUndoRunState(1);
        c.events.names.clear();
        c.undo().Undo();
        QCOMPARE(c.surface().text(), QStringLiteral("abc"));
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QCOMPARE(c.undo().undoRunState(), 0);
        c.undo().Undo(); // the single step toggles: the second undo redoes
        QCOMPARE(c.surface().text(), QStringLiteral("abcd"));
    }

    void hyperUndoSwapsTwice()
    {
        Control c;
        c.core.properties().DetectHyperLinks = false;
        c.surface().setText(QStringLiteral("first version\nwith two lines"));
        // The snapshot undo stands on the surface reading back the RTF it writes.
        QVERIFY(rtfRoundTrips(c.surface()));
        c.surface().setSelection(6, 7);
        CharFormat bold;
        bold.bold = true;
        c.surface().setSelectionCharFormat(bold);
        QVERIFY(!c.undo().linkUndoPending());
        c.undo().SaveSpecialUndoData();
        QVERIFY(c.undo().GetCanUndoSpecial());
        // The slot is the thread's; the pending undo is the capturing control's own.
        QVERIFY(c.undo().linkUndoPending());
        {
            Control other;
            QVERIFY(other.undo().GetCanUndoSpecial());
            QVERIFY(!other.undo().linkUndoPending());
        }

        c.surface().setText(QStringLiteral("second"));
        c.surface().setSelection(1, 2);
        c.events.names.clear();
        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QStringLiteral("first version\nwith two lines"));
        QCOMPARE(c.surface().rangeCharFormat(6, 7).bold.value_or(false), true);
        QCOMPARE(c.surface().rangeCharFormat(0, 5).bold.value_or(true), false);
        QCOMPARE(c.surface().selStart(), 6);
        QCOMPARE(c.surface().selLength(), 7);
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QVERIFY(!c.surface().canUndo());
        QCOMPARE(c.surface().freezeCount(), 0);
        QCOMPARE(c.services.busyDepth, 0);

        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QStringLiteral("second"));
        QCOMPARE(c.surface().selStart(), 1);
        QCOMPARE(c.surface().selLength(), 2);
        QCOMPARE(threadState().specialUndo.selStart, 6);
        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QStringLiteral("first version\nwith two lines"));
        QCOMPARE(c.surface().rangeCharFormat(6, 7).bold.value_or(false), true);
    }

    void hyperUndoBeforeAnyCapture()
    {
        Control c;
        c.surface().setText(QStringLiteral("some text"));
        QVERIFY(!c.undo().GetCanUndoSpecial());
        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QString());
        QVERIFY(!c.undo().GetCanUndoSpecial());
        // With detection on, the rewrite flag is lowered for the linking pass.
        QVERIFY(!threadState().rewriteInProgress);
        // With it off, the flag stays raised until the mouse handling lowers it.
        c.core.properties().DetectHyperLinks = false;
        c.undo().HyperUndo();
        QVERIFY(threadState().rewriteInProgress);
    }

    void deleteAllThenHyperUndo()
    {
        Control c;
        c.core.properties().DetectHyperLinks = false;
        c.surface().setText(QStringLiteral("keep me\nplease"));
        // The snapshot undo stands on the surface reading back the RTF it writes.
        QVERIFY(rtfRoundTrips(c.surface()));
        c.surface().setSelection(0, -1);
        c.events.names.clear();
        c.edit().Delete();
        QCOMPARE(c.surface().text(), QString());
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QVERIFY(c.undo().GetCanUndoSpecial());
        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QStringLiteral("keep me\nplease"));
    }

    void deleteAndCutSelections()
    {
        Control c;
        c.surface().setText(QStringLiteral("abc def"));
        c.edit().Delete(); // nothing selected: nothing at all
        QVERIFY(c.events.names.isEmpty());
        c.surface().setSelection(3, 4);
        c.edit().Delete();
        QCOMPARE(c.surface().text(), QStringLiteral("abc"));
        QVERIFY(!threadState().specialUndo.available); // only a whole-text delete takes a snapshot
        c.surface().setSelection(1, 1);
        c.edit().Cut();
        QCOMPARE(c.surface().text(), QStringLiteral("ac"));
        QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("b"));
    }

    void queries()
    {
        Control c;
        QVERIFY(!c.edit().CanSelectAll());
        QVERIFY(!c.edit().CanCopy());
        QVERIFY(!c.edit().CanGetSpelling());
        const QString text = QString(37, QLatin1Char('a')) + QStringLiteral("b tail");
        c.surface().setText(text);
        QVERIFY(c.edit().CanSelectAll());
        c.surface().setSelection(0, 37);
        QVERIFY(c.edit().CanGetSpelling());
        QVERIFY(c.edit().CanGetSynonym());
        QVERIFY(c.edit().CanCut() && c.edit().CanDelete() && c.edit().CanClear() && c.edit().CanChangeCase()
                && c.edit().CanHighlight());
        c.surface().setSelection(0, 38);
        QVERIFY(!c.edit().CanGetSpelling());
        QVERIFY(!c.edit().CanGetSynonym());
        c.surface().setSelection(0, -1);
        QVERIFY(!c.edit().CanSelectAll());
        QVERIFY(c.edit().CanCopy());
    }

    void highlighting()
    {
        Control c;
        c.surface().setText(QStringLiteral("mark this word"));
        const Colour yellow = 0x00FFFF;
        c.edit().HighLightText(yellow); // empty selection: nothing
        QVERIFY(!c.surface().rangeCharFormat(0, -1).backColor || *c.surface().rangeCharFormat(0, -1).backColor == kAutoColour);
        c.surface().setSelection(5, 4);
        QVERIFY(!c.edit().IsTextHighLighted(yellow));
        c.edit().HighLightText(yellow);
        QVERIFY(c.edit().IsTextHighLighted(yellow));
        QVERIFY(!c.edit().IsTextHighLighted(0x00FF00));
        QCOMPARE(c.surface().rangeCharFormat(0, 4).backColor.value_or(0), kAutoColour);
        // Highlighting again in the same colour toggles it off.
        c.edit().HighLightText(yellow);
        QVERIFY(!c.edit().IsTextHighLighted(yellow));
        QCOMPARE(c.surface().rangeCharFormat(5, 4).backColor.value_or(0), kAutoColour);
        // A different colour replaces it; clearing the whole document removes it.
        c.edit().HighLightText(0x00FF00);
        QVERIFY(c.edit().IsTextHighLighted(0x00FF00));
        c.surface().setSelStart(0);
        c.edit().UnHighLightText(7); // not a behaviour: nothing
        QCOMPARE(c.surface().rangeCharFormat(5, 4).backColor.value_or(0), Colour(0x00FF00));
        c.edit().UnHighLightText(Unhighlight_All_Text);
        QCOMPARE(c.surface().rangeCharFormat(0, -1).backColor.value_or(0), kAutoColour);
    }

    void paragraphAndScriptCommands()
    {
        Control c;
        c.surface().setText(QStringLiteral("one\ntwo\nthree"));
        c.surface().setSelection(0, 1);
        c.edit().AlignCenter(true);
        QCOMPARE(c.edit().GetAlignment(), QVariant(int(mCenter)));
        c.edit().AlignRight(false); // false: nothing
        QCOMPARE(c.edit().GetAlignment(), QVariant(int(mCenter)));
        c.surface().setSelection(0, -1);
        QVERIFY(c.edit().GetAlignment().isNull()); // the paragraphs differ
        c.edit().AlignLeft(true);
        QCOMPARE(c.edit().GetAlignment(), QVariant(int(mLeft)));

        c.events.names.clear();
        c.edit().ListStyle(ListNumberAsUCRomanQ);
        QVERIFY(c.edit().SelListMethod(ListNumberAsUCRomanQ));
        QVERIFY(!c.edit().SelListMethod(ListBulletQ));
        const ParaFormat para = c.surface().selectionParaFormat();
        QCOMPARE(para.numberingStart.value_or(0), 1);
        QVERIFY(para.numberingStyle == NumberingStyle::Period);
        QCOMPARE(c.events.names, (QStringList{"Finish", "Ready"}));

        c.edit().LineSpacing(LineSpaceExactlyQ, 300);
        QVERIFY(c.surface().selectionParaFormat().lineSpacingRule == LineSpacingRule::Exactly);
        QCOMPARE(c.surface().selectionParaFormat().lineSpacing.value_or(0), 300);

        c.surface().setSelection(0, 3);
        c.events.names.clear();
        c.edit().ScriptStyle(SuperScriptQ);
        QVERIFY(c.surface().selectionCharFormat().script == ScriptPosition::Superscript);
        c.edit().ScriptStyle(9); // no such style: unchanged, events still raised
        QVERIFY(c.surface().selectionCharFormat().script == ScriptPosition::Superscript);
        QCOMPARE(c.events.names, (QStringList{"Finish", "Ready", "Finish", "Ready"}));

        QCOMPARE(c.edit().ReadOnly(5), 0);
        QVERIFY(!c.surface().isReadOnly());
        QCOMPARE(c.edit().ReadOnly(kVbTrue), 1);
        QVERIFY(c.surface().isReadOnly());
        QCOMPARE(c.edit().ReadOnly(kVbFalse), 1);
        QVERIFY(!c.surface().isReadOnly());

        c.edit().Word_Wrap(false);
        QVERIFY(c.surface().wrapMode() == WrapMode::None);
        c.edit().Word_Wrap(true);
        QVERIFY(c.surface().wrapMode() == WrapMode::Window);
    }

    void pasteLinksAndSnapshots()
    {
        Control c;
        c.surface().setText(QStringLiteral("before "));
        QApplication::clipboard()->setText(QStringLiteral("www.kvrtb.org"));
        QVERIFY(c.surface().canPaste());
        c.surface().setSelStart(7);
        c.events.names.clear();
        c.edit().Paste();
        QCOMPARE(c.surface().text(), QStringLiteral("before www.kvrtb.org"));
        QVERIFY(c.surface().rangeCharFormat(7, 13).hasLinkMarker());
        QVERIFY(threadState().specialUndo.available);
        QVERIFY(!SpecialUndo::snapshotText().contains(QLatin1String("kvrtb")));
        QCOMPARE(threadState().pasteLock, 0);
        QCOMPARE(c.surface().freezeCount(), 0);
        QCOMPARE(c.events.names.first(), QStringLiteral("Begin"));
        QCOMPARE(c.events.names.mid(c.events.names.size() - 2), (QStringList{"Finish", "Ready"}));
    }

    void pasteAfterALinkAtTheEnd()
    {
        // The link is the last thing in the document; what is pasted after it is plain text,
        // in the editor and in the RTF written from it.
        for (const bool frozenByHost : {false, true}) {
            Control c;
            c.surface().setText(QStringLiteral("see www.kvrtb.org"));
            c.core.hyperlinks().HyperLinkDocument();
            QVERIFY(c.surface().rangeCharFormat(4, 13).hasLinkMarker());
            QApplication::clipboard()->setText(QStringLiteral(" more"));
            QVERIFY(c.surface().canPaste());
            c.surface().setSelStart(17);
            if (frozenByHost)
                c.core.lockWindowUpdate(true);
            c.edit().Paste();
            if (frozenByHost)
                c.core.lockWindowUpdate(false);
            QCOMPARE(c.surface().text(), QStringLiteral("see www.kvrtb.org more"));
            QVERIFY(c.surface().rangeCharFormat(4, 13).hasLinkMarker());
            const CharFormat pasted = c.surface().rangeCharFormat(17, 5);
            QVERIFY(!pasted.hasLinkMarker());
            QCOMPARE(pasted.linkEffect.value_or(true), false);
            const QString rtf = c.surface().rtf();
            const qsizetype field = rtf.indexOf(QLatin1String("HYPERLINK"));
            QVERIFY(field >= 0);
            QVERIFY(rtf.indexOf(QLatin1String("more")) > rtf.indexOf(QLatin1Char('}'), rtf.indexOf(QLatin1String("fldrslt"))));
        }
    }

    void eventsOnEveryPath()
    {
        Control c;
        // Paste with nothing to paste: Begin, then straight to Finish and Ready.
        QApplication::clipboard()->clear();
        QVERIFY(!c.surface().canPaste());
        c.edit().Paste();
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QVERIFY(!threadState().specialUndo.available);
        QCOMPARE(c.services.busyDepth, 0);

        // HyperUndo with detection on runs the whole-document linking pass inside its own
        // bracket, and the restored addresses come back linked.
        c.surface().setText(QStringLiteral("write to me@host.org"));
        // The snapshot undo stands on the surface reading back the RTF it writes.
        QVERIFY(rtfRoundTrips(c.surface()));
        c.undo().SaveSpecialUndoData();
        c.surface().setText(QStringLiteral("gone"));
        c.events.names.clear();
        c.undo().HyperUndo();
        QCOMPARE(c.surface().text(), QStringLiteral("write to me@host.org"));
        QCOMPARE(c.events.names, (QStringList{"Begin", "Begin", "Finish", "Ready", "Finish", "Ready"}));
        QVERIFY(c.surface().rangeCharFormat(9, 11).hasLinkMarker());
        QVERIFY(!threadState().rewriteInProgress);
        QCOMPARE(c.surface().freezeCount(), 0);
        QCOMPARE(c.services.busyDepth, 0);
        QVERIFY(!c.surface().canUndo());
    }

    void specialFormatting_data()
    {
        QTest::addColumn<QString>("rtf");
        QTest::addColumn<bool>("special");
        QTest::newRow("plain") << R"({\rtf1\ansi\deff0 {\fonttbl{\f0 Arial;}}\pard\f0\fs20 text\par})" << false;
        QTest::newRow("bold") << R"({\rtf1\ansi\pard\b bold\b0\par})" << true;
        QTest::newRow("colour") << R"({\rtf1\ansi\pard\cf1 red\par})" << true;
        QTest::newRow("centred") << R"({\rtf1\ansi\pard\qc mid\par})" << true;
        QTest::newRow("highlight") << R"({\rtf1\ansi\pard\highlight2 x\par})" << true;
        QTest::newRow("numbering") << R"({\rtf1\ansi{\pntext 1.}\pard x\par})" << true;
    }

    void specialFormatting()
    {
        QFETCH(QString, rtf);
        QFETCH(bool, special);
        QCOMPARE(EditCommands::containsSpecialFormatting(rtf), special);
    }

    void stripLineBreaks()
    {
        QCOMPARE(SpecialUndo::StripLineBreaks(QStringLiteral("  a\r\nb\r\n\r\nc \n ")), QStringLiteral("abc \n"));
        QCOMPARE(SpecialUndo::StripLineBreaks(QStringLiteral("\r\n\n\r")), QStringLiteral("\n\r"));
    }
};

QTEST_MAIN(TestEditing)
#include "test_editing.moc"
