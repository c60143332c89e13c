// Tests of the spelling dialog, driven through its own buttons on a shown control, and of the
// user's word list behind its "Add to Dictionary".

#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "spelling/spellcheckfrm.h"
#include "spelling/userwordlist.h"
#include "testregistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>
#include <QRegularExpression>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTest>

using namespace kvrtb;
using State = SpellCheckSession::State;

namespace {

struct Control {
    RecordingPlatformServices services;
    KvRTB editor{services};

    explicit Control(const QString &text)
    {
        editor.resize(500, 300);
        editor.show();
        editor.setText(text);
    }

    SpellCheckFrm *open()
    {
        editor.ShowSpellCheck();
        SpellCheckFrm *dialog = editor.findChild<SpellCheckFrm *>();
        if (dialog)
            (void)QTest::qWaitFor([dialog] { return dialog->state() != State::Idle && dialog->state() != State::Checking; });
        return dialog;
    }

    QStringList boxes() const
    {
        QStringList texts;
        for (const auto &call : services.callsOf(QStringLiteral("messageBox")))
            texts << call.title + QStringLiteral(": ") + call.text;
        return texts;
    }
};

template <typename T>
T *part(SpellCheckFrm *dialog, const char *name)
{
    T *widget = dialog->findChild<T *>(QLatin1String(name));
    if (!widget)
        qFatal("no %s in the spelling dialog", name);
    return widget;
}

void click(SpellCheckFrm *dialog, const char *button)
{
    QPushButton *b = part<QPushButton>(dialog, button);
    QVERIFY2(b->isEnabled(), button);
    QTest::mouseClick(b, Qt::LeftButton);
}

// The sentence the dialog shows, without its markup; the misspelt word is the bold part.
QString contextOf(SpellCheckFrm *dialog)
{
    QString html = part<QLabel>(dialog, "ContextLB")->text();
    if (!html.contains(QStringLiteral("<b>")))
        return QStringLiteral("(no word in bold)");
    html.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    return html.replace(QStringLiteral("&amp;"), QStringLiteral("&")).replace(QStringLiteral("&lt;"), QStringLiteral("<"));
}

QString selected(Control &c)
{
    return c.editor.SelText();
}

} // namespace

class TestSpellCheckDialog : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
    }

    void init()
    {
        QFile::remove(UserWordList::defaultPath());
        QFile::remove(UserWordList::defaultPath() + QStringLiteral(".bad"));
        threadState().cancelRequested = false;
    }

    void answersMoveThroughTheDocument()
    {
        Control c(QStringLiteral("Teh wrod is speling wrong. Teh end.\nA wrod again."));
        QPointer<SpellCheckFrm> dialog = c.open();
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Spell Check"));

        // The first misspelt word, selected in the editor and shown in its sentence.
        QCOMPARE(dialog->state(), State::Word);
        QCOMPARE(selected(c), QStringLiteral("Teh"));
        QCOMPARE(contextOf(dialog), QStringLiteral("Teh wrod is speling wrong."));
        QCOMPARE(part<QLineEdit>(dialog, "ChangeToTxt")->text(), QStringLiteral("the"));
        QCOMPARE(part<QListWidget>(dialog, "SuggestionsList")->item(0)->text(), QStringLiteral("the"));

        // A higher accuracy keeps fewer suggestions.
        QSpinBox *accuracy = part<QSpinBox>(dialog, "AccuracySpin");
        const int loose = part<QListWidget>(dialog, "SuggestionsList")->count();
        accuracy->setValue(100);
        QVERIFY(part<QListWidget>(dialog, "SuggestionsList")->count() < loose);
        accuracy->setValue(50);

        // Change: the word takes the replacement in its capitalisation; on to the next word.
        click(dialog, "ChangeButton");
        QCOMPARE(c.editor.Text(), QStringLiteral("The wrod is speling wrong. Teh end.\nA wrod again."));
        QCOMPARE(selected(c), QStringLiteral("wrod"));

        // Change All with a replacement typed in: every "wrod", and the later one is not asked.
        part<QLineEdit>(dialog, "ChangeToTxt")->setText(QStringLiteral("word"));
        click(dialog, "ChangeAllButton");
        QCOMPARE(c.editor.Text(), QStringLiteral("The word is speling wrong. Teh end.\nA word again."));
        QCOMPARE(selected(c), QStringLiteral("speling"));

        // Choosing a suggestion puts it in the replacement box.
        QListWidget *list = part<QListWidget>(dialog, "SuggestionsList");
        QVERIFY(list->count() > 1);
        list->setCurrentRow(1);
        QCOMPARE(part<QLineEdit>(dialog, "ChangeToTxt")->text(), list->item(1)->text());

        click(dialog, "IgnoreButton");
        QCOMPARE(selected(c), QStringLiteral("Teh"));
        QCOMPARE(contextOf(dialog), QStringLiteral("Teh end."));
        click(dialog, "IgnoreAllButton");

        // The end: the word buttons are off and the user is told.
        QCOMPARE(dialog->state(), State::Done);
        QVERIFY(!part<QPushButton>(dialog, "ChangeButton")->isEnabled());
        QCOMPARE(c.boxes(), QStringList{QStringLiteral("Spell Check: The spelling check is complete.")});
        QCOMPARE(c.editor.Text(), QStringLiteral("The word is speling wrong. Teh end.\nA word again."));

        // The control's undo takes the Change All back in one step.
        c.editor.Undo();
        QCOMPARE(c.editor.Text(), QStringLiteral("The wrod is speling wrong. Teh end.\nA wrod again."));

        click(dialog, "CloseButton");
        QTRY_VERIFY(!dialog);
        QVERIFY(threadState().cancelRequested);   // closing stops a scan, as KillSwitch does
    }

    void noMisspellings()
    {
        Control c(QStringLiteral("The cat sat on the mat."));
        SpellCheckFrm *dialog = c.open();
        QCOMPARE(dialog->state(), State::Done);
        QCOMPARE(c.boxes(), QStringList{QStringLiteral("Spell Check: No misspelt words were found.")});
        // Showing it again raises the same dialog.
        c.editor.ShowSpellCheck();
        QCOMPARE(c.editor.findChildren<SpellCheckFrm *>().size(), 1);
    }

    void editorFollowsTheWord()
    {
        Control c(QString(QStringLiteral("The cat sat.\n")).repeated(200) + QStringLiteral("A zzxqv at the end."));
        QCOMPARE(c.editor.FirstVisibleLine(), 1);
        SpellCheckFrm *dialog = c.open();
        QCOMPARE(dialog->state(), State::Word);
        QCOMPARE(selected(c), QStringLiteral("zzxqv"));
        QTRY_VERIFY(c.editor.LastVisibleLine() >= 200);
    }

    void userWordListSurvivesRestart()
    {
        {
            Control c(QStringLiteral("Kubernetes runs zzxqv here."));
            QPointer<SpellCheckFrm> dialog = c.open();
            QCOMPARE(selected(c), QStringLiteral("Kubernetes"));
            click(dialog, "AddButton");
            QCOMPARE(selected(c), QStringLiteral("zzxqv"));
            click(dialog, "CloseButton");
            QTRY_VERIFY(!dialog);
        }
        // A new list object (a new program run) reads the word back.
        UserWordList reread;
        QVERIFY(reread.load());
        QCOMPARE(reread.words(), QStringList{QStringLiteral("Kubernetes")});
        QVERIFY(reread.contains(QStringLiteral("Kubernetes")));
        QVERIFY(!reread.contains(QStringLiteral("kubernetes")));   // listed with a capital

        // A new dialog stops only at the other word.
        Control c(QStringLiteral("Kubernetes runs zzxqv here."));
        c.open();
        QCOMPARE(selected(c), QStringLiteral("zzxqv"));
        QVERIFY(c.boxes().isEmpty());
    }

    void corruptWordListIsReported()
    {
        const QString path = UserWordList::defaultPath();
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("good\n\xff\xfe bad bytes\n");
        file.close();

        UserWordList list;
        QString error;
        QVERIFY(!list.load(&error));
        QCOMPARE(error, QStringLiteral("the file is not UTF-8 text"));
        QVERIFY(list.words().isEmpty());

        // The dialog reports it and checks all the same; adding a word keeps the old file aside.
        Control c(QStringLiteral("good zzxqv"));
        QPointer<SpellCheckFrm> dialog = c.open();
        QCOMPARE(dialog->state(), State::Word);
        QCOMPARE(c.boxes().size(), 1);
        QVERIFY2(c.boxes().first().contains(QStringLiteral("could not be read: the file is not UTF-8 text")),
                 qPrintable(c.boxes().first()));
        click(dialog, "AddButton");
        QVERIFY(QFile::exists(path + QStringLiteral(".bad")));
        UserWordList fresh;
        QVERIFY(fresh.load());
        QCOMPARE(fresh.words(), QStringList{QStringLiteral("zzxqv")});

        // Lines that are no words are corrupt too; a missing file is an empty list.
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("one\r\n\r\ntwo words\r\n");
        file.close();
        QVERIFY(!list.load(&error));
        QCOMPARE(error, QStringLiteral("line 3 is not a word"));
        QFile::remove(path);
        QVERIFY(list.load(&error));
        QVERIFY(!list.add(QString(), &error));
        QVERIFY(!list.add(QStringLiteral("two words"), &error));
    }

    void cancelWhileScanning()
    {
        QStringList words;
        for (int i = 0; i < 20000; ++i)
            words << (i % 50 == 0 ? QStringLiteral("qzzxv") : QStringLiteral("cat"));
        const QString text = words.join(u' ');
        Control c(text);
        int yields = 0;
        SpellCheckFrm *dialog = nullptr;
        // The scan yields to the event loop now and then; the user presses Cancel at the second.
        c.services.onProcessEvents = [&] {
            dialog = c.editor.findChild<SpellCheckFrm *>();
            if (dialog && ++yields == 2) {
                QVERIFY(part<QProgressBar>(dialog, "ProgressBar")->isVisible());
                QCOMPARE(part<QLabel>(dialog, "StatusLB")->text(), QStringLiteral("Checking the document..."));
                click(dialog, "CancelButton");
            }
        };
        dialog = c.open();
        QCOMPARE(dialog->state(), State::Cancelled);
        QCOMPARE(yields, 2);   // the scan stopped at once, with hundreds of words to go
        QCOMPARE(part<QLabel>(dialog, "StatusLB")->text(), QStringLiteral("The check was cancelled."));
        QVERIFY(!part<QPushButton>(dialog, "ChangeButton")->isEnabled());
        QVERIFY(c.boxes().isEmpty());
        QCOMPARE(c.editor.Text(), text);

        // Closing the dialog in the middle of a scan stops it and the dialog goes afterwards.
        yields = 0;
        QPointer<SpellCheckFrm> closing;
        c.services.onProcessEvents = [&] {
            closing = c.editor.findChild<SpellCheckFrm *>();
            if (closing && ++yields == 2)
                click(closing, "CloseButton");
        };
        click(dialog, "CloseButton");
        QTRY_VERIFY(!c.editor.findChild<SpellCheckFrm *>());
        c.editor.ShowSpellCheck();
        QTRY_VERIFY(yields >= 2);
        QTRY_VERIFY(!c.editor.findChild<SpellCheckFrm *>());
        QCOMPARE(yields, 2);
        QVERIFY(c.boxes().isEmpty());
        QCOMPARE(c.editor.Text(), text);
    }
};

KVRTB_REGISTER_TEST(TestSpellCheckDialog)
#include "test_spellcheckdialog.moc"
