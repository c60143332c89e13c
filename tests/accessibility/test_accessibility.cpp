// The control, its dialogs and its pop-up menu as assistive technology and keyboard-only users
// meet them: every element that takes focus has an accessible name and role, and Tab alone
// reaches each of them.

#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "core/platformservices.h"
#include "core/threadstate.h"
#include "editorinput/caretdescription.h"
#include "spelling/spellasyoutype.h"
#include "spelling/spellcheckfrm.h"
#include "surface/qtplatformservices.h"

#include <QAccessible>
#include <QApplication>
#include <QDialog>
#include <QMenu>
#include <QPointer>
#include <QRadioButton>
#include <QSet>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace kvrtb;

namespace {

/// The focusable widgets of \a root (itself included) that are shown.
QList<QWidget *> focusable(QWidget *root)
{
    QList<QWidget *> widgets;
    QList<QWidget *> all = root->findChildren<QWidget *>();
    all.prepend(root);
    for (QWidget *widget : std::as_const(all)) {
        // The text box inside an editable combo box or a spin box is announced through its owner.
        const bool part = widget->parentWidget() && (widget->parentWidget()->inherits("QComboBox")
                                                     || widget->parentWidget()->inherits("QAbstractSpinBox"));
        if (widget->focusPolicy() != Qt::NoFocus && widget->isVisible() && !widget->isWindowType() && !part)
            widgets << widget;
    }
    return widgets;
}

QString describe(QWidget *widget)
{
    return QStringLiteral("%1 \"%2\"").arg(QLatin1String(widget->metaObject()->className()), widget->objectName());
}

/// The widget Tab stops at for \a widget: a group of exclusive radio buttons is one stop (the
/// arrow keys move within it), stood for by its first button.
QWidget *tabStop(QWidget *widget)
{
    auto *radio = qobject_cast<QRadioButton *>(widget);
    if (!radio || !radio->autoExclusive() || !radio->parentWidget())
        return widget;
    for (QRadioButton *first : radio->parentWidget()->findChildren<QRadioButton *>(Qt::FindDirectChildrenOnly)) {
        if (first->autoExclusive())
            return first;
    }
    return widget;
}

/// What is missing for \a root: its focusable widgets without an accessible name or role, or
/// not reached by Tab from the first one.
QStringList accessibilityGaps(QWidget *root)
{
    QStringList gaps;
    QAccessibleInterface *window = QAccessible::queryAccessibleInterface(root);
    if (!window || window->text(QAccessible::Name).isEmpty())
        gaps << QStringLiteral("window %1 has no name").arg(describe(root));
    const QList<QWidget *> widgets = focusable(root);
    QSet<QWidget *> tabbable;
    for (QWidget *widget : widgets) {
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(widget);
        if (!iface || iface->text(QAccessible::Name).trimmed().isEmpty())
            gaps << QStringLiteral("%1 has no name").arg(describe(widget));
        if (!iface || iface->role() == QAccessible::NoRole || iface->role() == QAccessible::Client)
            gaps << QStringLiteral("%1 has no role").arg(describe(widget));
        if ((widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled())
            tabbable << tabStop(widget);
    }
    // Keyboard only: Tab from the first widget visits every one that takes Tab focus.
    if (!tabbable.isEmpty()) {
        root->activateWindow();
        QWidget *first = *tabbable.begin();
        first->setFocus(Qt::TabFocusReason);
        QSet<QWidget *> reached;
        for (int i = 0; i < 2 * widgets.size() + 2; ++i) {
            QWidget *now = QApplication::focusWidget();
            if (!now)
                break;
            reached << tabStop(now->focusProxy() ? now->focusProxy() : now);
            if (now->parentWidget() && now->parentWidget()->inherits("QComboBox"))
                reached << now->parentWidget();
            // A multi-line text box takes Tab as text: Ctrl+Tab leaves it.
            QTest::keyClick(now, Qt::Key_Tab, now->inherits("QTextEdit") ? Qt::ControlModifier : Qt::NoModifier);
        }
        for (QWidget *widget : std::as_const(tabbable)) {
            if (!reached.contains(widget))
                gaps << QStringLiteral("%1 is not reached by Tab").arg(describe(widget));
        }
    }
    return gaps;
}

/// Runs \a open (which shows a modal dialog and returns when it closes) and checks the dialog
/// while it is up; the dialog is then closed with Escape, as a keyboard user closes it.
QStringList gapsOfModal(const std::function<void()> &open, QString *title)
{
    QStringList gaps;
    bool seen = false;
    QTimer::singleShot(0, [&] {
        QWidget *dialog = QApplication::activeModalWidget();
        if (!dialog) {
            gaps << QStringLiteral("no dialog came up");
            return;
        }
        seen = true;
        dialog->activateWindow();
        if (!QTest::qWaitForWindowActive(dialog))
            gaps << QStringLiteral("the dialog did not become active");
        *title = dialog->windowTitle();
        gaps << accessibilityGaps(dialog);
        QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : dialog, Qt::Key_Escape);
        if (dialog->isVisible())
            qobject_cast<QDialog *>(dialog)->reject();
    });
    open();
    if (!seen && gaps.isEmpty())
        gaps << QStringLiteral("no dialog came up");
    return gaps;
}

/// Shows \a control holding \a text; false when the window did not come up.
bool showHolding(KvRTB &control, const QString &text)
{
    control.resize(500, 300);
    control.show();
    if (!QTest::qWaitForWindowExposed(&control))
        return false;
    control.setText(text);
    return true;
}

} // namespace

/// Fails with the list of gaps, one per line.
#define EXPECT_NO_GAPS(gaps)                                                                       \
    do {                                                                                           \
        const QStringList found = (gaps);                                                          \
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));                      \
    } while (false)

class TestAccessibility : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { threadState() = ThreadState(); }

    void controlAndDialogsHaveNamesRolesAndTabOrder()
    {
        QWidget host;
        host.setWindowTitle(QStringLiteral("Host"));
        KvRTB control(&host);
        control.resize(500, 300);
        host.resize(520, 320);
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));
        control.setText(QStringLiteral("Some words to count and find."));

        EXPECT_NO_GAPS(accessibilityGaps(&host));
        QAccessibleInterface *editor = QAccessible::queryAccessibleInterface(control.RichTextBox1().widget());
        QCOMPARE(editor->role(), QAccessible::EditableText);
        QVERIFY(!editor->text(QAccessible::Name).isEmpty());

        // The modeless find dialog.
        control.ShowFindReplace();
        QWidget *find = nullptr;
        for (QWidget *top : QApplication::topLevelWidgets()) {
            if (top->isVisible() && top->windowTitle() == QStringLiteral("Find / Replace"))
                find = top;
        }
        QVERIFY(find);
        QVERIFY(QTest::qWaitForWindowExposed(find));
        EXPECT_NO_GAPS(accessibilityGaps(find));
        find->close();

        // The modal dialogs, each closed again with Escape.
        QString title;
        EXPECT_NO_GAPS(gapsOfModal([&] { control.ShowWordCount(); }, &title));
        QVERIFY(!title.isEmpty());
        EXPECT_NO_GAPS(gapsOfModal([&] { control.ShowRandomWord(); }, &title));
        control.setUseCustomFontDialog(true);
        EXPECT_NO_GAPS(gapsOfModal([&] { control.ShowFontSelect(); }, &title));
    }

    void spellingDialogHasNamesRolesTabOrderAndEscape()
    {
        KvRTB control;
        QVERIFY(showHolding(control, QStringLiteral("Teh wrod is here.")));
        control.ShowSpellCheck();
        QPointer<SpellCheckFrm> dialog = control.findChild<SpellCheckFrm *>();
        QVERIFY(dialog);
        QTRY_COMPARE(dialog->state(), SpellCheckSession::State::Word);
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        EXPECT_NO_GAPS(accessibilityGaps(dialog));
        // The suggestions and the replacement are announced with their labels.
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(dialog->findChild<QWidget *>(QStringLiteral("SuggestionsList")));
        QCOMPARE(list->text(QAccessible::Name), QStringLiteral("Suggestions"));
        QAccessibleInterface *changeTo = QAccessible::queryAccessibleInterface(dialog->findChild<QWidget *>(QStringLiteral("ChangeToTxt")));
        QCOMPARE(changeTo->text(QAccessible::Name), QStringLiteral("Change to"));

        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!dialog || !dialog->isVisible());
        QCOMPARE(control.Text(), QStringLiteral("Teh wrod is here."));
    }

    void caretOnMisspeltWordOrLinkAnnouncesIt()
    {
        // Moving the caret with keys onto a misspelt word or a link sets the editor's accessible
        // description (setting it raises the description-changed event a screen reader hears,
        // which needs a running screen reader to observe); leaving it, typing at a word's end
        // or selecting clears it.
        KvRTB control;
        QVERIFY(showHolding(control, QStringLiteral("A wrold and www.example.com here.")));
        control.HyperLinkDocument();
        control.setSpellAsYouType(true);
        QTRY_VERIFY(!control.core().spellAsYouType().hasPending());
        QWidget *editor = control.RichTextBox1().widget();
        editor->setObjectName(QStringLiteral("editor"));
        control.SetInFocus();
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(editor);
        auto description = [&] { return editor->accessibleDescription(); };

        QTest::keyClick(editor, Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(description(), QString());
        QTest::keyClick(editor, Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(control.SelStart(), 2);
        QCOMPARE(description(), QStringLiteral("Misspelt word: wrold"));
        QCOMPARE(iface->text(QAccessible::Description), QStringLiteral("Misspelt word: wrold"));
        QTest::keyClick(editor, Qt::Key_Right); // still inside the word
        QCOMPARE(description(), QStringLiteral("Misspelt word: wrold"));
        QTest::keyClick(editor, Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(description(), QString());
        QTest::keyClick(editor, Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(control.SelStart(), 12);
        QCOMPARE(description(), CaretDescription::link(control.core().surface().rangeCharFormat(12, 1).linkAddress.value_or(QString())));
        QVERIFY2(description().contains(QStringLiteral("www.example.com")), qPrintable(description()));
        QTest::keyClick(editor, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(description(), QString());
        QCOMPARE(iface->text(QAccessible::Description), editor->toolTip());

        // Typing a misspelt word leaves the caret at its end: nothing is said over the typing.
        control.setSelStart(control.Text().size());
        QTest::keyClicks(editor, QStringLiteral(" zorp"));
        QTRY_VERIFY(!control.core().spellAsYouType().hasPending());
        QCOMPARE(description(), QString());
        // A word the caret stands on is announced once it is found misspelt, and no longer
        // once spelling as you type is switched off.
        QTest::keyClick(editor, Qt::Key_Left, Qt::ControlModifier);
        QCOMPARE(description(), QStringLiteral("Misspelt word: zorp"));
        control.setSpellAsYouType(false);
        QCOMPARE(description(), QString());
        control.setSpellAsYouType(true);
        QTRY_COMPARE(description(), QStringLiteral("Misspelt word: zorp"));
    }

    void popupMenuItemsAnnounceThemselves()
    {
        // The platform's pop-up menu: every item has its text as name and a menu-item role,
        // and a keyboard user opens, walks and leaves it with keys alone.
        QtPlatformServices services;
        const QList<MenuItem> items{MenuItem{1, QStringLiteral("Undo"), true, {}}, MenuItem{},
                                    MenuItem{0, QStringLiteral("Synonyms"), false,
                                             {MenuItem{0, QStringLiteral("No Synonyms Found"), false, {}}}},
                                    MenuItem{8, QStringLiteral("Select All"), true, {}}};
        QStringList names;
        QList<QAccessible::Role> roles;
        QTimer::singleShot(0, [&] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu)
                return;
            QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(menu);
            for (int i = 0; i < iface->childCount(); ++i) {
                names << iface->child(i)->text(QAccessible::Name);
                roles << iface->child(i)->role();
            }
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Down);
            QTest::keyClick(menu, Qt::Key_Return);
        });
        const int chosen = services.popupMenu(items, QPoint(10, 10));
        QCOMPARE(names, (QStringList{"Undo", "", "Synonyms", "Select All"}));
        QCOMPARE(roles, (QList<QAccessible::Role>{QAccessible::MenuItem, QAccessible::Separator,
                                                  QAccessible::MenuItem, QAccessible::MenuItem}));
        QCOMPARE(chosen, 8); // Down, Down skips the separator and the greyed sub-menu
    }
};

QTEST_MAIN(TestAccessibility)
#include "test_accessibility.moc"
