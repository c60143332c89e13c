// Tests of spelling suggestions: the patterns, the score and its parts, the search over the
// word lists (the index checked against the patterns themselves), the ranked order and the
// command-line tool.

#include "spelling/dictionary.h"
#include "spelling/suggestions.h"
#include "spelling/suggestionsearch_p.h"
#include "clirun.h"
#include "testregistry.h"

#include <QRegularExpression>
#include <QTest>

using kvrtb::Dictionary;
using kvrtb::SPELL_CHECK_TYPE;
using kvrtb::Suggestions;
namespace search = kvrtb::suggestionsearch;

namespace {

const QChar kTypographic(u'\u2019');

SPELL_CHECK_TYPE suggest(const QString &word, qint16 accuracy = 0, bool ranked = false)
{
    SPELL_CHECK_TYPE data;
    data.IncorrectWord = word;
    data.QAccuracy = accuracy;
    // Stale results must not survive a search.
    data.Suggestions = QStringList{QStringLiteral("stale")};
    data.SuggestionsFound = true;
    if (ranked)
        Suggestions::GetRankedSpellingCorrections(data);
    else
        Suggestions::GetPossibleSpellingCorrections(data);
    return data;
}

bool isSubsequence(const QStringList &part, const QStringList &whole)
{
    qsizetype at = 0;
    for (const QString &word : part) {
        while (at < whole.size() && whole[at] != word)
            ++at;
        if (at == whole.size())
            return false;
        ++at;
    }
    return true;
}

QString patternFor(const QString &w)
{
    return w.size() < 4 ? Suggestions::BuildShortWordPattern(w) : Suggestions::BuildSuggestionPattern(w);
}

} // namespace

class TestSuggestions : public QObject {
    Q_OBJECT

private slots:
    void patterns()
    {
        QCOMPARE(Suggestions::BuildSuggestionPattern(QStringLiteral("speling")),
                 QStringLiteral("(\\b(s)[pelin\\S]{4,7}(g)\\b|\\b(s)[peling]{4,7}\\w?\\b|\\b(sp)[a-z\\'\\\u2019]{4,7}\\b)\\s"));
        QCOMPARE(Suggestions::BuildShortWordPattern(QStringLiteral("teh")), QStringLiteral("\\bt(e|\\S)(h|\\S)\\S?\\.?\\s"));
        QCOMPARE(Suggestions::BuildShortWordPattern(QStringLiteral("a")), QStringLiteral("\\ba\\S?\\.?\\s"));
        // The lower bound: n - 2 up to six characters, n - 3 from seven on.
        QVERIFY(Suggestions::BuildSuggestionPattern(QStringLiteral("wrod")).contains(QStringLiteral("{2,4}")));
        QVERIFY(Suggestions::BuildSuggestionPattern(QStringLiteral("abcdef")).contains(QStringLiteral("{4,6}")));
        QVERIFY(Suggestions::BuildSuggestionPattern(QStringLiteral("abcdefg")).contains(QStringLiteral("{4,7}")));
        // Each builder refuses the other's lengths.
        QCOMPARE(Suggestions::BuildSuggestionPattern(QStringLiteral("teh")), QString());
        QCOMPARE(Suggestions::BuildShortWordPattern(QStringLiteral("wrod")), QString());
        QCOMPARE(Suggestions::BuildShortWordPattern(QString()), QString());
    }

    void scoreParts()
    {
        // Sound codes, unpadded; a vowel or H, W, Y between like consonants lets the second count.
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("Robert")), QStringLiteral("R163"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("rupert")), QStringLiteral("R163"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("Pfister")), QStringLiteral("P236"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("Ashcraft")), QStringLiteral("A226"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("Lee")), QStringLiteral("L"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("O'Hara")), QStringLiteral("O6"));
        QCOMPARE(Suggestions::SoundexCode(QStringLiteral("1abc")), QStringLiteral("112"));
        QCOMPARE(Suggestions::SoundexCode(QString()), QString());

        // Common subsequence as a share of the second word, exact case.
        QCOMPARE(Suggestions::CommonSubsequencePercent(QStringLiteral("speling"), QStringLiteral("spelling")), qint16(87));
        QCOMPARE(Suggestions::CommonSubsequencePercent(QStringLiteral("abc"), QStringLiteral("a")), qint16(100));
        QCOMPARE(Suggestions::CommonSubsequencePercent(QStringLiteral("ABC"), QStringLiteral("abc")), qint16(0));
        QCOMPARE(Suggestions::CommonSubsequencePercent(QString(), QStringLiteral("abc")), qint16(0));
        QCOMPARE(Suggestions::CommonSubsequencePercent(QStringLiteral("abc"), QString()), qint16(0));

        // The letter distance: 0 for equal words, one step per drop or swap, growing with each
        // further edit, never past its bound.
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("receive"), QStringLiteral("receive"), 100), 0);
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("recieve"), QStringLiteral("receive"), 100), 1);
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("speling"), QStringLiteral("spelling"), 100), 1);
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("cat"), QStringLiteral("cut"), 100), 2);
        QCOMPARE(Suggestions::LetterDistance(QString(), QStringLiteral("abc"), 100), 3);
        const QString base = QStringLiteral("abcdefghij");
        QString edited = base;
        int previous = 0;
        for (int i = 0; i < 5; ++i) {
            edited.remove(i, 1);
            const int d = Suggestions::LetterDistance(base, edited, 100);
            QVERIFY2(d > previous, qPrintable(edited));
            previous = d;
        }
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("a"), QStringLiteral("abcdef"), 3), 3);
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("abcdef"), QStringLiteral("fedcba"), 2), 2);
        QCOMPARE(Suggestions::LetterDistance(QStringLiteral("abc"), QStringLiteral("xyz"), 0), 0);

        QCOMPARE(Suggestions::ScoreCandidate(QStringLiteral("spelling"), QStringLiteral("spelling")), qint16(110));
        // 87 common, same sound, one letter missing.
        QCOMPARE(Suggestions::ScoreCandidate(QStringLiteral("speling"), QStringLiteral("spelling")), qint16(96));
        // Different sound: 10 off instead of 10 on.
        QVERIFY(Suggestions::ScoreCandidate(QStringLiteral("cat"), QStringLiteral("cut"))
                < Suggestions::ScoreCandidate(QStringLiteral("cat"), QStringLiteral("cot")) + 1);
    }

    void indexAgreesWithPatterns()
    {
        // The index must give exactly the matches of the pattern over the list, for short and
        // long words, capitals, apostrophes of both kinds and words with no candidates.
        const QStringList words = {
            QStringLiteral("a"), QStringLiteral("ab"), QStringLiteral("teh"), QStringLiteral("st"),
            QStringLiteral("wrod"), QStringLiteral("tehy"), QStringLiteral("speling"), QStringLiteral("recieve"),
            QStringLiteral("definately"), QStringLiteral("accomodation"), QStringLiteral("abacis"),
            QStringLiteral("abaci's"), QStringLiteral("abaci\u2019s"), QStringLiteral("dont"), QStringLiteral("o'clock"),
            QStringLiteral("mcdonalds"), QStringLiteral("zzzzzzzzzzzz"), QStringLiteral("xylophon"),
            QStringLiteral("qu"), QStringLiteral("ie"), QStringLiteral("eg"), QStringLiteral("sos"),
            QStringLiteral("ameraca"), QStringLiteral("jan"), QStringLiteral("usa"), QStringLiteral("phd"),
        };
        for (const QString &w : words) {
            QVERIFY(search::indexCanAnswer(w));
            const char letter = Dictionary::letterOf(w);
            const QStringList indexed = search::candidates(letter, w);
            const QStringList matched = search::candidatesByPattern(letter, patternFor(w));
            QVERIFY2(indexed == matched, qPrintable(w + QStringLiteral(": ") + indexed.join(u',')
                                                    + QStringLiteral(" / ") + matched.join(u',')));
        }
        // Every word of a list searched for itself: the index and the pattern still agree.
        const QStringList sample = Dictionary::LoadDictionaryText(QStringLiteral("Q")).split(QStringLiteral("\r\n"));
        int compared = 0;
        for (int i = 0; i < sample.size(); i += 7) {
            const QString w = Suggestions::searchWord(sample[i]);
            if (!search::indexCanAnswer(w))
                continue;
            ++compared;
            QCOMPARE(search::candidates('Q', w), search::candidatesByPattern('Q', patternFor(w)));
        }
        QVERIFY(compared > 30);
        // Words the index cannot answer go to the pattern: digits, hyphens, other letters.
        QVERIFY(!search::indexCanAnswer(QStringLiteral("co-op")));
        QVERIFY(!search::indexCanAnswer(QStringLiteral("caf\u00e9")));
        QCOMPARE(search::candidates('C', QStringLiteral("co-op")),
                 search::candidatesByPattern('C', Suggestions::BuildSuggestionPattern(QStringLiteral("co-op"))));
    }

    void suggestionsInListOrder()
    {
        // Nothing for a word whose initial is not a letter, nor for a listed abbreviation.
        for (const QString &word : {QStringLiteral("1abc"), QStringLiteral("#hash"), QStringLiteral("'twas"),
                                    QStringLiteral("etc."), QStringLiteral("Dr."), QString()}) {
            const SPELL_CHECK_TYPE data = suggest(word);
            QVERIFY2(data.Suggestions.isEmpty() && !data.SuggestionsFound, qPrintable(word));
        }
        // A listed abbreviation without its full stop gives that abbreviation alone, as listed.
        QCOMPARE(suggest(QStringLiteral("etc")).Suggestions, QStringList{QStringLiteral("etc.")});
        QCOMPARE(suggest(QStringLiteral("approx"), 100).Suggestions, QStringList{QStringLiteral("approx.")});
        QCOMPARE(suggest(QStringLiteral("DR")).Suggestions, QStringList{QStringLiteral("Dr.")});
        // "e.g" loses its full stop before the abbreviation check, so it is searched as "eg":
        // the listed "e.g." is among ordinary suggestions rather than alone.
        const QStringList eg = suggest(QStringLiteral("e.g")).Suggestions;
        QVERIFY2(eg.size() > 1 && eg.contains(QStringLiteral("e.g.")), qPrintable(eg.join(u',')));

        // List order: capitalised entries before lower-case ones, alphabetical within each.
        const SPELL_CHECK_TYPE speling = suggest(QStringLiteral("speling"), Suggestions::kDefaultAccuracy);
        QVERIFY(speling.SuggestionsFound);
        QVERIFY(speling.Suggestions.contains(QStringLiteral("spelling")));
        const QStringList all = search::candidates('S', QStringLiteral("speling"));
        QVERIFY(isSubsequence(speling.Suggestions, all));

        // The typographic apostrophe is never suggested, though the list has both forms.
        QVERIFY(all.contains(QStringLiteral("spleen\u2019s")));
        const QStringList loose = suggest(QStringLiteral("speling"), -200).Suggestions;
        QVERIFY(loose.contains(QStringLiteral("spleen's")));
        for (const QString &word : {QStringLiteral("speling"), QStringLiteral("abacis"), QStringLiteral("dont")}) {
            for (const QString &s : suggest(word, -200).Suggestions)
                QVERIFY2(!s.contains(kTypographic), qPrintable(s));
        }

        // Raising the accuracy only ever removes suggestions, keeping the order of the rest.
        for (const QString &word : {QStringLiteral("speling"), QStringLiteral("recieve"), QStringLiteral("teh"),
                                    QStringLiteral("Accomodation")}) {
            QStringList previous = suggest(word, -200).Suggestions;
            for (int accuracy = -50; accuracy <= 120; accuracy += 10) {
                const QStringList current = suggest(word, static_cast<qint16>(accuracy)).Suggestions;
                QVERIFY2(isSubsequence(current, previous), qPrintable(word + QString::number(accuracy)));
                previous = current;
            }
            QVERIFY(previous.isEmpty());   // nothing scores above 110
        }
    }

    void rankedOrder()
    {
        // The likeliest correction first for the common kinds of slip.
        const QList<QPair<QString, QString>> cases = {
            {QStringLiteral("teh"), QStringLiteral("the")},          {QStringLiteral("recieve"), QStringLiteral("receive")},
            {QStringLiteral("definately"), QStringLiteral("definitely")}, {QStringLiteral("speling"), QStringLiteral("spelling")},
            {QStringLiteral("adress"), QStringLiteral("address")},   {QStringLiteral("begining"), QStringLiteral("beginning")},
            {QStringLiteral("wrod"), QStringLiteral("word")},         {QStringLiteral("occured"), QStringLiteral("occurred")},
        };
        for (const auto &c : cases) {
            const SPELL_CHECK_TYPE ranked = suggest(c.first, Suggestions::kDefaultAccuracy, true);
            QVERIFY2(!ranked.Suggestions.isEmpty() && ranked.Suggestions.first() == c.second,
                     qPrintable(c.first + QStringLiteral(": ") + ranked.Suggestions.mid(0, 5).join(u',')));
            // The same candidates as the list order, without duplicates.
            QStringList listed = suggest(c.first, Suggestions::kDefaultAccuracy).Suggestions;
            listed.removeDuplicates();
            QStringList sorted = ranked.Suggestions;
            listed.sort();
            sorted.sort();
            QCOMPARE(sorted, listed);
        }
        QCOMPARE(suggest(QStringLiteral("etc"), 0, true).Suggestions, QStringList{QStringLiteral("etc.")});
    }

    void badInput()
    {
        const QStringList words = {
            QString(10000, u'a'),
            QStringLiteral("b") + QString(9999, u'7'),            // not for the index: the pattern
            QStringLiteral("'''"), QStringLiteral("\u2019\u2019"),
            QStringLiteral("\u043f\u0440\u0438\u0432\u0435\u0442"), QStringLiteral("\u65e5\u672c\u8a9e"),
            QStringLiteral("spel(ing"), QStringLiteral("spelin["), QStringLiteral("a[b"), QStringLiteral("x\\"), QStringLiteral("."),
            QStringLiteral("s p e l l"), QStringLiteral("\u017Fpeling"),
        };
        for (const QString &word : words) {
            for (bool ranked : {false, true}) {
                const SPELL_CHECK_TYPE data = suggest(word, 0, ranked);
                QCOMPARE(data.SuggestionsFound, !data.Suggestions.isEmpty());
            }
        }
        QVERIFY(suggest(QString(10000, u'a')).Suggestions.isEmpty());
        QVERIFY(suggest(QStringLiteral("\u043f\u0440\u0438\u0432\u0435\u0442")).Suggestions.isEmpty());
        // A word whose pattern does not compile finds nothing.
        QVERIFY(!QRegularExpression(Suggestions::BuildSuggestionPattern(QStringLiteral("spelin["))).isValid());
        QVERIFY(suggest(QStringLiteral("spelin[")).Suggestions.isEmpty());
        QCOMPARE(Suggestions::LetterDistance(QString(3000, u'a'), QString(3000, u'b'), 10000), 6000);
    }

#ifdef KVRTB_CLI
    void commandLine()
    {
        using kvrtb::test::CliRun;
        auto run = [](const QStringList &args, const QByteArray &input = QByteArray()) {
            return kvrtb::test::runCli(QStringLiteral(KVRTB_CLI), QStringList{QStringLiteral("suggest")} + args, input);
        };
        // One line per word, the likeliest first with --ranked.
        CliRun r = run({QStringLiteral("--ranked"), QStringLiteral("recieve"), QStringLiteral("etc"), QStringLiteral("1x")});
        QCOMPARE(r.code, 0);
        const QStringList lines = r.out.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 3);
        QVERIFY2(lines[0].startsWith(QStringLiteral("recieve: receive,")), qPrintable(lines[0]));
        QCOMPARE(lines[1], QStringLiteral("etc: etc."));
        QCOMPARE(lines[2], QStringLiteral("1x:"));
        // Words from standard input; a higher accuracy gives a part of the list, in order.
        r = run({QStringLiteral("--accuracy"), QStringLiteral("0")}, "speling\n  teh\n");
        QCOMPARE(r.code, 0);
        const QStringList loose = r.out.split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(loose.size(), 2);
        r = run({QStringLiteral("--accuracy"), QStringLiteral("90"), QStringLiteral("speling")});
        QCOMPARE(r.code, 0);
        const QStringList strict = r.out.trimmed().mid(9).split(QStringLiteral(", "));
        QVERIFY(isSubsequence(strict, loose[0].mid(9).split(QStringLiteral(", "))));
        QVERIFY(strict.size() < loose[0].count(u',') + 1);
        // Nothing found anywhere, and bad options.
        r = run({QStringLiteral("qqqqqqqq")});
        QCOMPARE(r.code, 1);
        QCOMPARE(r.out, QStringLiteral("qqqqqqqq:\n"));
        r = run({QStringLiteral("--accuracy"), QStringLiteral("lots"), QStringLiteral("x")});
        QCOMPARE(r.code, 2);
        QVERIFY(r.err.contains(QStringLiteral("--accuracy needs a whole number")));
        r = run({QStringLiteral("--fast"), QStringLiteral("x")});
        QCOMPARE(r.code, 2);
    }
#endif
};

KVRTB_REGISTER_TEST(TestSuggestions)
#include "test_suggestions.moc"
