// The word count: the counting engine's modes and separators (checked against the separator
// pattern itself), the statistics, the dialog driven through its own controls, and the
// control's members.

#include "control/kvrtb.h"
#include "corefixture.h"
#include "wordcount/countwordsfrm.h"
#include "wordcount/wordcount.h"
#include "wordcount/wordcounter.h"

#include <QAbstractButton>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

using namespace kvrtb;

namespace {

QStringList tokens(const QString &text, WordCountMode mode)
{
    return WordCounter::count(text, mode).tokenTexts();
}

/// The counting steps written out with the patterns themselves: addresses removed, separator
/// runs replaced by a blank, accented letters by "A", line breaks by blanks, split on blanks.
QStringList referenceTokens(QString text, WordCountMode mode)
{
    const auto ci = QRegularExpression::CaseInsensitiveOption;
    text.replace(QRegularExpression(QStringLiteral(R"(\b[A-Z0-9._%-]+@[A-Z0-9.-]+\.[A-Z]{2,4}\b)"), ci), QString());
    text.replace(QRegularExpression(
                     QStringLiteral(R"(\b(((https?|ftp|gopher|telnet|file|notes|ms-help):((//)|(\\\\))|(WWW)\.)+[\w\d:#@%/;$()~_?\+-=\\\.&]{3,}))"),
                     ci),
                 QString());
    text.replace(QRegularExpression(WordCounter::separatorPatternText(), ci), QStringLiteral(" "));
    QString folded = text;
    folded.replace(QRegularExpression(WordCounter::accentedLetterPatternText(), ci), QStringLiteral("A"));
    folded.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    const QStringList shown = text.split(QLatin1Char(' '));
    const QStringList tested = folded.split(QLatin1Char(' '));
    QStringList counted;
    for (int i = 0; i < tested.size(); ++i) {
        const bool letter = tested.at(i).contains(QRegularExpression(QStringLiteral("[A-Za-z]")));
        const bool digit = tested.at(i).contains(QRegularExpression(QStringLiteral("[0-9]")));
        const bool take = mode == WordCountMode::WordsOnly ? letter && !digit
                        : mode == WordCountMode::WordsAndNumbers ? letter || digit
                                                                 : digit;
        if (!tested.at(i).isEmpty() && take)
            counted.append(shown.at(i));
    }
    return counted;
}

template <typename T>
T *child(QWidget &parent, const char *name)
{
    T *found = parent.findChild<T *>(QString::fromLatin1(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}

/// Clicks an option button on its circle, where a click toggles it.
void clickOption(QWidget &dialog, const char *name)
{
    auto *button = dialog.findChild<QAbstractButton *>(QString::fromLatin1(name));
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
}

void clickEntry(QListView *list, int row, bool twice = false)
{
    const QRect rect = list->visualRect(list->model()->index(row, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
    if (twice)
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, rect.center());
}

QStringList listed(QListView *list)
{
    QStringList entries;
    for (int row = 0; row < list->model()->rowCount(); ++row)
        entries << list->model()->index(row, 0).data().toString();
    return entries;
}

} // namespace

class TestWordCount : public QObject {
    Q_OBJECT

private slots:
    void modes_data();
    void modes();
    void agreesWithThePatterns();
    void tokensPointIntoTheDocument();
    void statistics();
    void dialogDrivenByItsControls();
    void dialogCountsSelectionAndEmptyDocument();
    void controlMembers();
};

void TestWordCount::modes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("expected");
    using L = QStringList;
    QTest::newRow("time and thousands are one number") << "at 10:30 we sold 1,000 cups" << 2 << L{"10:30", "1,000"};
    QTest::newRow("a hyphen before a digit separates") << "pages 3-4" << 2 << L{"3", "4"};
    QTest::newRow("hyphenated word is one word") << "a well-known fact" << 0 << L{"a", "well-known", "fact"};
    QTest::newRow("colon not before a digit separates") << "note:this" << 0 << L{"note", "this"};
    QTest::newRow("comma before four digits separates") << "1,0000" << 2 << L{"1", "0000"};
    QTest::newRow("comma before three digits and a word character") << "x,123_y" << 1 << L{"x", "123", "y"};
    QTest::newRow("letters then digits: not a word") << "abc123 word" << 0 << L{"word"};
    QTest::newRow("letters then digits: words and numbers") << "abc123 word" << 1 << L{"abc123", "word"};
    QTest::newRow("letters then digits: numbers") << "abc123 word" << 2 << L{"abc123"};
    QTest::newRow("e-mail is not a word") << "write to jo.ann@example.com soon" << 0 << L{"write", "to", "soon"};
    QTest::newRow("e-mail is not a number") << "x1@example.com 7" << 2 << L{"7"};
    QTest::newRow("e-mail listed") << "write to jo.ann@example.com or b@c.org" << 3
                                   << L{"jo.ann@example.com", "b@c.org"};
    QTest::newRow("web address is not a word") << "see www.example.com/a now" << 0 << L{"see", "now"};
    QTest::newRow("web addresses listed") << "see http://example.com/x and www.kde.org." << 4
                                          << L{"http://example.com/x", "www.kde.org."};
    QTest::newRow("accented words count") << "café é Ärger" << 0 << L{"café", "é", "Ärger"};
    QTest::newRow("symbols alone count nowhere") << "*** ... ' ^" << 1 << L{};
    QTest::newRow("every line break separates") << "one\r\ntwo\rthree\nfour" << 0 << L{"one", "two", "three", "four"};
    QTest::newRow("punctuation stays with the word") << "end. (start) \"quoted\"" << 0 << L{"end.", "start", "quoted"};
    QTest::newRow("empty text, words") << "" << 0 << L{};
    QTest::newRow("empty text, e-mail") << "" << 3 << L{};
    QTest::newRow("only separators") << " \t!?\n" << 1 << L{};
}

void TestWordCount::modes()
{
    QFETCH(QString, text);
    QFETCH(int, mode);
    QFETCH(QStringList, expected);
    const WordCountResult result = WordCounter::count(text, WordCountMode(mode));
    QCOMPARE(result.tokenTexts(), expected);
    QCOMPARE(result.count(), expected.size());
}

void TestWordCount::agreesWithThePatterns()
{
    // The engine cuts tokens with a scanner; it must agree with the separator pattern on every
    // text, including the look-aheads at the text's end and next to other separators.
    const QString alphabet = QStringLiteral("ab1 2:,-_.@/\"'9éÉ\n\t\r;x(www.)");
    QRandomGenerator random(20261122);
    const QStringList pieces{QStringLiteral("jo@ex.com"), QStringLiteral("www.kde.org"), QStringLiteral(",123"),
                             QStringLiteral(":30"), QStringLiteral("-7"), QStringLiteral("http://a.b/c")};
    for (int round = 0; round < 3000; ++round) {
        QString text;
        const int length = int(random.bounded(40));
        for (int i = 0; i < length; ++i) {
            if (random.bounded(8) == 0)
                text += pieces.at(int(random.bounded(pieces.size())));
            else
                text += alphabet.at(int(random.bounded(alphabet.size())));
        }
        for (int mode = 0; mode < 3; ++mode) {
            const QStringList engine = tokens(text, WordCountMode(mode));
            const QStringList reference = referenceTokens(text, WordCountMode(mode));
            if (engine != reference)
                qWarning() << "text" << text << "mode" << mode << engine << reference;
            QCOMPARE(engine, reference);
        }
    }
}

void TestWordCount::tokensPointIntoTheDocument()
{
    // An address between two apostrophes glues them into one token once it is removed; the
    // token spans the address in the document.
    const QString text = QStringLiteral("one x@y.com two \u00e9'jo@y.com'\u00e9 www.kde.org three");
    const WordCountResult result = WordCounter::count(text, WordCountMode::WordsOnly);
    QCOMPARE(result.tokenTexts(), (QStringList{"one", "two", "\u00e9''\u00e9", "three"}));
    QCOMPARE(text.mid(result.token(1).documentStart, result.token(1).documentEnd - result.token(1).documentStart),
             QStringLiteral("two"));
    QCOMPARE(text.mid(result.token(2).documentStart, result.token(2).documentEnd - result.token(2).documentStart),
             QStringLiteral("\u00e9'jo@y.com'\u00e9"));
    QCOMPARE(result.token(3).documentStart, int(text.indexOf(QStringLiteral("three"))));
    QCOMPARE(result.token(3).documentEnd, int(text.size()));

    const WordCountResult mails = WordCounter::count(text, WordCountMode::EmailAddresses);
    QCOMPARE(mails.count(), 2);
    QCOMPARE(mails.token(0).documentStart, 4);
}

void TestWordCount::statistics()
{
    const QString text = QStringLiteral("Hello world. How are you?\n\n\"I'm fine,\" he said! Pi is 3.14 or so\n"
                                        "Mail jo@example.com  www.kde.org");
    const TextStatistics s = WordCounter::statistics(text);
    // Hello world How are you I'm fine he said Pi is 3.14 or so Mail + two addresses.
    QCOMPARE(s.words, 17);
    QCOMPARE(s.sentences, 5);   // "... said!" ends one; "Pi is 3.14 or so" ends with its paragraph
    QCOMPARE(s.paragraphs, 3);  // the empty one does not count
    QCOMPARE(s.characters, int(text.size()) - 3);
    QCOMPARE(s.charactersNoSpaces, int(QString(text).remove(QRegularExpression(QStringLiteral("\\s"))).size()));
    QCOMPARE(s.readingSeconds, 5);  // 17 words at 230 a minute: 4.4 s, rounded up

    const TextStatistics empty = WordCounter::statistics(QString());
    QCOMPARE(empty.words + empty.characters + empty.charactersNoSpaces + empty.sentences + empty.paragraphs
                 + empty.readingSeconds,
             0);
    // A character outside the basic plane is one character.
    QCOMPARE(WordCounter::statistics(QStringLiteral("a\U0001F600b")).characters, 3);
    QCOMPARE(readingTimeText(0), QStringLiteral("0 min"));
    QCOMPARE(readingTimeText(20), QStringLiteral("< 1 min"));
    QCOMPARE(readingTimeText(150), QStringLiteral("3 min"));
}

void TestWordCount::dialogDrivenByItsControls()
{
    test::CoreFixture fixture;
    fixture.surface().setText(QStringLiteral("It is 10:30 and 3-4 well-known cafés.\n"
                                             "Write to jo@example.com or visit http://example.org/page today."));
    fixture.core.properties().TurnOnSound = true;
    WordCount area(fixture.core);
    CountWordsFrm dialog(area);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    auto *label = child<QLabel>(dialog, "WordCountLabel");
    auto *list = child<QListView>(dialog, "WCList");
    auto *link = child<QPushButton>(dialog, "LinkCmd");
    QVERIFY(label && list && link);
    QCOMPARE(child<QLineEdit>(dialog, "Reg1")->text(), WordCounter::separatorPatternText());
    QVERIFY(child<QLineEdit>(dialog, "Reg1")->isHidden());

    // Opens in the words-only mode.
    QVERIFY(child<QAbstractButton>(dialog, "WordsOnlyOpt")->isChecked());
    QCOMPARE(listed(list), (QStringList{"It", "is", "and", "well-known", "cafés.", "Write", "to", "or", "visit", "today."}));
    QCOMPARE(label->text(), QStringLiteral("Words: 10"));
    QVERIFY(link->isHidden());

    clickOption(dialog, "NumsOpt");
    QCOMPARE(dialog.mode(), WordCountMode::Numbers);
    QCOMPARE(listed(list), (QStringList{"10:30", "3", "4"}));
    QCOMPARE(label->text(), QStringLiteral("Numbers: 3"));

    clickOption(dialog, "WordsNumsOpt");
    QCOMPARE(label->text(), QStringLiteral("Words and numbers: 13"));

    // Double-clicking an entry selects it in the document.
    clickEntry(list, 4, true);
    QCOMPARE(fixture.surface().selectedText(), QStringLiteral("3"));
    QCOMPARE(fixture.surface().selStart(), 16);

    // An e-mail entry: the button says "Create Email" and opens the mail program.
    clickOption(dialog, "EmailOpt");
    QCOMPARE(listed(list), QStringList{"jo@example.com"});
    QVERIFY(link->isVisible());
    QVERIFY(!link->isEnabled());
    clickEntry(list, 0);
    QCOMPARE(link->text(), QStringLiteral("Create Email"));
    QVERIFY(link->isEnabled());
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(fixture.services.openedAddresses, QStringList{"mailto:jo@example.com"});
    QCOMPARE(fixture.services.clickSounds, 1);

    // A web entry: "Connect to: " and the address; a failure to open it is reported.
    clickOption(dialog, "URLOpt");
    clickEntry(list, 0);
    QCOMPARE(link->text(), QStringLiteral("Connect to: http://example.org/page"));
    fixture.services.openAddressSucceeds = false;
    QTest::mouseClick(link, Qt::LeftButton);
    QCOMPARE(fixture.services.openedAddresses.last(), QStringLiteral("http://example.org/page"));
    QCOMPARE(fixture.boxes().size(), 1);
    QCOMPARE(fixture.boxes().first().text, fixture.services.openAddressError);

    // Nothing the user wrote changed.
    QVERIFY(fixture.surface().text().startsWith(QStringLiteral("It is 10:30")));
    QTest::mouseClick(child<QAbstractButton>(dialog, "CloseButton"), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
}

void TestWordCount::dialogCountsSelectionAndEmptyDocument()
{
    test::CoreFixture fixture;
    fixture.surface().setText(QStringLiteral("One two three. Four five."));
    fixture.surface().setSelection(4, 9);   // "two three"
    WordCount area(fixture.core);
    {
        CountWordsFrm dialog(area);
        QCOMPARE(child<QLabel>(dialog, "SelectionStat0")->text(), QStringLiteral("2"));
        QCOMPARE(child<QLabel>(dialog, "DocumentStat0")->text(), QStringLiteral("5"));
        QCOMPARE(child<QLabel>(dialog, "SelectionStat1")->text(), QStringLiteral("9"));
        QCOMPARE(child<QLabel>(dialog, "DocumentStat3")->text(), QStringLiteral("2"));
    }
    fixture.surface().setText(QString());
    CountWordsFrm empty(area);
    QCOMPARE(child<QLabel>(empty, "WordCountLabel")->text(), QStringLiteral("Words: 0"));
    QVERIFY(!empty.findChild<QLabel *>(QStringLiteral("SelectionStat0")));
    for (int i = 0; i < 6; ++i)
        QCOMPARE(child<QLabel>(empty, QStringLiteral("DocumentStat%1").arg(i).toLatin1().constData())->text(), QStringLiteral("0"));
    for (int mode = 0; mode < 5; ++mode) {
        empty.setMode(WordCountMode(mode));
        QCOMPARE(empty.result().count(), 0);
    }
    QVERIFY(fixture.boxes().isEmpty());
}

void TestWordCount::controlMembers()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.setText(QStringLiteral("Alpha beta gamma.\nDelta jo@example.com"));
    control.SelectAllText();
    control.setSelStart(6);
    control.setSelLength(4);

    QVariantMap stats;
    QVERIFY(QMetaObject::invokeMethod(&control, "GetWordCountStatistics", Q_RETURN_ARG(QVariantMap, stats)));
    QCOMPARE(stats.value("Words").toInt(), 5);
    QCOMPARE(stats.value("Sentences").toInt(), 2);
    QCOMPARE(stats.value("Paragraphs").toInt(), 2);
    QCOMPARE(stats.value("SelectionWords").toInt(), 1);
    QCOMPARE(stats.value("SelectionCharacters").toInt(), 4);

    // The dialog opens on the control and closes with its own button.
    bool seen = false;
    QTimer::singleShot(0, [&seen] {
        auto *dialog = qobject_cast<CountWordsFrm *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen = dialog->windowTitle() == QStringLiteral("Word Count") && dialog->result().count() == 4;
        QTest::mouseClick(dialog->findChild<QAbstractButton *>(QStringLiteral("CloseButton")), Qt::LeftButton);
    });
    QVERIFY(QMetaObject::invokeMethod(&control, "ShowWordCount"));
    QVERIFY(seen);
}

QTEST_MAIN(TestWordCount)
#include "test_wordcount.moc"
