// Tests of the built-in dictionary: its resources, the lookups, synonyms, completions and
// random words. The indexed lookups are checked against reference functions that follow the
// plain algorithms (a resource read and a substring or pattern search per question).

#include "spelling/dictionary.h"
#include "spelling/thesaurus.h"
#include "spelling/windows1252.h"
#include "spelling/wordlists.h"
#include "clirun.h"
#include "testregistry.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using kvrtb::Dictionary;
using kvrtb::Thesaurus;
using kvrtb::Windows1252;
using kvrtb::WordLists;

namespace {

const QChar kTypographic(u'\u2019');

QByteArray rawResource(const QString &alias)
{
    QFile file(QStringLiteral(":/usdictionary/") + alias);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList lettersAtoZ()
{
    QStringList letters;
    for (char c = 'A'; c <= 'Z'; ++c)
        letters << QString(QChar(c));
    return letters;
}

QStringList linesOf(const QString &text)
{
    QStringList lines = text.split(QStringLiteral("\r\n"));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

// --- Reference versions: the algorithms as written, with no index. ---

// The spelling test of one word. The letter text is what LoadLetterDictionary gives for the
// word; the capital text is list 101.
bool referenceIsWordInDictionary(const QString &word, const QString &letterText, const QString &capitalText)
{
    if (letterText.contains(QStringLiteral("$") + word.toLower() + QStringLiteral("<"), Qt::CaseSensitive))
        return true;
    return capitalText.contains(QStringLiteral("$") + word + QStringLiteral("<"), Qt::CaseSensitive);
}

bool referenceLookUpSynonyms(const QString &word, QStringList &synonyms)
{
    if (word.isEmpty())
        return false;
    const QString name = word.left(1).toUpper() + QStringLiteral("SYN");
    const ushort first = name[0].unicode();
    if (!((first >= 'A' && first <= 'Z') || (first >= 'a' && first <= 'z')))
        return false;
    const QString text = Dictionary::LoadDictionaryText(name);
    const qsizetype hit = text.indexOf(QStringLiteral("$") + word + QStringLiteral("<"), 0, Qt::CaseInsensitive);
    if (hit < 0)
        return false;
    const qsizetype close = text.indexOf(QLatin1Char('>'), hit);
    const qsizetype from = hit + word.size() + 2;
    if (close < from)
        return false;
    QString inner = text.mid(from, close - from);
    while (inner.startsWith(QLatin1Char(' ')))
        inner.remove(0, 1);
    while (inner.endsWith(QLatin1Char(' ')))
        inner.chop(1);
    inner.replace(QStringLiteral("\r\n"), QString());
    synonyms = inner.isEmpty() ? QStringList() : inner.split(QLatin1Char(' '));
    return true;
}

bool referenceGetWordsThatStartWith(QString &prefix, QStringList &result, int limit)
{
    if (prefix.isEmpty())
        return false;
    QString escaped;
    for (qsizetype i = 0; i < prefix.size(); ++i) {
        const ushort upper = prefix[i].toUpper().unicode();
        if (upper >= 'A' && upper <= 'Z') {
            escaped += prefix[i];
        } else {
            if (i == 0)
                return false;
            escaped += QLatin1Char('\\') + prefix[i];
        }
    }
    prefix = escaped;
    const QRegularExpression pattern(QStringLiteral("(\\b") + escaped + QStringLiteral(".*)"),
                                     QRegularExpression::CaseInsensitiveOption);
    const QString text = Dictionary::LoadDictionaryText(escaped.left(1).toUpper());
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    if (!it.hasNext())
        return false;
    QStringList stored;
    while (it.hasNext()) {
        const QString match = it.next().captured(0);
        if (match.contains(kTypographic))
            continue;
        stored << match.left(match.size() - 1);
        if (limit != 0 && stored.size() == limit)
            break;
    }
    if (!stored.isEmpty())
        result = stored;
    return true;
}

// Words that are not entries but look like them: case variants, the other apostrophe, digits,
// symbols, frame characters, cut-off words.
QStringList nonWordsFrom(const QString &entry)
{
    QString swapped = entry;
    swapped.replace(QLatin1Char('\''), QChar(0x1)).replace(kTypographic, QLatin1Char('\'')).replace(QChar(0x1), kTypographic);
    return {entry.toUpper(),
            entry.left(1).toUpper() + entry.mid(1),
            entry.left(1) + entry.mid(1).toUpper(),
            swapped,
            entry + QLatin1Char('1'),
            QLatin1Char('7') + entry,
            QLatin1Char('#') + entry,
            entry.chopped(1),
            entry + QLatin1Char('<'),
            QLatin1Char('$') + entry,
            entry + QStringLiteral("\u00e9")};
}

} // namespace

class TestSpelling : public QObject
{
    Q_OBJECT

private slots:
    void firstUseFromManyThreads();
    void windows1252();
    void resourceNamesAndEncoding();
    void resourceLineOrderAndApostrophes();
    void abbreviationsAndFiller();
    void isWordInDictionary_data();
    void isWordInDictionary();
    void membershipMatchesLiteralSearch();
    void synonyms_data();
    void synonyms();
    void synonymsMatchLiteralSearch();
    void isInArray_data();
    void isInArray();
    void completions_data();
    void completions();
    void completionsMatchPatternSearch();
    void randomWords();
    void selectionRules();
    void commandLineWordLists();
};

void TestSpelling::firstUseFromManyThreads()
{
    // Several threads race to build the same indexes; all must see the finished ones.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&wrong] {
            QStringList synonyms;
            QString prefix = QStringLiteral("aard");
            QStringList words;
            if (!Dictionary::IsWordInDictionary(u"Aardvark") || Dictionary::IsWordInDictionary(u"zulu")
                || !Dictionary::LookUpSynonyms(u"aback", synonyms) || synonyms.size() != 2
                || !WordLists::GetWordsThatStartWith(prefix, words) || words.value(0) != QStringLiteral("aardvark"))
                ++wrong;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
    QVERIFY(Dictionary::Prepare());
}

void TestSpelling::windows1252()
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(static_cast<char>(b));
    const QString text = Windows1252::decode(all);
    QCOMPARE(text.size(), 256);
    QCOMPARE(text[0x92], kTypographic);
    QCOMPARE(text[0x80], QChar(0x20AC));
    QCOMPARE(text[0x81], QChar(0x81));
    QCOMPARE(text[0xD8], QChar(0xD8));
    bool ok = false;
    QCOMPARE(Windows1252::encode(text, &ok), all);
    QVERIFY(ok);
    QCOMPARE(Windows1252::encode(u"a\u0100b", &ok), QByteArray("a?b"));
    QVERIFY(!ok);
}

void TestSpelling::resourceNamesAndEncoding()
{
    // Names are found without regard to case; list 101 is chosen by the flag alone.
    QCOMPARE(Dictionary::LoadDictionaryText(QStringLiteral("a")), Dictionary::LoadDictionaryText(QStringLiteral("A")));
    QCOMPARE(Dictionary::LoadDictionaryText(QStringLiteral("q$")), Dictionary::LoadDictionaryText(QStringLiteral("Q$")));
    QCOMPARE(Dictionary::LoadDictionaryText(QStringLiteral("aSyN")), Dictionary::LoadDictionaryText(QStringLiteral("ASYN")));
    QCOMPARE(Dictionary::LoadDictionaryText(QStringLiteral("dots2")), Dictionary::LoadDictionaryText(QStringLiteral("DOTS2")));
    QCOMPARE(Dictionary::LoadDictionaryText(QStringLiteral("Z"), true), Dictionary::LoadDictionaryText(QStringLiteral("101")));
    QVERIFY(Dictionary::LoadDictionaryText(QStringLiteral("A")).startsWith(QStringLiteral("A\r\n")));
    QVERIFY(Dictionary::LoadDictionaryText(QStringLiteral("nosuchlist")).isEmpty());
    QVERIFY(Dictionary::LoadDictionaryText(QStringLiteral("../A")).isEmpty());
    QVERIFY(Dictionary::LoadDictionaryText(QString()).isEmpty());

    QCOMPARE(Dictionary::LoadLetterDictionary(QStringLiteral("zebra")), Dictionary::LoadDictionaryText(QStringLiteral("Z$")));
    QCOMPARE(Dictionary::LoadLetterDictionary(QStringLiteral("Zebra")), Dictionary::LoadDictionaryText(QStringLiteral("Z$")));
    QVERIFY(Dictionary::LoadLetterDictionary(QStringLiteral("9lives")).isEmpty());
    QVERIFY(Dictionary::LoadLetterDictionary(QStringLiteral("\u00c5ngstr\u00f6m")).isEmpty());
    QVERIFY(Dictionary::LoadLetterDictionary(QString()).isEmpty());

    // The possessive's second apostrophe is byte 0x92 on disk and U+2019 once read.
    QVERIFY(rawResource(QStringLiteral("A")).contains(QByteArray("\r\nabaci\x92s\r\n")));
    QVERIFY(rawResource(QStringLiteral("A$")).contains(QByteArray("\r\n$abaci's<\r\n")));
    QVERIFY(Dictionary::LoadDictionaryText(QStringLiteral("A$")).contains(QStringLiteral("\r\n$abaci\u2019s<\r\n")));

    // Counts near those the control has always shipped with.
    int plain = 0, lookup = 0, synonymLines = 0;
    for (const QString &letter : lettersAtoZ()) {
        const QStringList plainLines = linesOf(Dictionary::LoadDictionaryText(letter));
        const QStringList lookupLines = linesOf(Dictionary::LoadDictionaryText(letter + QLatin1Char('$')));
        plain += plainLines.size();
        lookup += lookupLines.size();
        synonymLines += linesOf(Dictionary::LoadDictionaryText(letter + QStringLiteral("SYN"))).size();
        // The lookup list is exactly the lower-case words of the plain list, framed.
        QSet<QString> expected;
        for (const QString &word : plainLines) {
            if (word == word.toLower())
                expected << QLatin1Char('$') + word + QLatin1Char('<');
        }
        QCOMPARE(QSet<QString>(lookupLines.begin(), lookupLines.end()), expected);
        QCOMPARE(lookupLines.size(), expected.size());
    }
    const QStringList capitals = linesOf(Dictionary::LoadDictionaryText(QString(), true));
    QVERIFY2(plain > 75000 && plain < 88000, qPrintable(QString::number(plain)));
    QVERIFY2(lookup > 73000 && lookup < 86000, qPrintable(QString::number(lookup)));
    QVERIFY2(synonymLines > 42000 && synonymLines < 56000, qPrintable(QString::number(synonymLines)));
    QVERIFY2(capitals.size() > 2000 && capitals.size() < 2500, qPrintable(QString::number(capitals.size())));
    QVERIFY(capitals.contains(QStringLiteral("$Zulu<")));
    QVERIFY(capitals.contains(QStringLiteral("$A.D.<")));
    QVERIFY(linesOf(Dictionary::LoadDictionaryText(QStringLiteral("ASYN"))).contains(QStringLiteral("$aback< confused surprised >")));
}

void TestSpelling::resourceLineOrderAndApostrophes()
{
    QStringList names{QStringLiteral("101"), QStringLiteral("DOTS2")};
    for (const QString &letter : lettersAtoZ())
        names << letter << letter + QLatin1Char('$') << letter + QStringLiteral("SYN");
    int synonymsSeen = 0;
    for (const QString &name : names) {
        const QByteArray bytes = rawResource(name);
        QVERIFY2(bytes.endsWith("\r\n"), qPrintable(name));
        QList<QByteArray> lines = bytes.split('\n');
        lines.removeLast();
        QSet<QByteArray> all;
        for (qsizetype i = 0; i < lines.size(); ++i) {
            QVERIFY2(lines[i].endsWith('\r') && lines[i].count('\r') == 1, qPrintable(name));
            lines[i].chop(1);
            if (i > 0)
                QVERIFY2(lines[i - 1] < lines[i], qPrintable(name + QLatin1Char(' ') + QString::fromLatin1(lines[i])));
            all.insert(lines[i]);
        }
        if (name.endsWith(QStringLiteral("SYN"))) {
            for (const QByteArray &line : lines) {
                const QList<QByteArray> parts = line.split(' ');
                QVERIFY2(parts.size() >= 3 && parts.size() <= 8 && parts.last() == ">", line.constData());
                synonymsSeen += parts.size() - 2;
            }
            continue;
        }
        // Every entry with an apostrophe is there with the other apostrophe too.
        for (const QByteArray &line : lines) {
            if (line.contains('\''))
                QVERIFY2(all.contains(QByteArray(line).replace('\'', '\x92')), line.constData());
            if (line.contains('\x92'))
                QVERIFY2(all.contains(QByteArray(line).replace('\x92', '\'')), line.constData());
        }
        // Plain lists: capitalised entries first, then the lower-case ones.
        if (name.size() == 1) {
            bool lowerSeen = false;
            for (const QByteArray &line : lines) {
                const bool lower = line.toLower() == line;
                QVERIFY2(lower || !lowerSeen, line.constData());
                lowerSeen = lowerSeen || lower;
                QCOMPARE(QChar::fromLatin1(line[0]).toUpper(), name[0]);
            }
        }
    }
    QVERIFY(synonymsSeen > 100000);
}

void TestSpelling::abbreviationsAndFiller()
{
    const QString dots = Dictionary::LoadDictionaryText(QStringLiteral("DOTS"));
    QVERIFY(dots.startsWith(QStringLiteral("(A\\.D\\.|Abbr\\.|Acad\\.|")));
    QVERIFY(dots.endsWith(QStringLiteral("|Yr\\.|yd\\.)")));
    const QStringList alternatives = dots.mid(1, dots.size() - 2).split(QLatin1Char('|'));
    QCOMPARE(alternatives.size(), 157);
    QStringList fromDots2;
    for (const QString &line : linesOf(Dictionary::LoadDictionaryText(QStringLiteral("DOTS2"))))
        fromDots2 << line.mid(1, line.size() - 2);
    QStringList unescaped;
    for (const QString &a : alternatives)
        unescaped << QString(a).replace(QStringLiteral("\\."), QStringLiteral("."));
    QCOMPARE(QSet<QString>(unescaped.begin(), unescaped.end()), QSet<QString>(fromDots2.begin(), fromDots2.end()));
    // One line without a line end. Its alternatives go by initial and, within an initial, in
    // ascending byte order (capitalised ones first), as the letter lists do; that is what puts
    // "Yr." right before "yd." at the end. Plain byte order over all of them would not.
    QVERIFY(!dots.contains(QLatin1Char('\r')) && !dots.contains(QLatin1Char('\n')));
    for (qsizetype i = 1; i < unescaped.size(); ++i) {
        const QByteArray before = Windows1252::encode(unescaped[i - 1]);
        const QByteArray after = Windows1252::encode(unescaped[i]);
        const char initialBefore = char(QChar::toLower(uint(uchar(before[0]))));
        const char initialAfter = char(QChar::toLower(uint(uchar(after[0]))));
        QVERIFY2(initialBefore < initialAfter || (initialBefore == initialAfter && before < after),
                 qPrintable(unescaped[i - 1] + QLatin1Char(' ') + unescaped[i]));
    }
    QVERIFY(fromDots2.contains(QStringLiteral("e.g.")));
    QVERIFY(fromDots2.contains(QStringLiteral("Dr.")));
    QVERIFY(fromDots2.contains(QStringLiteral("Abbr.")));

    // The pattern compiles and finds abbreviations with their listed case.
    const QRegularExpression pattern(dots);
    QVERIFY(pattern.isValid());
    QCOMPARE(pattern.match(QStringLiteral("see Dr. No")).captured(0), QStringLiteral("Dr."));
    QVERIFY(!pattern.match(QStringLiteral("see DR. No")).hasMatch());

    QCOMPARE(Dictionary::FillerText(4), QStringLiteral("\u00d8\u00d8\u00d8\u00d8"));
    QCOMPARE(Dictionary::FillerText(100000).size(), Dictionary::kFillerLength);
    QCOMPARE(Dictionary::FillerText(100000), QString(Dictionary::kFillerLength, QChar(0xD8)));
    QVERIFY(Dictionary::FillerText(-3).isEmpty());
    QCOMPARE(rawResource(QStringLiteral("ZERO")), QByteArray(8370, '\xd8'));
}

void TestSpelling::isWordInDictionary_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("known");
    QTest::newRow("lower") << "aardvark" << true;
    QTest::newRow("capitalised ordinary word") << "Aardvark" << true;
    QTest::newRow("upper ordinary word") << "AARDVARK" << true;
    QTest::newRow("mixed ordinary word") << "aArDvArK" << true;
    QTest::newRow("proper name lower") << "zulu" << false;
    QTest::newRow("proper name listed") << "Zulu" << true;
    QTest::newRow("proper name upper") << "ZULU" << false;
    QTest::newRow("possessive straight") << "abaci's" << true;
    QTest::newRow("possessive typographic") << QStringLiteral("abaci\u2019s") << true;
    QTest::newRow("possessive typographic upper") << QStringLiteral("ABACI\u2019S") << true;
    QTest::newRow("possessive grave accent") << "abaci`s" << false;
    QTest::newRow("abbreviation listed case") << "A.D." << true;
    QTest::newRow("abbreviation lower") << "a.d." << false;
    QTest::newRow("lower abbreviation any case") << "E.G." << true;
    QTest::newRow("digit initial") << "1st" << false;
    QTest::newRow("symbol initial") << "#aardvark" << false;
    QTest::newRow("non-letter initial in list 101") << QStringLiteral("\u00c5ngstr\u00f6m") << true;
    QTest::newRow("non-letter initial lower") << QStringLiteral("\u00e5ngstr\u00f6m") << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("frame characters") << "$aardvark<" << false;
    QTest::newRow("not a word") << "aardvarkk" << false;
    QTest::newRow("long ASCII word") << QString(200, QLatin1Char('a')) << false;
}

void TestSpelling::isWordInDictionary()
{
    QFETCH(QString, word);
    QFETCH(bool, known);
    QCOMPARE(Dictionary::IsWordInDictionary(word), known);
    // The literal search, with each list read anew, agrees.
    QCOMPARE(referenceIsWordInDictionary(word, Dictionary::LoadLetterDictionary(word),
                                         Dictionary::LoadDictionaryText(QString(), true)), known);
}

void TestSpelling::membershipMatchesLiteralSearch()
{
    // Every entry of every list, and non-words made from a share of them. The reference search
    // gets the texts read once per letter (reading them per word would take minutes); the
    // data table above covers the read-per-word form.
    const QString capitalText = Dictionary::LoadDictionaryText(QString(), true);
    QHash<QString, QString> letterTexts;
    auto letterText = [&](const QString &word) -> const QString & {
        const QString key = word.left(1).toUpper();
        auto it = letterTexts.find(key);
        if (it == letterTexts.end())
            it = letterTexts.insert(key, Dictionary::LoadLetterDictionary(word));
        return *it;
    };
    QStringList words{QString(), QStringLiteral("$"), QStringLiteral("<"), QStringLiteral("\r\n"),
                      QStringLiteral("aardvark<\r\n$aardvark's"), QStringLiteral("A.D.<\r\n$A.F.N."),
                      QStringLiteral("\u0130stanbul"), QStringLiteral("\u00df"), QStringLiteral("\U0001F600x")};
    int index = 0;
    for (const QString &letter : lettersAtoZ()) {
        for (const QString &entry : linesOf(Dictionary::LoadDictionaryText(letter))) {
            words << entry << entry.toUpper();
            if (++index % 5 == 0)
                words << nonWordsFrom(entry);
        }
    }
    for (const QString &line : linesOf(capitalText))
        words << line.mid(1, line.size() - 2);
    // Words that span two neighbouring lines: the plain search finds "$" + word + "<" there.
    QStringList spanning;
    const QStringList spanned = lettersAtoZ() << QString();
    for (const QString &name : spanned) {
        const QStringList lines = name.isEmpty() ? linesOf(capitalText)
                                                 : linesOf(Dictionary::LoadDictionaryText(name + QLatin1Char('$')));
        for (qsizetype i = 1; i < lines.size(); i += 301)
            spanning << lines[i - 1].mid(1) + QStringLiteral("\r\n") + lines[i].chopped(1);
    }
    for (const QString &word : spanning)
        QVERIFY2(Dictionary::IsWordInDictionary(word), qPrintable(word));
    words << spanning;
    int disagreements = 0;
    for (const QString &word : words) {
        const bool fast = Dictionary::IsWordInDictionary(word);
        if (fast != referenceIsWordInDictionary(word, letterText(word), capitalText)) {
            if (++disagreements < 10)
                qWarning() << "disagree on" << word << fast;
        }
    }
    QCOMPARE(disagreements, 0);
    QVERIFY(words.size() > 250000);
}

void TestSpelling::synonyms_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QStringList>("expected");
    const QStringList aback{QStringLiteral("confused"), QStringLiteral("surprised")};
    QTest::newRow("lower") << "aback" << true << aback;
    QTest::newRow("upper") << "ABACK" << true << aback;
    QTest::newRow("mixed") << "aBack" << true << aback;
    QTest::newRow("not listed") << "aardvarkk" << false << QStringList();
    QTest::newRow("empty") << "" << false << QStringList();
    QTest::newRow("digit initial") << "4ever" << false << QStringList();
    QTest::newRow("possessive") << "aback's" << false << QStringList();
    QTest::newRow("frame characters") << "aback< confused" << false << QStringList();
}

void TestSpelling::synonyms()
{
    QFETCH(QString, word);
    QFETCH(bool, found);
    QFETCH(QStringList, expected);
    const QStringList untouched{QStringLiteral("untouched")};
    QStringList synonyms = untouched;
    QCOMPARE(Dictionary::LookUpSynonyms(word, synonyms), found);
    QCOMPARE(synonyms, found ? expected : untouched);

    QStringList array = untouched;
    const QString message = Thesaurus::GetSynonyms(word, array);
    QCOMPARE(message, found ? QString() : QStringLiteral("No synonyms found."));
    QCOMPARE(array, found ? expected : untouched);
}

void TestSpelling::synonymsMatchLiteralSearch()
{
    QStringList words{QStringLiteral("$"), QStringLiteral("a<"), QStringLiteral("ab\u00e9"), QStringLiteral("\u017ftop")};
    int index = 0;
    for (const QString &letter : lettersAtoZ()) {
        for (const QString &line : linesOf(Dictionary::LoadDictionaryText(letter + QStringLiteral("SYN")))) {
            const QString head = line.mid(1, line.indexOf(QLatin1Char('<')) - 1);
            words << head << head.toUpper();
            if (++index % 40 == 0)
                words << nonWordsFrom(head);
        }
    }
    // The reference reads the list anew for every word, as the algorithm does; a share of the
    // words is enough to keep the run short.
    int disagreements = 0;
    for (qsizetype i = 0; i < words.size(); i += (i < 200 ? 1 : 23)) {
        QStringList fast{QStringLiteral("x")}, literal{QStringLiteral("x")};
        const bool a = Dictionary::LookUpSynonyms(words[i], fast);
        const bool b = referenceLookUpSynonyms(words[i], literal);
        if (a != b || fast != literal) {
            if (++disagreements < 10)
                qWarning() << "disagree on" << words[i] << fast << literal;
        }
    }
    QCOMPARE(disagreements, 0);
}

void TestSpelling::isInArray_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");
    QTest::newRow("exact") << "cat" << QVariant(QStringList{QStringLiteral("dog"), QStringLiteral("cat")}) << true;
    QTest::newRow("case differs") << "cat" << QVariant(QStringList{QStringLiteral("Cat")}) << false;
    QTest::newRow("part of an element") << "ca" << QVariant(QStringList{QStringLiteral("cat")}) << false;
    QTest::newRow("two elements joined") << "a\u0000b" << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")}) << true;
    QTest::newRow("empty word present") << "" << QVariant(QStringList{QStringLiteral("a"), QString()}) << true;
    QTest::newRow("empty word absent") << "" << QVariant(QStringList{QStringLiteral("a")}) << false;
    QTest::newRow("variant list") << "cat" << QVariant(QVariantList{QStringLiteral("cat")}) << true;
    QTest::newRow("not an array") << "cat" << QVariant(QStringLiteral("cat")) << false;
    QTest::newRow("no value") << "cat" << QVariant() << false;
}

void TestSpelling::isInArray()
{
    QFETCH(QString, word);
    QFETCH(QVariant, value);
    QFETCH(bool, expected);
    QCOMPARE(Dictionary::IsInArray(word, value), expected);
}

void TestSpelling::completions_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("limit");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("rewritten");
    QTest::addColumn<QStringList>("firstWords");
    QTest::newRow("plain") << "aardv" << 0 << true << "aardv" << QStringList{QStringLiteral("aardvark"), QStringLiteral("aardvark's"), QStringLiteral("aardvarks")};
    QTest::newRow("upper prefix") << "AARDV" << 0 << true << "AARDV" << QStringList{QStringLiteral("aardvark"), QStringLiteral("aardvark's"), QStringLiteral("aardvarks")};
    QTest::newRow("capitalised first") << "zul" << 0 << true << "zul" << QStringList{QStringLiteral("Zulu")};
    QTest::newRow("limit 3") << "ab" << 3 << true << "ab" << QStringList();
    QTest::newRow("full stop escaped") << "e.g" << 0 << true << "e\\.g" << QStringList{QStringLiteral("e.g.")};
    QTest::newRow("apostrophe escaped") << "abaci'" << 0 << true << "abaci\\'" << QStringList{QStringLiteral("abaci's")};
    QTest::newRow("digit initial") << "1ab" << 0 << false << "1ab" << QStringList();
    QTest::newRow("symbol initial") << ".ab" << 0 << false << ".ab" << QStringList();
    QTest::newRow("empty") << "" << 0 << false << "" << QStringList();
    QTest::newRow("nothing matches") << "qzx" << 0 << false << "qzx" << QStringList();
    QTest::newRow("typographic only") << QStringLiteral("abaci\u2019") << 0 << true << QStringLiteral("abaci\\\u2019") << QStringList();
}

void TestSpelling::completions()
{
    QFETCH(QString, prefix);
    QFETCH(int, limit);
    QFETCH(bool, found);
    QFETCH(QString, rewritten);
    QFETCH(QStringList, firstWords);
    const QStringList untouched{QStringLiteral("untouched")};
    QStringList words = untouched;
    QCOMPARE(WordLists::GetWordsThatStartWith(prefix, words, limit), found);
    QCOMPARE(prefix, rewritten);
    if (!found || (firstWords.isEmpty() && limit == 0)) {
        QCOMPARE(words, untouched);
        return;
    }
    if (limit)
        QCOMPARE(words.size(), limit);
    QCOMPARE(words.mid(0, firstWords.size()), firstWords.mid(0, words.size()));
    for (const QString &word : words)
        QVERIFY2(!word.contains(kTypographic) && !word.endsWith(QLatin1Char('\r')), qPrintable(word));
}

void TestSpelling::completionsMatchPatternSearch()
{
    QStringList prefixes{QStringLiteral("a1"), QStringLiteral("a\\"), QStringLiteral("a b"), QStringLiteral("x-"),
                         QStringLiteral("\u0131t"), QStringLiteral("\u017ft"), QStringLiteral("caf\u00e9"),
                         QStringLiteral("o'"), QStringLiteral("a.d"), QStringLiteral("A.D."), QStringLiteral("u.s"),
                         QStringLiteral("d("), QStringLiteral("s*"), QStringLiteral("ph.d"), QStringLiteral("t\r")};
    for (char a = 'a'; a <= 'z'; ++a) {
        prefixes << QString(QChar(a)) << QString(QChar(a)).toUpper();
        for (char b = 'a'; b <= 'z'; b += 3)
            prefixes << QString(QChar(a)) + QChar(b);
    }
    int index = 0;
    for (const QString &letter : lettersAtoZ()) {
        for (const QString &entry : linesOf(Dictionary::LoadDictionaryText(letter))) {
            if (++index % 97 == 0)
                prefixes << entry.left(2 + index % 4) << entry.left(3).toUpper() << entry.left(entry.size() - 1);
        }
    }
    int sawStraightApostrophe = 0;
    int disagreements = 0;
    for (const QString &prefix : prefixes) {
        for (int limit : {0, 3}) {
            QString fastPrefix = prefix, literalPrefix = prefix;
            QStringList fast{QStringLiteral("x")}, literal{QStringLiteral("x")};
            const bool a = WordLists::GetWordsThatStartWith(fastPrefix, fast, limit);
            const bool b = referenceGetWordsThatStartWith(literalPrefix, literal, limit);
            if (a != b || fast != literal || fastPrefix != literalPrefix) {
                if (++disagreements < 10)
                    qWarning() << "disagree on" << prefix << limit << fast.mid(0, 5) << literal.mid(0, 5);
            }
            for (const QString &word : fast) {
                QVERIFY(!word.contains(kTypographic));
                sawStraightApostrophe += word.contains(QLatin1Char('\''));
            }
        }
    }
    QCOMPARE(disagreements, 0);
    QVERIFY(sawStraightApostrophe > 0);
}

void TestSpelling::randomWords()
{
    // The clock-seeded generator: letters a to y only, no apostrophes or full stops, proper case.
    QSet<QChar> initials;
    for (int i = 0; i < 3000; ++i) {
        const QString word = WordLists::GetRandomWord();
        QVERIFY2(word.size() >= 4 && word.endsWith(QLatin1Char('\r')), qPrintable(word));
        const QString bare = word.chopped(1);
        QVERIFY2(bare[0].isUpper() && bare[0] != QLatin1Char('Z'), qPrintable(word));
        QVERIFY2(!bare.contains(QLatin1Char('\'')) && !bare.contains(kTypographic) && !bare.contains(QLatin1Char('.')), qPrintable(word));
        QCOMPARE(bare.mid(1), bare.mid(1).toLower());
        QVERIFY2(Dictionary::IsWordInDictionary(bare)
                     || Dictionary::LoadDictionaryText(bare.left(1)).contains(QStringLiteral("\n") + bare + QStringLiteral("\r"), Qt::CaseInsensitive),
                 qPrintable(word));
        initials.insert(bare[0]);
    }
    QVERIFY(initials.size() > 20);

    // The numbers pick the letter (97 + r * 25) and then the line (r * number of pieces).
    const QStringList pieces = Dictionary::LoadDictionaryText(QStringLiteral("A")).split(QLatin1Char('\n'));
    const qsizetype at = pieces.indexOf(QStringLiteral("aardvark\r"));
    QVERIFY(at > 0);
    std::vector<double> numbers{0.0, (at + 0.5) / pieces.size()};
    size_t next = 0;
    QCOMPARE(WordLists::GetRandomWord([&] { return numbers[next++ % numbers.size()]; }), QStringLiteral("Aardvark\r"));

    // The highest number still picks "y"; a rejected line (too short) leads to another pick.
    const QStringList yPieces = Dictionary::LoadDictionaryText(QStringLiteral("Y")).split(QLatin1Char('\n'));
    const qsizetype yAt = yPieces.indexOf(QStringLiteral("yacht\r"));
    QVERIFY(yAt > 0);
    numbers = {0.0, 0.0, 0.99999, (yAt + 0.5) / yPieces.size()};
    next = 0;
    QCOMPARE(WordLists::GetRandomWord([&] { return numbers[next++ % numbers.size()]; }), QStringLiteral("Yacht\r"));
    QCOMPARE(next, size_t(4));

    QCOMPARE(WordLists::properCase(QStringLiteral("x-RAY mOOn\r")), QStringLiteral("X-ray Moon\r"));
}

void TestSpelling::selectionRules()
{
    QVERIFY(!Thesaurus::CanGetSynonym(QString()));
    QVERIFY(Thesaurus::CanGetSynonym(QString(37, QLatin1Char('a'))));
    QVERIFY(!Thesaurus::CanGetSynonym(QString(38, QLatin1Char('a'))));
    QCOMPARE(Thesaurus::wordOfSelection(QStringLiteral(" \"aback,\" ")), QStringLiteral("aback"));
    QCOMPARE(Thesaurus::wordOfSelection(QStringLiteral("don't ")), QStringLiteral("don't"));
    QCOMPARE(Thesaurus::wordOfSelection(QStringLiteral("...")), QString());
}

void TestSpelling::commandLineWordLists()
{
#ifndef KVRTB_CLI
    QSKIP("The command-line tool is not part of this build.");
#else
    using Run = kvrtb::test::CliRun;
    auto run = [](const QStringList &args, const QByteArray &input = QByteArray()) {
        return kvrtb::test::runCli(QStringLiteral(KVRTB_CLI), args, input);
    };

    // check: unknown words one a line; an empty argument is no word; both apostrophes known.
    Run r = run({QStringLiteral("check"), QStringLiteral("aardvark"), QString(), QStringLiteral("Zulu"),
                 QStringLiteral("zulu"), QStringLiteral("xqzzv"), QStringLiteral("abaci\u2019s"),
                 QStringLiteral("abaci's")});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, QStringLiteral("zulu\nxqzzv\n"));
    // From standard input, split at any white space; non-ASCII words come back in UTF-8.
    r = run({QStringLiteral("check")}, QByteArray("aardvark  \r\n\tZulu zulu\n\nxqzzv w\xc3\xb6rld"));
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, QStringLiteral("zulu\nxqzzv\nw\u00f6rld\n"));
    r = run({QStringLiteral("check")});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, QString());
    QByteArray many;
    for (int i = 0; i < 100000; ++i)
        many += "Aardvark xqzzv\n";
    r = run({QStringLiteral("check")}, many);
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out.count(QLatin1Char('\n')), 100000);
    QCOMPARE(r.out.count(QStringLiteral("xqzzv\n")), 100000);

    // synonyms: exactly one word; the not-found message for anything else.
    r = run({QStringLiteral("synonyms")});
    QCOMPARE(r.code, 2);
    QVERIFY2(r.err.contains(QStringLiteral("Usage: kvrtb synonyms WORD")), qPrintable(r.err));
    r = run({QStringLiteral("synonyms"), QString()});
    QCOMPARE(r.code, 1);
    QCOMPARE(r.out, QStringLiteral("No synonyms found.\n"));
    r = run({QStringLiteral("synonyms"), QStringLiteral("\u00e9lan")});
    QCOMPARE(r.out, QStringLiteral("No synonyms found.\n"));
    r = run({QStringLiteral("synonyms"), QStringLiteral("ABACK")});
    QCOMPARE(r.code, 0);
    QVERIFY2(r.out.startsWith(QStringLiteral("confused\nsurprised\n")), qPrintable(r.out));

    // complete: a prefix that starts with a letter, and a limit of 0 or more.
    r = run({QStringLiteral("complete")});
    QCOMPARE(r.code, 2);
    r = run({QStringLiteral("complete"), QString()});
    QCOMPARE(r.code, 2);
    QVERIFY2(r.err.contains(QStringLiteral("the prefix is empty")), qPrintable(r.err));
    r = run({QStringLiteral("complete"), QStringLiteral("1a")});
    QCOMPARE(r.code, 2);
    r = run({QStringLiteral("complete"), QStringLiteral("\u00e9t")});
    QCOMPARE(r.code, 2);
    r = run({QStringLiteral("complete"), QStringLiteral("ab"), QStringLiteral("-1")});
    QCOMPARE(r.code, 2);
    r = run({QStringLiteral("complete"), QStringLiteral("e.g"), QStringLiteral("1")});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out, QStringLiteral("e.g.\n"));
    r = run({QStringLiteral("complete"), QStringLiteral("ab"), QStringLiteral("3")});
    QCOMPARE(r.code, 0);
    QCOMPARE(r.out.count(QLatin1Char('\n')), 3);
    QVERIFY2(r.out.at(1).isUpper(), qPrintable(r.out)); // capitalised entries come first
    r = run({QStringLiteral("complete"), QStringLiteral("xqzzv")});
    QCOMPARE(r.code, 1);
    QCOMPARE(r.out, QString());

    // random: one proper-case word a to y, its carriage return turned into a line end.
    r = run({QStringLiteral("random"), QStringLiteral("x")});
    QCOMPARE(r.code, 2);
    r = run({QStringLiteral("random")});
    QCOMPARE(r.code, 0);
    QVERIFY2(QRegularExpression(QStringLiteral("^[A-Y][^A-Z\r\n'\u2019.]{2,}\n$")).match(r.out).hasMatch(),
             qPrintable(r.out));
#endif
}

KVRTB_REGISTER_TEST(TestSpelling)
#include "test_spelling.moc"
