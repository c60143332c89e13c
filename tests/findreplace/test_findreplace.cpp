// Tests of finding and replacing on a control's document, without the dialog.

#include "clirun.h"
#include "core/threadstate.h"
#include "corefixture.h"
#include "editing/specialundo.h"
#include "findreplace/findreplace.h"
#include "findreplace/textsearch.h"
#include "testregistry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace kvrtb;
using kvrtb::test::CoreFixture;

namespace {

QPair<int, int> selection(CoreFixture &f)
{
    return {f.surface().selStart(), f.surface().selLength()};
}

/// Every hit of Find2 from the top, forward, until it finds no more.
QList<int> allForward(CoreFixture &f, const QString &what, FindOptionsQ options, bool skip = false)
{
    f.surface().setSelStart(0);
    QList<int> hits;
    for (int hit = f.core.findReplace().Find2(what, FindNext, options, skip); hit >= 0;
         hit = f.core.findReplace().Find2(what, FindNext, options, skip))
        hits << hit;
    return hits;
}

/// Every hit of Find2 from the end, backward, until it finds no more.
QList<int> allBackward(CoreFixture &f, const QString &what, FindOptionsQ options, bool skip = false)
{
    f.surface().setSelStart(f.surface().textLength());
    QList<int> hits;
    for (int hit = f.core.findReplace().Find2(what, FindPrevious, options, skip); hit >= 0;
         hit = f.core.findReplace().Find2(what, FindPrevious, options, skip))
        hits << hit;
    return hits;
}

} // namespace

class TestFindReplace : public QObject {
    Q_OBJECT

private slots:
    void init() { threadState().cancelRequested = false; }

    void findOptionsBothWays()
    {
        CoreFixture f;
        //                                 0   4   8    13     20
        f.surface().setText(QStringLiteral("Cat cat cats concat CAT."));
        QCOMPARE(allForward(f, QStringLiteral("Cat"), MatchCase), QList<int>{0});
        QCOMPARE(allForward(f, QStringLiteral("Cat"), AllMatches), (QList<int>{0, 4, 8, 16, 20}));
        QCOMPARE(allForward(f, QStringLiteral("cat"), WholeWord), (QList<int>{0, 4, 20}));
        QCOMPARE(allForward(f, QStringLiteral("cat"), WholeWord_MatchCase), QList<int>{4});
        QCOMPARE(allBackward(f, QStringLiteral("cat"), WholeWord), (QList<int>{20, 4, 0}));
        QCOMPARE(allBackward(f, QStringLiteral("cat"), AllMatches), (QList<int>{20, 16, 8, 4, 0}));
        QCOMPARE(allBackward(f, QStringLiteral("cat"), MatchCase), (QList<int>{16, 8, 4}));
        QCOMPARE(allBackward(f, QStringLiteral("CAT"), WholeWord_MatchCase), QList<int>{20});

        // A hit is selected; no hit leaves the selection alone; the end does not wrap.
        f.surface().setSelStart(0);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("cats")), 8);
        QCOMPARE(selection(f), qMakePair(8, 4));
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("cats")), -1);
        QCOMPARE(selection(f), qMakePair(8, 4));
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("Cat"), FindDirectionQ(7)), 13 + 3);

        // Whole word backward passes "cats" over for an earlier whole "cat".
        f.surface().setText(QStringLiteral("cat dog cats"));
        f.surface().setSelStart(12);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("cat"), FindPrevious, WholeWord), 0);

        // Backward looks before the caret, with a start below 1 raised to 1.
        f.surface().setText(QStringLiteral("a cat"));
        f.surface().setSelStart(0);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("a"), FindPrevious), 0);
        f.surface().setSelStart(0);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("a c"), FindPrevious), -1);
        f.surface().setSelection(2, 3);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("cat"), FindPrevious), -1);
    }

    void findSkippingAddressesAndOddInput()
    {
        CoreFixture f;
        const QString text = QStringLiteral("cat at www.cat.com, me@cat.org and cat");
        f.surface().setText(text);
        QCOMPARE(allForward(f, QStringLiteral("cat"), WholeWord, true), (QList<int>{0, int(text.size()) - 3}));
        QCOMPARE(allForward(f, QStringLiteral("cat"), WholeWord).size(), 4);
        QCOMPARE(allBackward(f, QStringLiteral("cat"), WholeWord, true), (QList<int>{int(text.size()) - 3, 0}));

        // Regular-expression characters are plain characters.
        f.surface().setText(QStringLiteral("x axbbc a.b*c (a.b*c) [a-z]+"));
        QCOMPARE(allForward(f, QStringLiteral("a.b*c"), AllMatches), (QList<int>{8, 15}));
        QCOMPARE(allForward(f, QStringLiteral("[a-z]+"), AllMatches), QList<int>{22});
        QVERIFY(!f.core.findReplace().FindVerify(QStringLiteral("a.*c"), AllMatches));

        // Nothing to find, or nothing to find in.
        QCOMPARE(f.core.findReplace().Find2(QString()), -1);
        QCOMPARE(f.core.findReplace().Find2(QString(), FindPrevious), -1);
        f.surface().setText(QString());
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("x")), -1);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("x"), FindPrevious, WholeWord), -1);
        QVERIFY(!f.core.findReplace().FindVerify(QStringLiteral("x")));

        // A searched text of 10,000 characters, and the last word of a 10 MB single line.
        const QString needle = QString(9999, QLatin1Char('n')) + QLatin1Char('!');
        f.surface().setText(QStringLiteral("start ") + needle + QStringLiteral(" end"));
        f.surface().setSelStart(0);
        QCOMPARE(f.core.findReplace().Find2(needle, FindNext, WholeWord), 6);
        QCOMPARE(f.core.findReplace().Find2(needle, FindNext), -1);
        QCOMPARE(f.core.findReplace().Find2(needle, FindPrevious), -1);
        f.surface().setSelStart(f.surface().textLength());
        QCOMPARE(f.core.findReplace().Find2(needle, FindPrevious, WholeWord_MatchCase), 6);
        QVERIFY(!f.core.findReplace().FindVerify(needle + QLatin1Char('!')));

        QString line;
        line.reserve(10'000'010);
        while (line.size() < 10'000'000)
            line += QStringLiteral("lorem ipsum dolor ");
        line += QStringLiteral("zebra");
        f.surface().setText(line);
        f.surface().setSelStart(0);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("ZEBRA"), FindNext, WholeWord), int(line.size()) - 5);
        QCOMPARE(f.core.findReplace().Find2(QStringLiteral("lorem"), FindPrevious, WholeWord_MatchCase),
                 int(line.size()) - 23);
        QCOMPARE(f.core.findReplace().ReplaceAll(QStringLiteral("zebra"), QStringLiteral("okapi"), WholeWord), 1);
        QCOMPARE(f.surface().textLength(), int(line.size()));
        QCOMPARE(f.surface().textRange(int(line.size()) - 6, 6), QStringLiteral(" okapi"));
    }

    void findVerify()
    {
        CoreFixture f;
        f.surface().setText(QStringLiteral("One Cat\nconcatenate"));
        f.surface().setSelection(1, 2);
        FindReplace &find = f.core.findReplace();
        QVERIFY(find.FindVerify(QStringLiteral("CAT"), AllMatches));
        QVERIFY(!find.FindVerify(QStringLiteral("CAT"), MatchCase));
        QVERIFY(find.FindVerify(QStringLiteral("cat"), WholeWord));
        QVERIFY(!find.FindVerify(QStringLiteral("cat"), WholeWord_MatchCase));
        QVERIFY(find.FindVerify(QStringLiteral("Cat"), WholeWord_MatchCase));
        QVERIFY(!find.FindVerify(QStringLiteral("conca"), WholeWord));
        QVERIFY(find.FindVerify(QStringLiteral("cat\ncon"), AllMatches));
        QCOMPARE(selection(f), qMakePair(1, 2));
    }

    void replaceAllAndItsUndo()
    {
        CoreFixture f;
        FindReplace &find = f.core.findReplace();
        f.surface().setText(QStringLiteral("cat Cat cats\nconcat"));
        f.events.names.clear();
        threadState().cancelRequested = true; // left over: a replace-all clears it
        QCOMPARE(find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("dog"), AllMatches), 4);
        QCOMPARE(f.surface().text(), QStringLiteral("dog dog dogs\ncondog"));
        QCOMPARE(f.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QCOMPARE(threadState().lastUndoKind, int(ReplaceTextUD));
        QVERIFY(!threadState().rewriteInProgress);
        QVERIFY(!f.surface().canUndo());

        // One HyperUndo takes the whole replace-all back; a second one redoes it.
        f.core.specialUndo().HyperUndo();
        QCOMPARE(f.surface().text(), QStringLiteral("cat Cat cats\nconcat"));
        f.core.specialUndo().HyperUndo();
        QCOMPARE(f.surface().text(), QStringLiteral("dog dog dogs\ncondog"));

        // Options; a replacement holding the searched text is not searched again.
        f.surface().setText(QStringLiteral("cat Cat cats"));
        QCOMPARE(find.ReplaceAll(QStringLiteral("Cat"), QStringLiteral("Cat Cat"), WholeWord_MatchCase), 1);
        QCOMPARE(f.surface().text(), QStringLiteral("cat Cat Cat cats"));
        QCOMPARE(find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("catcat"), WholeWord), 3);
        QCOMPARE(f.surface().text(), QStringLiteral("catcat catcat catcat cats"));
        QCOMPARE(find.ReplaceAll(QStringLiteral("."), QString(), AllMatches), 0);

        // No hit: nothing changes and no event is raised.
        f.events.names.clear();
        QCOMPARE(find.ReplaceAll(QStringLiteral("bird"), QStringLiteral("fish"), AllMatches), 0);
        QCOMPARE(find.ReplaceAll(QString(), QStringLiteral("fish"), AllMatches), 0);
        QVERIFY(f.events.names.isEmpty());

        // The font colour goes on the replacements only.
        f.surface().setText(QStringLiteral("a cat and a cat"));
        QCOMPARE(find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("lion"), AllMatches, Colour(0x0000FF)), 2);
        QCOMPARE(f.surface().rangeCharFormat(2, 4).color, std::optional<Colour>(0x0000FF));
        QCOMPARE(f.surface().rangeCharFormat(13, 4).color, std::optional<Colour>(0x0000FF));
        QVERIFY(f.surface().rangeCharFormat(0, 2).color != std::optional<Colour>(0x0000FF));
        QVERIFY(f.surface().rangeCharFormat(6, 5).color != std::optional<Colour>(0x0000FF));
    }

    void replaceAllKeepsFormats()
    {
        CoreFixture f;
        FindReplace &find = f.core.findReplace();
        // A paragraph in one format, and one whose hits are in different formats.
        f.surface().setText(QStringLiteral("cat and cat\ncat is cat"));
        CharFormat bold;
        bold.bold = true;
        CharFormat italic;
        italic.italic = true;
        f.surface().setRangeCharFormat(12, 7, bold);   // "cat is "
        f.surface().setRangeCharFormat(19, 3, italic); // "cat"
        QCOMPARE(find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("lion"), AllMatches, Colour(0x00FF00)), 4);
        const QString text = QStringLiteral("lion and lion\nlion is lion");
        QCOMPARE(f.surface().text(), text);
        auto formatAt = [&](int start, int length) { return f.surface().rangeCharFormat(start, length); };
        QCOMPARE(formatAt(0, 13).bold, std::optional<bool>(false));
        QCOMPARE(formatAt(14, 8).bold, std::optional<bool>(true));
        QCOMPARE(formatAt(14, 8).italic, std::optional<bool>(false));
        QCOMPARE(formatAt(22, 4).italic, std::optional<bool>(true));
        QCOMPARE(formatAt(22, 4).bold, std::optional<bool>(false));
        for (int start : {0, 9, 14, 22})
            QCOMPARE(formatAt(start, 4).color, std::optional<Colour>(0x00FF00));
        for (int start : {4, 8, 18, 21})
            QVERIFY(formatAt(start, 1).color != std::optional<Colour>(0x00FF00));

        // Paragraph breaks in the replacement become paragraphs.
        f.surface().setText(QStringLiteral("one, two, three"));
        QCOMPARE(find.ReplaceAll(QStringLiteral(", "), QStringLiteral("\r\n"), AllMatches), 2);
        QCOMPARE(f.surface().text(), QStringLiteral("one\ntwo\nthree"));
        QCOMPARE(f.surface().lineCount(), 3);
    }

    void replaceAllStopsOnRequest()
    {
        CoreFixture f;
        FindReplace &find = f.core.findReplace();
        f.surface().setText(QStringLiteral("cat ").repeated(1000));
        QList<bool> rewriting;
        f.services.onProcessEvents = [&] {
            rewriting << threadState().rewriteInProgress;
            find.ExitFindRep();
        };
        const int count = find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("dog"), WholeWord);
        QCOMPARE(count, FindReplace::kYieldInterval);
        QCOMPARE(rewriting, QList<bool>{true});
        QCOMPARE(f.surface().text(),
                 QStringLiteral("dog ").repeated(count) + QStringLiteral("cat ").repeated(1000 - count));
        QVERIFY(!threadState().rewriteInProgress);
        f.services.onProcessEvents = {};
        QCOMPARE(find.ReplaceAll(QStringLiteral("cat"), QStringLiteral("dog"), WholeWord), 1000 - count);
    }

    void replaceNext()
    {
        CoreFixture f;
        FindReplace &find = f.core.findReplace();
        f.surface().setText(QStringLiteral("cat cats cat"));
        f.surface().setSelStart(0);
        bool replaced = true;
        // Nothing selected yet: the first press only finds.
        QCOMPARE(find.ReplaceNext(QStringLiteral("cat"), QStringLiteral("dog"), WholeWord, {}, &replaced), 0);
        QVERIFY(!replaced);
        QCOMPARE(find.ReplaceNext(QStringLiteral("cat"), QStringLiteral("dog"), WholeWord, {}, &replaced), 9);
        QVERIFY(replaced);
        QCOMPARE(f.surface().text(), QStringLiteral("dog cats cat"));
        QCOMPARE(find.ReplaceNext(QStringLiteral("cat"), QStringLiteral("bird"), WholeWord, Colour(0xFF0000), &replaced),
                 -1);
        QVERIFY(replaced);
        QCOMPARE(f.surface().text(), QStringLiteral("dog cats bird"));
        QCOMPARE(f.surface().rangeCharFormat(9, 4).color, std::optional<Colour>(0xFF0000));
        // A selection that is not a hit under the options is not replaced.
        f.surface().setSelection(4, 3);
        QCOMPARE(find.ReplaceNext(QStringLiteral("cat"), QStringLiteral("dog"), WholeWord, {}, &replaced), -1);
        QVERIFY(!replaced);
        QCOMPARE(f.surface().text(), QStringLiteral("dog cats bird"));
    }

    void topLineSelStart()
    {
        CoreFixture f;
        QString text;
        for (int i = 0; i < 300; ++i)
            text += QStringLiteral("line %1\n").arg(i, 3, 10, QLatin1Char('0'));
        f.surface().setText(text);
        f.show();
        QCOMPARE(f.core.findReplace().TopLineSelStart(), 0);
        f.surface().scrollLines(40);
        const int top = f.core.findReplace().TopLineSelStart();
        QVERIFY(top > 0);
        QCOMPARE(top % 9, 0); // the start of a line ("line nnn\n" is 9 positions)
        QCOMPARE(top / 9, f.surface().firstVisibleLine());
    }

    void textSearchRules()
    {
        // The whole-word rule: letters and digits continue a word; anything else (the
        // underscore too) ends it.
        const QString text = QStringLiteral("cat_ cat1 (cat) 'cat' cat\ncat");
        const TextSearch whole(QStringLiteral("cat"), WholeWord);
        QCOMPARE(whole.allIn(text), (QList<qsizetype>{0, 11, 17, 22, 26}));
        QVERIFY(!TextSearch::isWholeWordAt(QStringLiteral("xcat"), 1, 3));
        QVERIFY(TextSearch::isWholeWordAt(QStringLiteral("cat"), 0, 3));
        QCOMPARE(whole.indexIn(text, 12, 25), 17);
        QCOMPARE(whole.indexIn(text, 12, 19), -1);
        QCOMPARE(whole.lastIndexIn(text, 25), 22);
        QCOMPARE(TextSearch(QStringLiteral("aa"), AllMatches).allIn(QStringLiteral("aaaa")), (QList<qsizetype>{0, 2}));
    }

    void replaceCommand()
    {
#ifndef KVRTB_CLI
        QFAIL("The command-line tool is not part of this build.");
#else
        using kvrtb::test::runCli;
        const QString cli = QStringLiteral(KVRTB_CLI);
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString input = dir.filePath(QStringLiteral("in.txt"));
        QFile file(input);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("cat Cat cats a.b* a.b*");
        file.close();
        auto read = [](const QString &path) {
            QFile f(path);
            return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QStringLiteral("(unreadable)");
        };
        const QString output = dir.filePath(QStringLiteral("out.txt"));
        kvrtb::test::CliRun r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("cat"),
                                             QStringLiteral("dog"), output, QStringLiteral("--whole-word")});
        QCOMPARE(r.code, 0);
        QCOMPARE(r.out, QStringLiteral("2\n"));
        QCOMPARE(read(output), QStringLiteral("dog dog cats a.b* a.b*"));
        r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("cat"), QStringLiteral("cat cat"), output,
                         QStringLiteral("--match-case")});
        QCOMPARE(r.out, QStringLiteral("2\n"));
        QCOMPARE(read(output), QStringLiteral("cat cat Cat cat cats a.b* a.b*"));
        r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("a.b*"), QString(), output});
        QCOMPARE(r.out, QStringLiteral("2\n"));
        QCOMPARE(read(output), QStringLiteral("cat Cat cats  "));
        r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("bird"), QStringLiteral("fish"), output});
        QCOMPARE(r.out, QStringLiteral("0\n"));

        // Bad use: exit status 2, 3 for a file that cannot be read, 4 for one that cannot be
        // written, each with a reason.
        r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("cat")});
        QCOMPARE(r.code, 2);
        r = runCli(cli, {QStringLiteral("replace"), input, QString(), QStringLiteral("x"), output});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains(QLatin1String("empty")));
        r = runCli(cli, {QStringLiteral("replace"), dir.filePath(QStringLiteral("missing.txt")), QStringLiteral("a"),
                         QStringLiteral("b"), output});
        QCOMPARE(r.code, 3);
        QVERIFY(!r.err.isEmpty());
        r = runCli(cli, {QStringLiteral("replace"), input, QStringLiteral("cat"), QStringLiteral("dog"),
                         dir.filePath(QStringLiteral("no/such/folder/out.txt"))});
        QCOMPARE(r.code, 4);
        QVERIFY(!r.err.isEmpty());
#endif
    }
};

KVRTB_REGISTER_TEST(TestFindReplace)
#include "test_findreplace.moc"
