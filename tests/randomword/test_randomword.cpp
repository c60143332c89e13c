// The random-word dialog: a dictionary word with its synonyms, another word on request, the
// selected synonym copied, and the click sound following TurnOnSound.

#include "control/kvrtb.h"
#include "core/recordingplatformservices.h"
#include "spelling/randomfrm.h"
#include "spelling/thesaurus.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace kvrtb;

namespace {

/// Random numbers from a fixed list, repeated.
WordLists::RandomSource fixedNumbers(QList<double> numbers)
{
    auto next = std::make_shared<int>(0);
    return [numbers, next] { return numbers.at((*next)++ % numbers.size()); };
}

} // namespace

class TestRandomWord : public QObject {
    Q_OBJECT

private slots:
    void pickPrefersWordsWithSynonyms();
    void dialogDrivenByItsButtons();
    void controlOpensTheDialog();
};

void TestRandomWord::pickPrefersWordsWithSynonyms()
{
    for (int round = 0; round < 20; ++round) {
        const RandomWordEntry entry = RandomWordEntry::pick();
        QVERIFY(!entry.word.isEmpty());
        QVERIFY(!entry.word.endsWith(QLatin1Char('\r')));
        QVERIFY(!entry.word.contains(QLatin1Char('.')) && !entry.word.contains(QLatin1Char('\'')));
        QVERIFY(!entry.word.startsWith(QLatin1Char('Z')));
        QStringList synonyms;
        const QString message = Thesaurus::GetSynonyms(entry.word, synonyms);
        QCOMPARE(entry.message, message);
        QCOMPARE(entry.synonyms, message.isEmpty() ? synonyms : QStringList());
    }
    // With one try the word drawn is kept even without synonyms.
    const RandomWordEntry once = RandomWordEntry::pick(fixedNumbers({0.1, 0.37, 0.52, 0.81, 0.66}), 1);
    QVERIFY(!once.word.isEmpty());
    QCOMPARE(once.message.isEmpty(), !once.synonyms.isEmpty());
}

void TestRandomWord::dialogDrivenByItsButtons()
{
    QList<RandomWordEntry> entries{{QStringLiteral("Aback"), {QStringLiteral("confused"), QStringLiteral("surprised")}, QString()},
                                   {QStringLiteral("Quux"), {}, QStringLiteral("No synonyms found.")}};
    int drawn = 0;
    int clicks = 0;
    RandomFrm dialog([&] { return entries.at(drawn++ % entries.size()); }, [&] { ++clicks; });
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *word = dialog.findChild<QLabel *>(QStringLiteral("WordLB"));
    auto *list = dialog.findChild<QListWidget *>(QStringLiteral("SynoList"));
    auto *copy = dialog.findChild<QPushButton *>(QStringLiteral("CopyButton"));
    QCOMPARE(word->text(), QStringLiteral("Aback"));
    QCOMPARE(list->count(), 2);
    QCOMPARE(copy->text(), QStringLiteral("&Copy Selected Synonym"));
    QVERIFY(!copy->isEnabled());

    QApplication::clipboard()->setText(QStringLiteral("before"));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
    QVERIFY(copy->isEnabled());
    QTest::mouseClick(copy, Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("surprised"));
    QCOMPARE(clicks, 1);

    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("NewWordButton")), Qt::LeftButton);
    QCOMPARE(clicks, 2);
    QCOMPARE(word->text(), QStringLiteral("Quux"));
    QCOMPARE(list->count(), 1);
    QCOMPARE(list->item(0)->text(), QStringLiteral("No synonyms found."));
    QVERIFY(!(list->item(0)->flags() & Qt::ItemIsSelectable));
    QVERIFY(!copy->isEnabled());

    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("CloseButton")), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

void TestRandomWord::controlOpensTheDialog()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    for (const bool sound : {true, false}) {
        control.setTurnOnSound(sound);
        services.clickSounds = 0;
        QString shown;
        QTimer::singleShot(0, [&shown] {
            auto *dialog = qobject_cast<RandomFrm *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            shown = dialog->findChild<QLabel *>(QStringLiteral("WordLB"))->text();
            QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("NewWordButton")), Qt::LeftButton);
            QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("WordLB"))->text(), dialog->entry().word);
            dialog->reject();
        });
        QVERIFY(QMetaObject::invokeMethod(&control, "ShowRandomWord"));
        QVERIFY(!shown.isEmpty());
        QCOMPARE(services.clickSounds, sound ? 1 : 0);
    }
}

QTEST_MAIN(TestRandomWord)
#include "test_randomword.moc"
