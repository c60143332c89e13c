// Help and sound: the help document in both path forms, What's This on the editor and its
// link, and the click sound following TurnOnSound.

#include "control/kvrtb.h"
#include "core/editorsurface.h"
#include "core/recordingplatformservices.h"
#include "help/helpfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QWhatsThis>
#include <QWhatsThisClickedEvent>

using namespace kvrtb;

class TestHelp : public QObject {
    Q_OBJECT

private slots:
    void helpFileInBothForms();
    void whatsThisOnTheEditor();
    void clickSoundIsAPlayableWave();
};

void TestHelp::helpFileInBothForms()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    QString plain;
    QVERIFY(QMetaObject::invokeMethod(&control, "GetHelpFile", Q_RETURN_ARG(QString, plain), Q_ARG(bool, true)));
    const QString address = control.GetHelpFile();

    QVERIFY(QFileInfo(plain).isAbsolute());
    QVERIFY(!plain.contains(QLatin1Char(':')));
    QVERIFY(QFileInfo(plain).isFile());
    QCOMPARE(QFileInfo(plain).fileName(), QStringLiteral("KvRTBHelp.html"));
    const QUrl url(address);
    QVERIFY(url.isLocalFile());
    QCOMPARE(url.toLocalFile(), plain);

    // A real document for users, identical to the one the library carries.
    QFile file(plain);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    file.close();
    QCOMPARE(text, HelpFile::contents());
    QVERIFY(text.startsWith("<!DOCTYPE html>"));
    for (const char *section : {"Fonts, colours and highlighting", "Counting words", "Random Word", "Shift"})
        QVERIFY2(text.contains(section), section);

    // A damaged copy on disk is written anew.
    if (plain != HelpFile::installedPath()) {
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("damaged");
        file.close();
        QCOMPARE(control.GetHelpFile(true), plain);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), HelpFile::contents());
    }

    // ShowHelp opens it with the desktop.
    control.ShowHelp();
    QCOMPARE(services.openedAddresses, QStringList{address});
}

void TestHelp::whatsThisOnTheEditor()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(300, 120);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    QWidget *editor = control.RichTextBox1().widget();
    QSignalSpy changed(&control, &KvRTB::PropertyChanged);

    // Until a file is chosen, What's This links to the control's own document.
    QHelpEvent query(QEvent::QueryWhatsThis, QPoint(5, 5), editor->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(editor, &query);
    QVERIFY(editor->whatsThis().contains(control.GetHelpFile()));

    control.PointToWhatsThisHelpFile();
    QCOMPARE(control.WhatsThisHelpFile(), control.GetHelpFile(true));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.first().first().toString(), QStringLiteral("WhatsThisHelpFile"));

    // A file the host names is linked as an address; Shift+F1 shows the text.
    control.setWhatsThisHelpFile(QStringLiteral("/opt/app/manual.html"));
    editor->setFocus();
    QTest::keyClick(editor, Qt::Key_F1, Qt::ShiftModifier);
    QVERIFY(editor->whatsThis().contains(QStringLiteral("file:///opt/app/manual.html")));
    QVERIFY(control.Text().isEmpty());   // the key typed nothing
    QWhatsThis::hideText();

    // Following the link opens it with the desktop.
    QWhatsThisClickedEvent clicked(QStringLiteral("file:///opt/app/manual.html"));
    QApplication::sendEvent(editor, &clicked);
    QCOMPARE(services.openedAddresses, QStringList{QStringLiteral("file:///opt/app/manual.html")});
    control.ShowHelp();
    QCOMPARE(services.openedAddresses.last(), QStringLiteral("file:///opt/app/manual.html"));

    // A file named relative to the working folder is opened by its full path.
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString previous = QDir::currentPath();
    QDir::setCurrent(folder.path());
    QFile manual(QStringLiteral("guide.html"));
    QVERIFY(manual.open(QIODevice::WriteOnly));
    manual.close();
    control.setWhatsThisHelpFile(QStringLiteral("guide.html"));
    control.ShowHelp();
    QDir::setCurrent(previous);
    QCOMPARE(services.openedAddresses.last(), QUrl::fromLocalFile(folder.filePath(QStringLiteral("guide.html"))).toString());
}

void TestHelp::clickSoundIsAPlayableWave()
{
    // The sound the desktop services play: a short 16-bit PCM wave carried in the library.
    QFile file(QStringLiteral(":/kvrtb/sounds/click.wav"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray wave = file.readAll();
    QVERIFY(wave.size() > 44 && wave.size() < 16 * 1024);
    QCOMPARE(wave.mid(0, 4), QByteArray("RIFF"));
    QCOMPARE(wave.mid(8, 8), QByteArray("WAVEfmt "));
    const auto u16 = [&wave](int at) { return quint8(wave[at]) | (quint8(wave[at + 1]) << 8); };
    const auto u32 = [&](int at) { return quint32(u16(at)) | (quint32(u16(at + 2)) << 16); };
    QCOMPARE(u16(20), 1);    // PCM
    QCOMPARE(u16(34), 16);   // bits per sample
    QCOMPARE(wave.mid(36, 4), QByteArray("data"));
    QCOMPARE(qsizetype(u32(40)), wave.size() - 44);
    const double seconds = double(u32(40)) / (u32(24) * u16(32));
    QVERIFY(seconds > 0.01 && seconds < 0.2);
}

QTEST_MAIN(TestHelp)
#include "test_help.moc"
