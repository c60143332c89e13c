// Tests of misspelling detection on a control's document and of moving between misspelt words.

#include "clirun.h"
#include "core/threadstate.h"
#include "corefixture.h"
#include "findreplace/findreplace.h"
#include "spelling/misspellings.h"
#include "testregistry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace kvrtb;
using kvrtb::test::CoreFixture;

namespace {

/// The words a scan of \a text reports.
QStringList misspelt(CoreFixture &f, const QString &text)
{
    f.surface().setText(text);
    QStringList words;
    f.core.misspellings().DetectMisspellings(words);
    return words;
}

/// \a count words, every tenth of them unknown.
QString longText(int count)
{
    QStringList words;
    for (int i = 0; i < count; ++i)
        words << (i % 10 == 0 ? QStringLiteral("qwzxv") : QStringLiteral("cat"));
    return words.join(QLatin1Char(' '));
}

} // namespace

class TestMisspellings : public QObject {
    Q_OBJECT

private slots:
    void init() { threadState().cancelRequested = false; }

    void detection_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        const QStringList none;
        QTest::newRow("known words in any case") << "The AARDVARK and the aardvark" << none;
        QTest::newRow("proper names only as listed") << "Zulu zulu" << QStringList{"zulu"};
        QTest::newRow("duplicates in text order") << "qwzxv cat Teh qwzxv" << QStringList{"qwzxv", "Teh", "qwzxv"};
        QTest::newRow("single letters and digits") << "a b 1234 x9 7" << none;
        QTest::newRow("web address") << "see http://www.qwzxv.com/qwzxvpage here" << none;
        QTest::newRow("bare www address") << "see www.qwzxv.org here" << none;
        QTest::newRow("mail address") << "mail qwzxv@qwzxvhost.com now" << none;
        // An abbreviation of the list is removed when a word character follows it...
        QTest::newRow("abbreviation before a letter") << "Assn.x Bldg.Qz" << QStringList{"Qz"};
        // ...but not before a blank: the stem is then a word like any other.
        QTest::newRow("abbreviation before a blank") << "the Assn. met" << QStringList{"Assn"};
        QTest::newRow("abbreviation case respected") << "the ASSN.x" << QStringList{"ASSN"};
        QTest::newRow("dotted initialism") << "e.g., i.e. and q.z.w" << QStringList{"q.z.w"};
        QTest::newRow("leading apostrophe") << "'qwzxv" << none;
        QTest::newRow("trailing apostrophe") << "qwzxv'" << none;
        QTest::newRow("leading right quote") << QString::fromUtf8("\xE2\x80\x99qwzxv") << none;
        QTest::newRow("trailing right quote") << QString::fromUtf8("qwzxv\xE2\x80\x99") << none;
        QTest::newRow("inner apostrophe") << "qwz'xv don't" << QStringList{"qwz'xv"};
        QTest::newRow("followed by colon") << "qwzxv: note" << none;
        QTest::newRow("followed by number sign") << "qwzxv# note" << none;
        QTest::newRow("followed by blank") << "qwzxv : note" << QStringList{"qwzxv"};
        QTest::newRow("accented known") << QString::fromUtf8("caf\xC3\xA9 caf\xC3\xA9s") << none;
        QTest::newRow("accented unknown")
            << QString::fromUtf8("\xC3\xA9qwzx qw\xC3\xA9zx")
            << QStringList{QString::fromUtf8("\xC3\xA9qwzx"), QString::fromUtf8("qw\xC3\xA9zx")};
        QTest::newRow("paragraphs") << "cat\nqwzxv\n\ndog" << QStringList{"qwzxv"};
    }

    void detection()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        CoreFixture f;
        QCOMPARE(misspelt(f, text), expected);
    }

    void resultAndArray()
    {
        CoreFixture f;
        Misspellings &m = f.core.misspellings();
        // Nothing found: false and the caller's array untouched.
        QStringList words{QStringLiteral("keep")};
        f.surface().setText(QStringLiteral("The cat sat."));
        QVERIFY(!m.DetectMisspellings(words));
        QCOMPARE(words, QStringList{QStringLiteral("keep")});
        f.surface().setText(QString());
        QVERIFY(!m.DetectMisspellings(words));
        QCOMPARE(m.wordTotal(), 0);
        // Found: appended, true, counters at the number of candidates.
        f.surface().setText(QStringLiteral("The qwzxv sat"));
        QVERIFY(m.DetectMisspellings(words));
        QCOMPARE(words, (QStringList{QStringLiteral("keep"), QStringLiteral("qwzxv")}));
        QCOMPARE(m.wordTotal(), 3);
        QCOMPARE(m.wordCounter(), 3);
        // The editor is not touched.
        QCOMPARE(f.surface().text(), QStringLiteral("The qwzxv sat"));
        QCOMPARE(f.core.progress(), 0);
    }

    void hugeSingleLine()
    {
        // 10 MB in one paragraph: every pattern runs over all of it without giving up early.
        CoreFixture f;
        QString line = QStringLiteral("1234567 www.example.com/x ").repeated(10 * 1024 * 1024 / 26);
        line += QStringLiteral("Assn.x qwzxv");
        QCOMPARE(misspelt(f, line), QStringList{QStringLiteral("qwzxv")});
    }

    void pendingInputPassesWordsOver()
    {
        CoreFixture f;
        f.services.pendingInput = true;
        QStringList words;
        f.surface().setText(QStringLiteral("qwzxv qwzxv"));
        QVERIFY(!f.core.misspellings().DetectMisspellings(words));
        QVERIFY(words.isEmpty());
        QCOMPARE(f.core.misspellings().wordCounter(), 2);
    }

    void cancel()
    {
        CoreFixture f;
        Misspellings &m = f.core.misspellings();
        f.surface().setText(longText(3000));

        // The stop flag set while the scan yields: empty array, counter 0, even though words
        // had been found (the result says so; the array is empty all the same).
        int yields = 0;
        f.services.onProcessEvents = [&] {
            if (++yields == 3)
                threadState().cancelRequested = true;
        };
        QStringList words{QStringLiteral("old")};
        QVERIFY(m.DetectMisspellings(words));
        QVERIFY(words.isEmpty());
        QCOMPARE(m.wordCounter(), 0);
        QCOMPARE(m.wordTotal(), 3000);

        // The dialog's own cancel check, with its progress seen mid-run and its cancel hook.
        yields = 0;
        f.services.onProcessEvents = {};
        threadState().cancelRequested = false;
        QList<int> counters;
        int cancelledCalls = 0;
        Misspellings::Observer observer;
        observer.isCancelled = [&] { return counters.size() >= 2; };
        observer.progress = [&](int counter, int total) {
            QCOMPARE(total, 3000);
            counters << counter;
        };
        observer.cancelled = [&] { ++cancelledCalls; };
        words.clear();
        m.DetectMisspellings(words, &observer);
        QVERIFY(words.isEmpty());
        QCOMPARE(cancelledCalls, 1);
        QVERIFY(counters.at(1) > 1 && counters.at(1) < 3000);
        QCOMPARE(counters.last(), 0);

        // A stop request from an idle moment does not cancel the next scan.
        threadState().cancelRequested = true;
        words.clear();
        QVERIFY(m.DetectMisspellings(words));
        QCOMPARE(words.size(), 300);
        QCOMPARE(m.wordCounter(), 3000);

        // SpellCheck of a scan cancelled after a find: 0, and List1 stays empty.
        yields = 0;
        f.services.onProcessEvents = [&] { threadState().cancelRequested = true; };
        QStringList array;
        QCOMPARE(m.SpellCheck(array), 0);
        QVERIFY(m.List1().isEmpty());
    }

    void spellCheckAndNavigation()
    {
        CoreFixture f;
        Misspellings &m = f.core.misspellings();
        const QString text =
            QStringLiteral("Teh qwzxv sat. See www.qwzxv.com then qwzxv again, teh end Teh.");
        f.surface().setText(text);
        QStringList array;
        QCOMPARE(m.SpellCheck(array), 5);
        QCOMPARE(m.List1(), (QStringList{"Teh", "qwzxv", "qwzxv", "teh", "Teh"}));
        auto selected = [&] { return qMakePair(f.surface().selStart(), f.surface().selLength()); };
        QCOMPARE(selected(), qMakePair(0, 3));
        QCOMPARE(m.currentErrorPosition(), 3);

        const int second = int(text.indexOf(QLatin1String("then qwzxv"))) + 5;
        const int lower = int(text.indexOf(QLatin1String("teh end")));
        const int last = int(text.lastIndexOf(QLatin1String("Teh")));
        QCOMPARE(m.GoToNextSpellError(), 4);
        QCOMPARE(m.GoToNextSpellError(), second); // the one in the address is passed over
        QCOMPARE(selected(), qMakePair(second, 5));
        QCOMPARE(m.GoToNextSpellError(), lower);  // match case: "teh", not "Teh"
        QCOMPARE(m.GoToNextSpellError(), last);
        QCOMPARE(m.GoToNextSpellError(), -1);     // no wrap; the selection stays
        QCOMPARE(selected(), qMakePair(last, 3));
        QCOMPARE(m.GoToPreviousSpellError(), lower);
        QCOMPARE(m.GoToPreviousSpellError(), second);
        QCOMPARE(m.GoToPreviousSpellError(), 4);
        QCOMPARE(m.GoToPreviousSpellError(), 0);
        QCOMPARE(m.GoToPreviousSpellError(), -1);
        QCOMPARE(selected(), qMakePair(0, 3));

        // A word the user corrected meanwhile is passed over.
        f.surface().setSelection(4, 5);
        f.surface().replaceSelection(QStringLiteral("quick"));
        m.PrepNonSpellCheckRTB(m.List1());
        QCOMPARE(selected(), qMakePair(9, 0)); // the preparation moves nothing
        QCOMPARE(m.GoToNextSpellError(), 0);
        QCOMPARE(m.GoToNextSpellError(), second);
        m.PrepNonSpellCheckRTB({});
        QCOMPARE(m.GoToNextSpellError(), -1);
        QCOMPARE(m.GoToPreviousSpellError(), -1);

        // No misspelling: -1, List1 empty, the selection where it was.
        f.surface().setText(QStringLiteral("The cat sat."));
        f.surface().setSelection(4, 3);
        QCOMPARE(m.SpellCheck(array), -1);
        QVERIFY(m.List1().isEmpty());
        QCOMPARE(selected(), qMakePair(4, 3));
    }

    void notWords()
    {
        CoreFixture f;
        Misspellings &m = f.core.misspellings();
        const QString text = QStringLiteral("Go to www.qwzxv.com or a@b.org, Assn.x and Assn. too");
        f.surface().setText(text);
        const int url = int(text.indexOf(QLatin1String("www")));
        const int urlEnd = url + int(QStringLiteral("www.qwzxv.com").size());
        QVERIFY(!m.DetectNotWords(url - 1));
        QVERIFY(m.DetectNotWords(url));
        QVERIFY(m.DetectNotWords(urlEnd - 1));
        QVERIFY(!m.DetectNotWords(urlEnd));
        QVERIFY(m.DetectNotWords(int(text.indexOf(QLatin1Char('@')))));
        QVERIFY(m.DetectNotWords(int(text.indexOf(QLatin1String("Assn.x")))));
        QVERIFY(!m.DetectNotWords(int(text.indexOf(QLatin1String("Assn. too")))));
        QVERIFY(!m.DetectNotWords(-1));
        QVERIFY(!m.DetectNotWords(int(text.size()) + 5));
        // The zones follow the text when it changes.
        f.surface().setText(QStringLiteral("plain words only"));
        QVERIFY(!m.DetectNotWords(url));
    }

    void spellCommand()
    {
#ifndef KVRTB_CLI
        QFAIL("The command-line tool is not part of this build.");
#else
        using kvrtb::test::runCli;
        const QString cli = QStringLiteral(KVRTB_CLI);
        // Standard input: text order, duplicates included, addresses and "word:" left out.
        kvrtb::test::CliRun r = runCli(cli, {QStringLiteral("spell"), QStringLiteral("-")},
                                       "Teh cat, teh www.qwzxv.com qwzxv: Teh caf\xC3\xA9 qw\xC3\xA9zx\n");
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QString::fromUtf8("Teh\nteh\nTeh\nqw\xC3\xA9zx\n"));
        r = runCli(cli, {QStringLiteral("spell"), QStringLiteral("-")}, "");
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QString());

        // A file (RTF by its suffix): its text is what is checked, not its markup.
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString path = dir.filePath(QStringLiteral("doc.rtf"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 Teh \\b qwzxv\\b0  cat\\par qwzxv}");
        file.close();
        r = runCli(cli, {QStringLiteral("spell"), path});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QStringLiteral("Teh\nqwzxv\nqwzxv\n"));

        r = runCli(cli, {QStringLiteral("spell"), dir.filePath(QStringLiteral("missing.txt"))});
        QCOMPARE(r.code, 3);
        QVERIFY(!r.err.isEmpty());
        r = runCli(cli, {QStringLiteral("spell")});
        QCOMPARE(r.code, 2);
#endif
    }
};

KVRTB_REGISTER_TEST(TestMisspellings)
#include "test_misspellings.moc"
