// The control driven as a user drives it: real key and mouse events on a shown KvRTB, with
// recording platform services answering the pop-up menu and the desktop.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "core/virtualkeys.h"
#include "editing/specialundo.h"
#include "editorinput/editorinput.h"
#include "editorinput/popupmenu.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QSignalSpy>
#include <QTest>
#include <QTextEdit>

#include <functional>
#include <memory>

using namespace kvrtb;

namespace {

/// A shown control with recording services and a log of its events in order.
struct Shown {
    RecordingPlatformServices services;
    KvRTB control{services};
    QStringList log;

    explicit Shown(const QString &text = QString())
    {
        control.resize(500, 200);
        control.show();
        if (!QTest::qWaitForWindowExposed(&control))
            qFatal("the control was not shown");
        control.setText(text);
        control.EmptyRTBUndoRedoBuffer();
        control.SetInFocus();
        QObject::connect(&control, &KvRTB::Begin, [this] { log << "Begin"; });
        QObject::connect(&control, &KvRTB::Finish, [this] { log << "Finish"; });
        QObject::connect(&control, &KvRTB::Ready, [this] { log << "Ready"; });
        QObject::connect(&control, &KvRTB::Change, [this] { log << "Change"; });
        QObject::connect(&control, &KvRTB::Click, [this] { log << "Click"; });
        QObject::connect(&control, &KvRTB::KeyDown, [this](short &k, short &) { log << QStringLiteral("KeyDown %1").arg(k); });
        QObject::connect(&control, &KvRTB::KeyPress, [this](short &k) { log << QStringLiteral("KeyPress %1").arg(k); });
        QObject::connect(&control, &KvRTB::KeyUp, [this](short &k, short &) { log << QStringLiteral("KeyUp %1").arg(k); });
        QObject::connect(&control, &KvRTB::MouseUp, [this](short &b, short &, float &, float &) { log << QStringLiteral("MouseUp %1").arg(b); });
        QObject::connect(&control, &KvRTB::MenuFontColorClick, [this] { log << "MenuFontColorClick"; });
        QObject::connect(&control, &KvRTB::MenuHLColorClick, [this] { log << "MenuHLColorClick"; });
        QObject::connect(&control, &KvRTB::MenuVBSyntaxClickStart, [this] { log << "MenuVBSyntaxClickStart"; });
        QObject::connect(&control, &KvRTB::MenuVBSyntaxClickEnd, [this] { log << "MenuVBSyntaxClickEnd"; });
    }

    QTextEdit *editor() { return qobject_cast<QTextEdit *>(control.RichTextBox1().widget()); }
    QWidget *viewport() { return editor()->viewport(); }
    /// The viewport point in the middle of the character at \a position.
    QPoint pointOf(int position)
    {
        QTextCursor cursor(editor()->document());
        cursor.setPosition(position);
        const QRect before = editor()->cursorRect(cursor);
        cursor.setPosition(position + 1);
        const QRect after = editor()->cursorRect(cursor);
        return QPoint((before.x() + after.x()) / 2, before.center().y());
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) { QTest::keyClick(editor(), key, modifiers); }
    void type(const QString &text) { QTest::keyClicks(editor(), text); }
    /// Types a character outside ASCII, as a keyboard layout with that letter sends it.
    void typeLetter(const QString &letter)
    {
        const auto key = Qt::Key(letter.at(0).toUpper().unicode());
        QTest::sendKeyEvent(QTest::Press, editor(), key, letter, Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, editor(), key, letter, Qt::NoModifier);
    }
    void rightClick(int position) { QTest::mouseClick(viewport(), Qt::RightButton, Qt::NoModifier, pointOf(position)); }
    void leftClick(int position) { QTest::mouseClick(viewport(), Qt::LeftButton, Qt::NoModifier, pointOf(position)); }
    /// Events logged since the last call.
    QStringList take() { return std::exchange(log, {}); }
    /// The ids and texts of a shown menu, "-" for a separator, sub-menus in brackets.
    static QStringList describe(const QList<MenuItem> &items)
    {
        QStringList out;
        for (const MenuItem &item : items) {
            if (item.isSeparator())
                out << "-";
            else if (!item.submenu.isEmpty())
                out << QStringLiteral("%1%2[%3]").arg(item.enabled ? "" : "~", item.text, describe(item.submenu).join(','));
            else
                out << QStringLiteral("%1%2:%3").arg(item.enabled ? "" : "~").arg(item.id).arg(item.text);
        }
        return out;
    }
};

} // namespace

class TestEditorInput : public QObject {
    Q_OBJECT
private slots:
    void init() { threadState() = ThreadState(); }
    void keyTableRoundTrips();
    void eventsReachTheHostInOrder();
    void handlersChangeTheKey();
    void shortcutsActOnTheSelection();
    void undoKeysAndTypedRuns();
    void selectAllThenDeleteCanBeUndone();
    void keptSnapshotRestoresWhatAWrittenOneDoes();
    void keptSnapshotSurvivesWhatEndsTheHistory();
    void typedAddressIsLinkedAndOpensOnClick();
    void mouseUpLowersTheRewriteFlag();
    void popupMenuItemsAndCommands();
    void synonymIdsCollideWithSpellingIds();
    void changeTracking();
    void rtfGrowthIsBoundedByTheAllowance();
    void badInputChangesNothing();
};

void TestEditorInput::keyTableRoundTrips()
{
    // Codes reported for keys, including the keypad's own and characters without a key.
    QCOMPARE(KeyTable::fromQt(Qt::Key_A, Qt::NoModifier, "a"), 65);
    QCOMPARE(KeyTable::fromQt(Qt::Key_At, Qt::ShiftModifier, "@"), 50);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Colon, Qt::ShiftModifier, ":"), 186);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Period, Qt::NoModifier, "."), 190);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Period, Qt::KeypadModifier, "."), 110);
    QCOMPARE(KeyTable::fromQt(Qt::Key_7, Qt::KeypadModifier, "7"), 103);
    QCOMPARE(KeyTable::fromQt(Qt::Key_7, Qt::NoModifier, "7"), 55);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Enter, Qt::KeypadModifier, "\r"), 13);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Home, Qt::KeypadModifier, ""), 36); // Num Lock off
    QCOMPARE(KeyTable::fromQt(Qt::Key_F12, Qt::NoModifier, ""), 123);
    QCOMPARE(KeyTable::fromQt(Qt::Key_Eacute, Qt::NoModifier, "é"), int(VkPacket));
    QCOMPARE(KeyTable::fromQt(0x416, Qt::NoModifier, "ж"), int(VkPacket));
    QCOMPARE(KeyTable::fromQt(Qt::Key_AltGr, Qt::NoModifier, ""), 0);

    // Every code goes back to the key it came from, with the text that key types.
    const QList<std::pair<int, Qt::KeyboardModifiers>> keys{
        {Qt::Key_A, Qt::NoModifier}, {Qt::Key_Z, Qt::ShiftModifier}, {Qt::Key_Delete, Qt::NoModifier},
        {Qt::Key_Return, Qt::NoModifier}, {Qt::Key_At, Qt::ShiftModifier}, {Qt::Key_Semicolon, Qt::NoModifier},
        {Qt::Key_5, Qt::KeypadModifier}, {Qt::Key_Period, Qt::KeypadModifier}, {Qt::Key_F3, Qt::NoModifier},
        {Qt::Key_Backtab, Qt::ShiftModifier}, {Qt::Key_Menu, Qt::NoModifier}};
    for (const auto &[qtKey, modifiers] : keys) {
        const int code = KeyTable::fromQt(qtKey, modifiers, QString());
        const KeyTable::QtKey back = KeyTable::toQt(code, KeyTable::shiftState(modifiers));
        QCOMPARE(back.key, qtKey);
        QCOMPARE(bool(back.modifiers & Qt::KeypadModifier), bool(modifiers & Qt::KeypadModifier));
    }
    QCOMPARE(KeyTable::toQt(65, ShiftNone).text, QStringLiteral("a"));
    QCOMPARE(KeyTable::toQt(65, ShiftShift).text, QStringLiteral("A"));
    QCOMPARE(KeyTable::toQt(65, ShiftCtrl).text, QString());
    QCOMPARE(KeyTable::toQt(50, ShiftShift).text, QStringLiteral("@"));
    QCOMPARE(KeyTable::toQt(110, ShiftNone).text, QStringLiteral("."));
    QCOMPARE(KeyTable::toQt(VkPacket, ShiftNone).key, 0);
    QCOMPARE(KeyTable::toQt(255, ShiftNone).key, 0);
    QCOMPARE(KeyTable::shiftState(KeyTable::modifiers(ShiftShift | ShiftCtrl | ShiftAlt)), 7);
}

void TestEditorInput::eventsReachTheHostInOrder()
{
    Shown s;
    s.type("a");
    QCOMPARE(s.take().mid(0, 4), (QStringList{"KeyDown 65", "KeyPress 97", "Change", "KeyUp 65"}));

    // Letters outside A..Z raise KeyDown and KeyUp too, and their key-up runs the follow-up.
    s.typeLetter(QStringLiteral("é"));
    const QStringList accented = s.take();
    QCOMPARE(accented.first(), QStringLiteral("KeyDown 231"));
    QVERIFY(accented.contains(QStringLiteral("KeyUp 231")));
    QCOMPARE(accented.mid(accented.size() - 2), (QStringList{"Finish", "Ready"}));

    // The keypad reports its own codes and still types its characters.
    QTest::keyClick(s.editor(), Qt::Key_1, Qt::KeypadModifier);
    QTest::keyClick(s.editor(), Qt::Key_Period, Qt::KeypadModifier);
    const QStringList keypad = s.take();
    QVERIFY(keypad.contains(QStringLiteral("KeyDown 97")));
    QVERIFY(keypad.contains(QStringLiteral("KeyUp 110")));
    QCOMPARE(s.control.Text(), QStringLiteral("aé1."));

    // A click: Begin, MouseUp, the click handling, Finish, then Click.
    s.leftClick(1);
    QCOMPARE(s.take(), (QStringList{"Begin", "MouseUp 1", "Finish", "Click"}));

    // Selection changes made by a pass are not reported; the user's are.
    QSignalSpy selChange(&s.control, &KvRTB::SelChange);
    {
        QuietSelection quiet(s.control.core());
        s.control.setSelStart(0);
    }
    QCOMPARE(selChange.count(), 0);
    s.key(Qt::Key_Right);
    QVERIFY(selChange.count() > 0);
}

void TestEditorInput::handlersChangeTheKey()
{
    Shown s(QStringLiteral("abc"));
    s.control.setSelStart(1);
    // A KeyDown handler may put another key in place of the one pressed: Delete (46) for "x"
    // deletes, a full stop (190) for "y" types ".".
    auto swap = QObject::connect(&s.control, &KvRTB::KeyDown, [](short &keyCode, short &) {
        if (keyCode == 'X')
            keyCode = 46;
        else if (keyCode == 'Y')
            keyCode = 190;
    });
    s.type("x");
    QCOMPARE(s.control.Text(), QStringLiteral("ac"));
    s.type("y");
    QCOMPARE(s.control.Text(), QStringLiteral("a.c"));
    QObject::disconnect(swap);

    // A handler zeroing the code stops Ctrl+B: the selection stays plain.
    s.control.setSelStart(0);
    s.control.setSelLength(3);
    auto stop = QObject::connect(&s.control, &KvRTB::KeyDown, [](short &keyCode, short &shift) {
        if (keyCode == 'B') {
            keyCode = 0;
            shift = 0;
        }
    });
    s.key(Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(s.control.SelBold(), QVariant(false));
    QCOMPARE(s.control.Text(), QStringLiteral("a.c"));
    QObject::disconnect(stop);
}

void TestEditorInput::shortcutsActOnTheSelection()
{
    Shown s(QStringLiteral("word"));
    s.control.setSelStart(0);
    s.control.setSelLength(4);
    s.key(Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(s.control.SelBold(), QVariant(true));
    s.key(Qt::Key_B, Qt::ControlModifier);
    QCOMPARE(s.control.SelBold(), QVariant(false));
    s.key(Qt::Key_I, Qt::ControlModifier);
    s.key(Qt::Key_U, Qt::ControlModifier);
    QCOMPARE(s.control.SelItalic(), QVariant(true));
    QCOMPARE(s.control.SelUnderline(), QVariant(true));
    QCOMPARE(s.control.Text(), QStringLiteral("word"));

    // Ctrl+V pastes through the control while RemoveUnUsableData is on: its Paste snapshots the
    // document first. With it off the editor pastes and the key-up records the run.
    QApplication::clipboard()->setText(QStringLiteral("pasted "));
    s.control.setSelStart(0);
    QVERIFY(!s.control.GetCanUndoSpecial());
    s.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("pasted word"));
    QVERIFY(s.control.GetCanUndoSpecial());
    s.control.setRemoveUnUsableData(false);
    s.control.setSelStart(0);
    s.key(Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("pasted pasted word"));
    s.control.HyperUndo();
    QCOMPARE(s.control.Text(), QStringLiteral("pasted word"));
    s.control.setText(QStringLiteral("word"));

    // Ctrl+F is taken by the control and does nothing.
    s.take();
    s.key(Qt::Key_F, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("word"));
    QVERIFY(s.services.calls.isEmpty());

    // Delete with nothing selected is the editor's: one character, no Begin from the control's
    // Delete between KeyDown and KeyUp.
    s.control.setSelStart(0);
    s.take();
    s.key(Qt::Key_Delete);
    QCOMPARE(s.control.Text(), QStringLiteral("ord"));
    const QStringList events = s.take();
    QVERIFY(events.indexOf("Begin") < 0 || events.indexOf("Begin") > events.indexOf("KeyUp 46"));
}

void TestEditorInput::undoKeysAndTypedRuns()
{
    Shown s(QStringLiteral("start "));
    s.control.setSelStart(6);
    SpecialUndo &undo = s.control.core().specialUndo();

    // The first key of a run snapshots the document as it was before the run.
    s.type("one");
    QCOMPARE(undo.undoRunState(), 1);
    QVERIFY(undo.linkUndoPending());
    // Ctrl+Y undoes (there is no redo): the surface's step takes the typed run away.
    s.key(Qt::Key_Y, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("start "));
    s.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("start one"));

    // A run of Backspaces keeps the snapshot of its first key: the control's undo brings all
    // of the deleted word back.
    s.control.setSelStart(9);
    s.control.EmptyRTBUndoRedoBuffer();
    s.key(Qt::Key_Backspace);
    s.key(Qt::Key_Backspace);
    s.key(Qt::Key_Backspace);
    QCOMPARE(s.control.Text(), QStringLiteral("start "));
    QCOMPARE(undo.undoRunState(), 2);
    QVERIFY(!s.control.CanUndo());
    s.key(Qt::Key_Z, Qt::ControlModifier); // falls back on the snapshot
    QCOMPARE(s.control.Text(), QStringLiteral("start one"));

    // Typing after a caret move starts a new run with a new snapshot.
    s.control.setSelStart(0);
    s.type("x");
    s.leftClick(5);
    s.type("y");
    s.control.HyperUndo();
    QCOMPARE(s.control.Text(), QStringLiteral("xstart one"));
}

void TestEditorInput::selectAllThenDeleteCanBeUndone()
{
    Shown s(QStringLiteral("Everything the user wrote"));
    s.key(Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(s.control.SelLength(), 25);
    s.key(Qt::Key_Delete);
    QCOMPARE(s.control.Text(), QString());
    // The key-up after the control's Delete kept the snapshot of the whole text.
    s.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("Everything the user wrote"));
    // And the same undo key swaps back, then forward again.
    s.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QString());
    s.key(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(s.control.Text(), QStringLiteral("Everything the user wrote"));
}

namespace {

const char kFormattedStart[] = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}{\\f1 Courier New;}}"
                               "{\\colortbl;\\red200\\green0\\blue0;}\n"
                               "\\pard\\f0\\fs20 First {\\b bold} line with {\\i italic words}.\\par\n"
                               "Second line, {\\cf1 coloured} and {\\f1 code}.\\par\n"
                               "\\qc Third line centred.\\par\n}";

/// What the user saw: the document after the edits, after one undo key and after another.
struct UndoOutcome {
    QString edited, undone, redone;
    int undoneStart = -1;
    int undoneLength = -1;
    bool operator==(const UndoOutcome &other) const
    {
        return edited == other.edited && undone == other.undone && redone == other.redone &&
               undoneStart == other.undoneStart && undoneLength == other.undoneLength;
    }
};

enum class Snapshot { Written, Kept, KeptThenRead };

/// Runs \a edits on a fresh shown control holding the formatted start, with the snapshot taken
/// the given way, then presses Ctrl+Z twice with the editor's own one-step undo emptied (so
/// that both presses go to the snapshot).
template <typename Edits>
UndoOutcome undoAfter(Snapshot how, Edits edits)
{
    threadState() = ThreadState();
    SpecialUndo::setKeepSnapshotsInHistory(how != Snapshot::Written);
    UndoOutcome out;
    {
        Shown s;
        s.control.setTextRTF(QString::fromLatin1(kFormattedStart));
        s.control.EmptyRTBUndoRedoBuffer();
        edits(s);
        out.edited = s.control.TextRTF();
        if (how == Snapshot::KeptThenRead)
            SpecialUndo::snapshotText();
        s.control.EmptyRTBUndoRedoBuffer();
        s.key(Qt::Key_Z, Qt::ControlModifier);
        out.undone = s.control.TextRTF();
        out.undoneStart = s.control.SelStart();
        out.undoneLength = s.control.SelLength();
        s.key(Qt::Key_Z, Qt::ControlModifier);
        out.redone = s.control.TextRTF();
    }
    SpecialUndo::setKeepSnapshotsInHistory(true);
    return out;
}

} // namespace

void TestEditorInput::keptSnapshotRestoresWhatAWrittenOneDoes()
{
    QApplication::clipboard()->setText(QStringLiteral("pasted words"));
    const QList<std::pair<const char *, std::function<void(Shown &)>>> cases = {
        {"typing", [](Shown &s) { s.control.setSelStart(6); s.type("typed words "); }},
        {"two runs", [](Shown &s) {
             s.control.setSelStart(6);
             s.type("one ");
             s.leftClick(30);
             s.type("two ");
         }},
        {"Backspace run", [](Shown &s) {
             s.control.setSelStart(20);
             for (int i = 0; i < 6; ++i)
                 s.key(Qt::Key_Backspace);
             s.type("x");
         }},
        {"Delete of a selection", [](Shown &s) {
             s.control.setSelStart(3);
             s.control.setSelLength(15);
             s.key(Qt::Key_Delete);
         }},
        {"select all, Delete", [](Shown &s) {
             s.key(Qt::Key_A, Qt::ControlModifier);
             s.key(Qt::Key_Delete);
         }},
        {"paste", [](Shown &s) {
             s.control.setSelStart(10);
             s.type("a");
             s.key(Qt::Key_V, Qt::ControlModifier);
             s.type("b");
         }},
        {"format toggles", [](Shown &s) {
             s.control.setSelStart(6);
             s.type("ab");
             s.key(Qt::Key_B, Qt::ControlModifier);
             s.type("cd");
             s.key(Qt::Key_B, Qt::ControlModifier);
             s.key(Qt::Key_I, Qt::ControlModifier);
             s.type("ef");
         }},
        {"link typed", [](Shown &s) {
             s.control.setSelStart(6);
             s.type("see www.example.com and ");
             s.key(Qt::Key_Return);
             s.type("me@host.org ");
         }},
    };
    for (const auto &[name, edits] : cases) {
        const UndoOutcome written = undoAfter(Snapshot::Written, edits);
        // The undo changed the document (the snapshot is not the edited state)...
        QVERIFY2(written.undone != written.edited, name);
        QCOMPARE(written.redone, written.edited);
        // ...and a kept snapshot, restored through the history or written when read, gives
        // exactly what the written one gives.
        const UndoOutcome kept = undoAfter(Snapshot::Kept, edits);
        QVERIFY2(kept == written, name);
        QVERIFY2(undoAfter(Snapshot::KeptThenRead, edits) == written, name);
    }
}

void TestEditorInput::keptSnapshotSurvivesWhatEndsTheHistory()
{
    // A new document ends the history: the kept snapshot is written first, and the undo key
    // still brings back the text as it was before the typing.
    {
        Shown s(QStringLiteral("keep this"));
        s.control.setSelStart(4);
        s.type(" and that");
        s.control.setTextRTF(QStringLiteral("{\\rtf1 loaded}"));
        QCOMPARE(SpecialUndo::snapshotText().contains(QLatin1String("keep this")), true);
        s.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(s.control.Text(), QStringLiteral("keep this"));
        QCOMPARE(s.control.SelStart(), 4);
    }
    // The control that took it goes away: another control's undo still gets it.
    {
        auto first = std::make_unique<Shown>(QStringLiteral("from the first"));
        first->control.setSelStart(4);
        first->type("X");
        first.reset();
        Shown second(QStringLiteral("second"));
        second.control.HyperUndo();
        QCOMPARE(second.control.Text(), QStringLiteral("from the first"));
    }
    // Typing on after a snapshot of the current state: what is typed after it is not taken
    // into it, although the editor joins adjacent typing into one undo step.
    {
        Shown s(QStringLiteral("base"));
        s.control.setSelStart(4);
        s.type(" one");
        s.control.SaveSpecialUndoData();
        s.type(" two");
        s.control.EmptyRTBUndoRedoBuffer();
        s.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(s.control.Text(), QStringLiteral("base one"));
    }
    // The editor's one-step undo stepping below a snapshot taken of the current state: the
    // snapshot is written first, so the typing that follows cannot lose it.
    {
        Shown s(QStringLiteral("base"));
        s.control.setSelStart(4);
        s.type(" more");
        s.control.SaveSpecialUndoData();
        s.key(Qt::Key_Z, Qt::ControlModifier); // the editor's step: " more" goes
        QCOMPARE(s.control.Text(), QStringLiteral("base"));
        s.control.RichTextBox1().replaceSelection(QStringLiteral("!")); // an edit that takes no snapshot
        s.control.EmptyRTBUndoRedoBuffer();
        s.control.HyperUndo();
        QCOMPARE(s.control.Text(), QStringLiteral("base more"));
    }
    // The editor's own many-step history keys cannot walk past the control's undo.
    {
        Shown s(QStringLiteral("abc"));
        s.control.setSelStart(3);
        s.type("d");
        s.key(Qt::Key_Return);
        s.type("e");
        s.key(Qt::Key_Backspace, Qt::AltModifier);
        s.key(Qt::Key_Backspace, Qt::AltModifier);
        s.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(s.control.Text(), QStringLiteral("abcd\ne"));
    }
}

void TestEditorInput::typedAddressIsLinkedAndOpensOnClick()
{
    Shown s;
    s.type("see www.example.com and me@host.org ");
    EditorSurface &surface = s.control.RichTextBox1();
    QVERIFY(surface.rangeCharFormat(4, 15).hasLinkMarker());
    QVERIFY(surface.rangeCharFormat(24, 11).hasLinkMarker());
    QVERIFY(!surface.rangeCharFormat(0, 4).hasLinkMarker());
    QVERIFY(!surface.rangeCharFormat(35, 1).hasLinkMarker()); // the space typed after it

    s.leftClick(10);
    QCOMPARE(s.services.openedAddresses, QStringList{"www.example.com"});
    QVERIFY(s.control.SelLength() == 0 && s.control.SelStart() > 4);
    QCOMPARE(s.services.clickSounds, 1);
    s.control.setTurnOnSound(false);
    s.leftClick(28);
    QCOMPARE(s.services.openedAddresses.last(), QStringLiteral("mailto:me@host.org"));
    QCOMPARE(s.services.clickSounds, 1);
    // Plain text opens nothing.
    s.leftClick(1);
    QCOMPARE(s.services.openedAddresses.size(), 2);

    // Enter inside a link records the document first (a new run with its snapshot); the half
    // before the break, still an address, stays a link.
    SpecialUndo &undo = s.control.core().specialUndo();
    s.control.setSelStart(15); // after "www.example"
    s.key(Qt::Key_Return);
    QCOMPARE(undo.undoRunState(), 1);
    QVERIFY(surface.rangeCharFormat(4, 11).hasLinkMarker());
    s.control.HyperUndo();
    QCOMPARE(s.control.Text(), QStringLiteral("see www.example.com and me@host.org "));
}

void TestEditorInput::mouseUpLowersTheRewriteFlag()
{
    Shown s(QStringLiteral("text"));
    s.control.setDetectHyperLinks(false);
    s.control.SaveSpecialUndoData();
    s.control.HyperUndo();
    QVERIFY(threadState().rewriteInProgress); // raised while linking is off
    s.leftClick(1);
    QVERIFY(!threadState().rewriteInProgress);
    // Linking works again for every control of the thread.
    s.control.setDetectHyperLinks(true);
    s.control.setSelStart(s.control.Text().size());
    s.type(" www.example.org ");
    QVERIFY(s.control.RichTextBox1().rangeCharFormat(5, 15).hasLinkMarker());
}

void TestEditorInput::popupMenuItemsAndCommands()
{
    Shown s(QStringLiteral("abc"));
    // With AutoVMenu off a right click shows nothing but still brackets the click.
    s.control.setAutoVMenu(false);
    s.take();
    s.rightClick(1);
    QVERIFY(s.services.menus.isEmpty());
    QCOMPARE(s.take(), (QStringList{"Begin", "MouseUp 2", "Finish", "Click"}));

    // Nothing to undo: "Undo" is greyed with id 2; Begin before, Finish and Ready after, also
    // when nothing is chosen.
    s.control.setAutoVMenu(true);
    s.rightClick(1);
    QCOMPARE(s.services.menus.size(), 1);
    QCOMPARE(Shown::describe(s.services.menus.last()),
             (QStringList{"~2:Undo", "-", "~4:Cut", "~5:Copy", s.control.CanPaste() ? "6:Paste" : "~6:Paste",
                          "~7:Delete", "-", "8:Select All", "-", "9:Font", "10:Font Color", "-", "~11:Highlight",
                          "13:Highlight Color", "-", "~Synonyms[~0:No Synonyms Found]", "~Spell...[~0:No Spell Help]"}));
    QCOMPARE(s.take(), (QStringList{"Begin", "MouseUp 2", "Begin", "Finish", "Ready", "Finish", "Click"}));

    // Choosing "Select All"; then the VB6 item, which raises its two events around colouring.
    s.services.menuAnswers << int(MenuCommand::SelectAll);
    s.rightClick(1);
    QCOMPARE(s.control.SelLength(), 3);
    s.control.setShowVB6Syntax(true);
    s.services.menuAnswers << int(MenuCommand::ApplyVB6Syntax);
    s.take();
    QTest::keyClick(s.editor(), Qt::Key_Menu); // the menu key opens it too
    QCOMPARE(Shown::describe(s.services.menus.last()).mid(17), (QStringList{"-", "99:Apply VB6 Syntax"}));
    const QStringList vb = s.take();
    QVERIFY(vb.indexOf("MenuVBSyntaxClickStart") >= 0 && vb.indexOf("MenuVBSyntaxClickEnd") > vb.indexOf("MenuVBSyntaxClickStart"));

    // Font Color takes the colour chosen in the dialog; a cancelled Highlight Color dialog
    // keeps the old colour. Both raise their events.
    const uint highlight = s.control.MyHLColor();
    s.services.colourDialogAnswers << ColourDialogResult{true, 0x00FF00};
    s.services.menuAnswers << int(MenuCommand::FontColor) << int(MenuCommand::HighlightColor);
    s.rightClick(1);
    s.rightClick(1);
    const QStringList colours = s.take();
    QVERIFY(colours.contains("MenuFontColorClick") && colours.contains("MenuHLColorClick"));
    QCOMPARE(s.control.MyFontColor(), 0x00FF00u);
    QCOMPARE(s.control.MyHLColor(), highlight);
    QCOMPARE(s.services.callsOf(QStringLiteral("colourDialog")).size(), 2);

    // Delete through the menu records the whole text: "Undo" is then the control's (id 2).
    s.control.setSelStart(0);
    s.control.setSelLength(3);
    s.services.menuAnswers << int(MenuCommand::Delete);
    s.rightClick(1);
    QCOMPARE(s.control.Text(), QString());
    s.control.EmptyRTBUndoRedoBuffer();
    s.services.menuAnswers << int(MenuCommand::HyperUndo);
    s.rightClick(0);
    QCOMPARE(s.services.menus.last().first().id, 2);
    QVERIFY(s.services.menus.last().first().enabled);
    QCOMPARE(s.control.Text(), QStringLiteral("abc"));

    // "Apply VB6 Syntax" colours the keywords of all the text.
    s.control.setText(QStringLiteral("If abc Then"));
    s.services.menuAnswers << int(MenuCommand::ApplyVB6Syntax);
    s.rightClick(5);
    s.control.setSelStart(0);
    s.control.setSelLength(2);
    QCOMPARE(s.control.SelColor(), QVariant(s.control.ColorVB6KeyWord()));
}

void TestEditorInput::synonymIdsCollideWithSpellingIds()
{
    Shown s(QStringLiteral("happy day"));
    QStringList many;
    for (int i = 1; i <= 12; ++i)
        many << QStringLiteral("syn%1").arg(i);
    s.control.core().editorInput().popupMenu().setSynonymSource([many](const QString &word, QStringList &out) {
        if (word == QLatin1String("happy"))
            out = many;
    });
    const auto selectHappy = [&s] {
        s.control.setSelStart(0);
        s.control.setSelLength(6); // "happy " with its trailing space
    };
    selectHappy();
    s.services.menuAnswers << int(MenuCommand::FirstSynonym) + 1;
    s.rightClick(2);
    const QList<MenuItem> menu = s.services.menus.last();
    const MenuItem synonyms = menu.at(15);
    QCOMPARE(synonyms.text, QStringLiteral("Synonyms"));
    QCOMPARE(synonyms.submenu.size(), 12);
    QCOMPARE(synonyms.submenu.at(0).id, 37);
    QCOMPARE(synonyms.submenu.at(10).id, 47); // the eleventh takes the first spelling id
    const MenuItem spelling = menu.at(16);
    QVERIFY(spelling.enabled);
    QVERIFY(!spelling.submenu.isEmpty() && spelling.submenu.size() <= 10);
    QCOMPARE(spelling.submenu.at(0).id, 47);
    // The second synonym replaced the selection, keeping its trailing space.
    QCOMPARE(s.control.Text(), QStringLiteral("syn2 day"));

    // The seventh synonym (id 43) is listed but does nothing.
    s.control.setText(QStringLiteral("happy day"));
    selectHappy();
    s.services.menuAnswers << 43;
    s.rightClick(2);
    QCOMPARE(s.control.Text(), QStringLiteral("happy day"));

    // The eleventh synonym's id is the first spelling item's: choosing it acts as that item.
    selectHappy();
    s.services.menuAnswers << 47;
    s.rightClick(2);
    const QString firstCompletion = s.services.menus.last().at(16).submenu.at(0).text;
    QCOMPARE(s.control.Text(), firstCompletion + QStringLiteral(" day"));
}

void TestEditorInput::changeTracking()
{
    Shown s(QStringLiteral("saved"));
    s.control.SetRTBChanged();
    QVERIFY(!s.control.HasRTBChanged()); // no argument: marked unchanged
    s.type("x");
    QVERIFY(s.control.HasRTBChanged());
    s.control.SetRTBChanged(false);
    s.control.setSelStart(0);
    s.control.setSelLength(2);
    s.key(Qt::Key_B, Qt::ControlModifier); // a command changes it too
    QVERIFY(s.control.HasRTBChanged());
    s.control.SetRTBChanged(false);
    s.key(Qt::Key_Right);
    QVERIFY(!s.control.HasRTBChanged());
    s.control.SetRTBChanged(true);
    QVERIFY(s.control.HasRTBChanged());
}

void TestEditorInput::rtfGrowthIsBoundedByTheAllowance()
{
    // The large-document rule skips writing the RTF while the surface's allowance says it
    // cannot have crossed the limit; every kind of edit a user makes must stay within it.
    Shown s(QStringLiteral("start"));
    EditorSurface &surface = s.control.RichTextBox1();
    QList<int> tabs;
    for (int i = 1; i <= 60; ++i)
        tabs << i * 120;
    ParaFormat para;
    para.tabStops = tabs;
    para.leftIndent = 720;
    surface.setSelectionParaFormat(para);
    s.control.setSelStart(5);
    const QList<std::function<void()>> edits{
        [&] { s.type(" plain words"); },
        [&] { s.typeLetter(QStringLiteral("ж")); },
        [&] { s.key(Qt::Key_Return); },
        [&] { s.key(Qt::Key_Return); },
        [&] { s.type("see www.example.com/a/long/path?x=1 and me@example.org "); },
        [&] {
            s.control.setSelStart(0);
            s.control.setSelLength(3);
            s.key(Qt::Key_B, Qt::ControlModifier);
            s.key(Qt::Key_U, Qt::ControlModifier);
        },
        [&] {
            s.control.setSelLength(1);
            s.control.setSelFontName(QStringLiteral("A Font Name That Is Rather Long Indeed"));
            s.control.setSelColor(0x123456u);
            s.control.HighLightText(0x654321u);
        },
        [&] { s.key(Qt::Key_Backspace); s.key(Qt::Key_Delete); },
    };
    for (int i = 0; i < edits.size(); ++i) {
        const qsizetype before = surface.rtf().size();
        const quint64 allowance = surface.rtfGrowthAllowance();
        edits.at(i)();
        const qsizetype grown = surface.rtf().size() - before;
        QVERIFY2(grown <= 0 || quint64(grown) <= surface.rtfGrowthAllowance() - allowance,
                 qPrintable(QStringLiteral("edit %1 grew the RTF by %2").arg(i).arg(grown)));
    }
    // A picture costs its bytes: the allowance gives up on bounding it.
    QImage picture(64, 64, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const quint64 allowance = surface.rtfGrowthAllowance();
    QTextCursor cursor = s.editor()->textCursor();
    cursor.insertImage(picture);
    QVERIFY(surface.rtfGrowthAllowance() - allowance >= EditorSurface::kUnboundedRtfGrowth);
}

void TestEditorInput::badInputChangesNothing()
{
    {
        // An empty control: keys, undo, clicks and the menu on nothing.
        Shown s;
        s.key(Qt::Key_Backspace);
        s.key(Qt::Key_Delete);
        s.key(Qt::Key_Z, Qt::ControlModifier);
        s.key(Qt::Key_B, Qt::ControlModifier);
        s.leftClick(0);
        s.rightClick(0);
        QCOMPARE(s.control.Text(), QString());
        QCOMPARE(s.services.menus.size(), 1);
    }
    {
        // A locked control: typing, Delete on a selection and the shortcuts change nothing.
        Shown s(QStringLiteral("locked text"));
        s.control.setLocked(true);
        s.control.setSelStart(0);
        s.control.setSelLength(6);
        s.type("abc");
        s.key(Qt::Key_Delete);
        s.key(Qt::Key_B, Qt::ControlModifier);
        s.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(s.control.Text(), QStringLiteral("locked text"));
        QCOMPARE(s.control.SelBold(), QVariant(false));
        QVERIFY(!s.control.GetCanUndoSpecial());
    }
    {
        // A disabled control raises nothing.
        Shown s(QStringLiteral("off"));
        s.control.setEditorEnabled(false);
        s.take();
        s.type("abc");
        s.leftClick(1);
        QCOMPARE(s.control.Text(), QStringLiteral("off"));
        QVERIFY(s.take().isEmpty());
    }
    {
        // A right click on a long selection: the look-ups are skipped, their menus greyed.
        Shown s(QString(5000, QLatin1Char('w')));
        s.control.setSelStart(0);
        s.control.setSelLength(5000);
        s.rightClick(3);
        const QList<MenuItem> menu = s.services.menus.last();
        QCOMPARE(Shown::describe({menu.at(15), menu.at(16)}),
                 (QStringList{"~Synonyms[~0:No Synonyms Found]", "~Spell...[~0:No Spell Help]"}));
        QCOMPARE(s.control.SelLength(), 5000);
    }
    {
        // A right click handled while a link's hit test yields to the event loop: the menu
        // runs its command, the hit test finishes, the document stays whole.
        Shown s;
        QString text;
        for (int i = 0; i < 300; ++i)
            text += QStringLiteral("site%1.example.com www.site%1.example.com\n").arg(i);
        s.control.setText(text);
        s.control.HyperLinkDocument();
        s.control.setSelStart(text.size() - 10);
        bool clicked = false;
        s.services.onProcessEvents = [&] {
            if (clicked)
                return;
            clicked = true;
            s.services.menuAnswers << int(MenuCommand::SelectAll);
            s.rightClick(5);
        };
        s.leftClick(text.size() - 10);
        QVERIFY(clicked);
        QCOMPARE(s.services.menus.size(), 1);
        QCOMPARE(s.control.Text(), text);
        QVERIFY(!threadState().linkingInProgress);
    }
}

QTEST_MAIN(TestEditorInput)
#include "test_editorinput.moc"
