// Recolouring in one batch (applyColourRuns) against the general batch of format spans
// (applyCharFormats) on the VB corpus: the documents must come out identical, RTF and text.

#include "core/editorsurface.h"
#include "surface/qteditorsurface.h"
#include "testsupport.h"

#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>

using namespace kvrtb;

namespace {

constexpr Colour kKeyword = 0xC00000;
constexpr Colour kComment = 0x008000;
constexpr Colour kWindowText = 0x80000008; // a system colour, translated on the way in

std::unique_ptr<QtEditorSurface> makeSurface(const QString &text)
{
    auto surface = std::make_unique<QtEditorSurface>();
    surface->widget()->resize(500, 300);
    surface->widget()->show();
    surface->setText(text);
    // Formatting of the user's that the base keeps or removes: bold, underline over part of the
    // bold, italic and struck-out text, and a link (its own underline stays when the user's goes).
    const auto format = [&surface](int start, int length, auto set) {
        CharFormat f;
        set(f);
        surface->setRangeCharFormat(start, length, f);
    };
    format(10, 300, [](CharFormat &f) { f.bold = true; });
    format(200, 400, [](CharFormat &f) { f.underline = true; });
    format(700, 90, [](CharFormat &f) { f.italic = true; f.strikeThrough = true; });
    format(900, 40, [](CharFormat &f) { f.linkEffect = true; f.linkAddress = QStringLiteral("http://example.com"); });
    format(1000, 60, [](CharFormat &f) { f.color = 0x0000FF; f.fontSize = 14; });
    return surface;
}

/// Runs of a source-like colouring of \a text: words, comments and quoted strings.
QList<EditorSurface::ColourRun> runsOf(const QString &text, int offset)
{
    static const QRegularExpression pieces(QStringLiteral("'[^\\n]*|\"[^\"\\n]*\"|\\b[A-Z][a-z]+\\b"));
    QList<EditorSurface::ColourRun> runs;
    for (auto it = pieces.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const QChar first = m.captured().at(0);
        const Colour colour = first == QLatin1Char('\'') ? kComment : first == QLatin1Char('"') ? kWindowText : kKeyword;
        runs.append({offset + int(m.capturedStart()), int(m.capturedLength()), colour});
    }
    return runs;
}

/// What applyColourRuns must equal: the base as the first span, then one span per run.
QList<EditorSurface::FormatSpan> spansOf(int start, int length, const CharFormat &base,
                                         const QList<EditorSurface::ColourRun> &runs)
{
    QList<EditorSurface::FormatSpan> spans{{start, length, base}};
    for (const EditorSurface::ColourRun &run : runs) {
        EditorSurface::FormatSpan span;
        span.start = run.start;
        span.length = run.length;
        span.format.color = run.colour;
        spans.append(span);
    }
    return spans;
}

} // namespace

class TestFormatBatch : public QObject {
    Q_OBJECT

private slots:
    void colourRunsEqualSpanBySpanOnCorpus()
    {
        CharFormat keep;
        keep.fontName = QStringLiteral("Courier New");
        keep.fontSize = 10;
        keep.color = 0;
        keep.protectedText = false;
        CharFormat removeAll = keep;
        removeAll.bold = false;
        removeAll.italic = false;
        removeAll.strikeThrough = false;
        removeAll.underline = false;

        const QDir corpus(test::corpusPath(QStringLiteral("vb")));
        const QStringList files = corpus.entryList(QDir::Files, QDir::Name);
        QVERIFY(files.size() >= 10);
        int compared = 0;
        for (const QString &name : files) {
            const QString text = QString::fromUtf8(test::readAll(corpus.filePath(name)))
                                     .split(QLatin1Char('\n'))
                                     .mid(0, 400)
                                     .join(QLatin1Char('\n'));
            // The whole document, and a range from the middle of one line to the middle of another.
            const int partStart = int(text.size() / 3) + 1;
            const int partLength = int(text.size() / 3);
            for (const bool whole : {true, false}) {
                for (const CharFormat *base : {&keep, &removeAll}) {
                    auto batched = makeSurface(text);
                    auto reference = makeSurface(text);
                    const int start = whole ? 0 : partStart;
                    const int length = whole ? -1 : partLength;
                    const QList<EditorSurface::ColourRun> runs =
                        runsOf(whole ? text : text.mid(partStart, partLength), start);
                    batched->setSelection(5, 3);
                    batched->applyColourRuns(start, length, *base, runs);
                    reference->applyCharFormats(spansOf(start, length, *base, runs));
                    const QString what = QStringLiteral("%1 %2 %3").arg(name, whole ? "whole" : "part",
                                                                         base == &keep ? "keep" : "remove");
                    QVERIFY2(batched->rtf() == reference->rtf(), qPrintable(what));
                    QVERIFY2(batched->text() == reference->text(), qPrintable(what));
                    // The selection stays where it was.
                    QCOMPARE(batched->selStart(), 5);
                    QCOMPARE(batched->selLength(), 3);
                    ++compared;
                }
            }
        }
        QCOMPARE(compared, int(files.size()) * 4);
    }

    void colourRunsBoundariesOverlapsAndUndo()
    {
        const QString text = QStringLiteral("Dim a As Long\n' note\nx = \"s\"");
        auto batched = makeSurface(text);
        auto reference = makeSurface(text);
        const QString before = batched->rtf();
        CharFormat base;
        base.color = 0;
        // A later run wins over an earlier one; runs that start before the document or reach past
        // its end are clamped; an empty run and one that starts past the end change nothing; a
        // run of length -1 goes to the end.
        const QList<EditorSurface::ColourRun> runs = {
            {0, 8, kKeyword}, {4, 2, kComment}, {-5, 2, kWindowText}, {20, 0, kKeyword},
            {500, 3, kComment}, {25, 1000, kKeyword}, {27, -1, kComment}, {14, 6, 0}};
        batched->applyColourRuns(0, -1, base, runs);
        reference->applyCharFormats(spansOf(0, -1, base, runs));
        QCOMPARE(batched->rtf(), reference->rtf());
        QCOMPARE(batched->rangeCharFormat(0, 2).color, std::optional<Colour>(translateColour(kWindowText)));
        QCOMPARE(batched->rangeCharFormat(2, 2).color, std::optional<Colour>(kKeyword));
        QCOMPARE(batched->rangeCharFormat(4, 2).color, std::optional<Colour>(kComment));
        QCOMPARE(batched->rangeCharFormat(6, 2).color, std::optional<Colour>(kKeyword));
        QCOMPARE(batched->rangeCharFormat(8, 5).color, std::optional<Colour>(0u));
        QCOMPARE(batched->rangeCharFormat(25, 2).color, std::optional<Colour>(kKeyword));
        QCOMPARE(batched->rangeCharFormat(27, int(text.size()) - 27).color, std::optional<Colour>(kComment));

        // The whole batch is one undo step, back to the exact document.
        QVERIFY(batched->canUndo());
        batched->undo();
        QCOMPARE(batched->rtf(), before);

        // No runs: only the base; a range that lies past the end: nothing at all.
        base.bold = true;
        batched->applyColourRuns(4, 4, base, {});
        QCOMPARE(batched->rangeCharFormat(4, 4).bold, std::optional<bool>(true));
        QCOMPARE(batched->rangeCharFormat(0, 4).bold, std::optional<bool>(false));
        const QString now = batched->rtf();
        batched->applyColourRuns(900, 5, base, {{900, 5, kKeyword}});
        QCOMPARE(batched->rtf(), now);

        // A document with a table: runs inside cells and across them, and one step of undo.
        const QString table = QStringLiteral(
            "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\f0 Dim a As Long\\par\n"
            "\\trowd\\cellx2000\\cellx4000\\intbl Dim b\\cell\\intbl ' c\\cell\\row\n"
            "\\pard x = \"s\"\\par}");
        for (QtEditorSurface *s : {batched.get(), reference.get()})
            s->setRtf(table);
        const QString beforeTable = batched->rtf();
        const QString tableText = batched->text();
        QList<EditorSurface::ColourRun> tableRuns = runsOf(tableText, 0);
        tableRuns.append({int(tableText.indexOf(QStringLiteral("b"))), 5, kComment}); // across two cells
        batched->applyColourRuns(0, -1, base, tableRuns);
        reference->applyCharFormats(spansOf(0, -1, base, tableRuns));
        QCOMPARE(batched->rtf(), reference->rtf());
        batched->undo();
        QCOMPARE(batched->rtf(), beforeTable);
    }

    void largeBatchKeepsLinesAndLayout()
    {
        // A batch large enough to be laid out again lazily: the line index is right at once.
        QString text;
        for (int i = 0; i < 3000; ++i)
            text += QStringLiteral("Dim value%1 As Long ' count\n").arg(i);
        auto surface = makeSurface(text);
        const int lines = surface->lineCount();
        const int index = surface->lineIndex(2500);
        CharFormat base;
        base.fontName = QStringLiteral("Courier New");
        base.fontSize = 10;
        const QList<EditorSurface::ColourRun> runs = runsOf(text, 0);
        QVERIFY(runs.size() > 256);
        surface->applyColourRuns(0, -1, base, runs);
        QCOMPARE(surface->lineCount(), lines);
        QCOMPARE(surface->lineIndex(2500), index);
        const int line = int(text.indexOf(QStringLiteral("value2999")));
        QCOMPARE(surface->rangeCharFormat(line - 4, 3).color, std::optional<Colour>(kKeyword));
        QCOMPARE(surface->rangeCharFormat(line - 4, 3).fontName, std::optional<QString>(QStringLiteral("Courier New")));

        // The rest is laid out later, in steps: painting the view right after the batch lays
        // out what it shows, not the whole document.
        auto *edit = qobject_cast<QTextEdit *>(surface->widget());
        QVERIFY(edit);
        surface->applyColourRuns(0, -1, base, runsOf(text, 0));
        edit->viewport()->grab();
        const QTextBlock first = edit->document()->firstBlock();
        QVERIFY(first.layout() && first.layout()->lineCount() > 0);
        QCOMPARE(edit->document()->lastBlock().layout()->lineCount(), 0);
    }
};

int runFormatBatchTests(int argc, char *argv[])
{
    TestFormatBatch test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_formatbatch.moc"
