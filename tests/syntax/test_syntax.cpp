// Keyword colouring: the passes and their precedence, capitalisation, the host's patterns, the
// batch against the match-by-match way, cancellation, progress, the control's members and the
// command-line tool.

#include "control/kvrtb.h"
#include "core/kvrtbtypes.h"
#include "core/threadstate.h"
#include "corefixture.h"
#include "editing/specialundo.h"
#include "editorinput/popupmenu.h"
#include "syntax/colouringengine.h"
#include "syntax/keywordpatterns.h"
#include "syntax/keywordscanner.h"
#include "syntax/syntax.h"
#include "testsupport.h"

#include <QDir>
#include <QProcess>
#include <QProgressBar>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace kvrtb;
using kvrtb::test::CoreFixture;

namespace {

constexpr Colour kComment = 0x8000;
constexpr Colour kVB6Keyword = 0xC00000;

/// The colouring done the slow way, one selection and one format change per match in the order
/// of the passes, reading back the colour and protected marker of each match from the surface.
/// It is the reference the batched run must equal.
void colourOneByOne(EditorSurface &s, int start, int length, const ColouringEngine::Rules &rules, int formatting)
{
    const QString subject = length < 0 ? s.text() : s.textRange(start, length);
    struct Match {
        int start;
        int length;
        QString value;
    };
    QList<Match> matches[3];
    int total = 0;
    for (int role = 0; role < 3; ++role) {
        const QRegularExpression re(rules.passes[size_t(role)].pattern, QRegularExpression::CaseInsensitiveOption);
        if (rules.passes[size_t(role)].pattern.isEmpty() || !re.isValid())
            continue;
        for (auto it = re.globalMatch(subject); it.hasNext();) {
            const auto m = it.next();
            matches[role].append({int(m.capturedStart()), int(m.capturedLength()), m.captured()});
        }
        total += int(matches[role].size());
    }
    if (total == 0)
        return;
    SurfaceFreeze freeze(s);
    s.setSelection(start, length);
    CharFormat base;
    const bool all = formatting == Remove_All_Formatting;
    if (all || formatting == Remove_Bold)
        base.bold = false;
    if (all || formatting == Remove_Italics)
        base.italic = false;
    if (all || formatting == Remove_StrikeThru)
        base.strikeThrough = false;
    if (all || formatting == Remove_UnderLine)
        base.underline = false;
    if (all || formatting == Remove_Bullets) {
        ParaFormat para;
        para.numbering = Numbering::None;
        s.setSelectionParaFormat(para);
    }
    base.fontName = QStringLiteral("Courier New");
    base.fontSize = 10;
    base.color = 0;
    s.setSelectionCharFormat(base);

    const Colour comment = translateColour(rules.passes[0].colour);
    const auto colour = [&s](Colour c) {
        CharFormat f;
        f.color = c;
        s.setSelectionCharFormat(f);
    };
    for (const Match &m : matches[0]) {
        s.setSelection(start + m.start, m.length);
        colour(rules.passes[0].colour);
        if (rules.capitalise && s.selectedText().left(3).toUpper() == QLatin1String("REM"))
            s.replaceSelection(KeywordPatterns::properCase(s.selectedText()));
    }
    for (const Match &m : matches[1]) {
        s.setSelection(start + m.start, m.length);
        const CharFormat now = s.selectionCharFormat();
        if (now.color && *now.color == comment)
            continue;
        colour(rules.passes[1].colour);
        CharFormat marker;
        marker.protectedText = true;
        s.setSelectionCharFormat(marker);
    }
    for (const Match &m : matches[2]) {
        s.setSelection(start + m.start, m.length);
        const CharFormat now = s.selectionCharFormat();
        if ((now.color && *now.color == comment) || now.protectedText.value_or(false))
            continue;
        colour(rules.passes[2].colour);
        if (!rules.capitalise || rules.canonicalKeywords.contains(QLatin1Char('|') + m.value + QLatin1Char('|')))
            continue;
        s.replaceSelection(KeywordPatterns::properCase(s.selectedText()));
        const qsizetype at = rules.canonicalKeywords.indexOf(QLatin1Char('|') + m.value + QLatin1Char('|'), 0,
                                                             Qt::CaseInsensitive);
        for (int i = 0; at >= 0 && i < m.length; ++i) {
            if (rules.canonicalKeywords.at(at + 1 + i).isUpper()) {
                s.setSelection(start + m.start + i, 1);
                s.replaceSelection(s.selectedText().toUpper());
            }
        }
    }
    s.setSelection(start, length);
    CharFormat unprotect;
    unprotect.protectedText = false;
    s.setSelectionCharFormat(unprotect);
}

/// The colour of the first occurrence of \a what at or after \a from, or of its first \a length
/// characters; an impossible colour when it is not found or its colours differ.
Colour colourOf(EditorSurface &s, const QString &what, int from = 0, int length = -1)
{
    const int at = int(s.text().indexOf(what, from));
    if (at < 0)
        return kAutoColour - 1;
    return s.rangeCharFormat(at, length < 0 ? int(what.size()) : length).color.value_or(kAutoColour - 1);
}

/// A VB6 source with enough matches for several yields of the walk.
QString longSource(int lines)
{
    QString text;
    for (int i = 0; i < lines; ++i)
        text += QStringLiteral("Dim s%1 As String: s%1 = \"v%1\" ' note %1\n").arg(i);
    return text;
}

} // namespace

class TestSyntax : public QObject {
    Q_OBJECT

private slots:
    void init() { threadState() = ThreadState(); }

    void invalidMethodShowsItsBoxAndNothingElse();
    void passesPrecedenceAndCapitalisation();
    void nothingToColourLeavesDocumentUnchanged();
    void formattingOptionsAndSelectedText();
    void batchEqualsOneByOneOnCorpusAndTrickyLines();
    void hostPatterns();
    void cancelLeavesExactDocumentAndProgress();
    void pendingInputAndTypingDuringRun();
    void keywordListsMatchPatterns();
    void keywordScannerAgreesWithPatternEngine();
    void surfaceRewriteAndScroll();
    void controlMembersAndUndo();
    void commandLine();
};

void TestSyntax::invalidMethodShowsItsBoxAndNothingElse()
{
    CoreFixture f;
    f.surface().setText(QStringLiteral("Dim x ' comment"));
    const QString rtf = f.surface().rtf();
    f.core.syntax().ApplyVBNetSyntax(3, Retain_All_Formatting);
    f.core.syntax().ApplyVB6Syntax(0, Retain_All_Formatting);
    f.core.syntax().ApplyMySyntax(-1, Retain_All_Formatting);
    QCOMPARE(f.boxes().size(), 3);
    const QString indent(17, QLatin1Char(' '));
    const QStringList members = {"ApplyVBNetSyntax", "ApplyVB6Syntax", "ApplyMySyntax"};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(f.boxes().at(i).title, QStringLiteral("Invalid Syntax_Method"));
        QCOMPARE(f.boxes().at(i).text, QStringLiteral("Invalid Syntax_Method assigned to ") + members.at(i)
                                           + QStringLiteral(" function\r\nValid Methods:\r\n") + indent
                                           + QStringLiteral("Syntax_All_Text or 1\r\n") + indent
                                           + QStringLiteral("Syntax_Selected_Text or 2\r\n\r\n"));
        QCOMPARE(f.boxes().at(i).icon, int(MessageIcon::Information));
        QCOMPARE(f.boxes().at(i).buttons, int(MessageButtons::OK));
    }
    QVERIFY(f.events.names.isEmpty());
    QCOMPARE(f.surface().rtf(), rtf);
    QVERIFY(!f.core.specialUndo().GetCanUndoSpecial());
}

void TestSyntax::passesPrecedenceAndCapitalisation()
{
    CoreFixture f;
    EditorSurface &s = f.surface();
    s.setText(QStringLiteral("x = \"Dim\" ' Dim here\n"
                             "a = Len(b) + Len c: t = String(3, \"q\") & String\n"
                             "rem this is a lower-case comment\n"
                             "Sub F(BYVAL p, ByRef q) ' byval stays\n"
                             "y = addressof z"));
    f.core.syntax().ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(f.events.names, QStringList({"Begin", "Finish", "Ready"}));
    const QString text = s.text();

    // Dim in a string takes the string colour (VB6: black), the Dim in the comment the comment's.
    const int line0Comment = int(text.indexOf(QLatin1Char('\'')));
    QCOMPARE(colourOf(s, QStringLiteral("\"Dim\"")), Colour(0));
    QCOMPARE(colourOf(s, QStringLiteral("' Dim here")), kComment);
    QCOMPARE(colourOf(s, QStringLiteral("Dim"), line0Comment), kComment);
    // The marker that kept keywords out of strings is gone everywhere.
    QCOMPARE(s.rangeCharFormat(0, s.textLength()).protectedText, std::optional<bool>(false));

    // Len( and String( are no keywords; followed by a space they are.
    QCOMPARE(colourOf(s, QStringLiteral("Len(")), Colour(0));
    QCOMPARE(colourOf(s, QStringLiteral("Len c"), 0, 3), kVB6Keyword);
    QCOMPARE(colourOf(s, QStringLiteral("String(")), Colour(0));
    QCOMPARE(s.rangeCharFormat(int(text.lastIndexOf(QStringLiteral("String"))), 6).color, std::optional<Colour>(kVB6Keyword));

    // A lower-case rem line comes out in proper case, all of it in the comment colour.
    QVERIFY(text.contains(QStringLiteral("Rem This Is A Lower-case Comment\n")));
    QCOMPARE(colourOf(s, QStringLiteral("Rem This Is A Lower-case Comment")), kComment);

    // Keywords take their canonical capitalisation; inside a comment they stay as written.
    QVERIFY(text.contains(QStringLiteral("Sub F(ByVal p, ByRef q) ' byval stays")));
    QVERIFY(text.contains(QStringLiteral("y = AddressOf z")));
    QCOMPARE(colourOf(s, QStringLiteral("ByVal")), kVB6Keyword);

    // The fixed-pitch font over everything; the run is one step of the control's own undo.
    const CharFormat all = s.rangeCharFormat(0, s.textLength());
    QCOMPARE(all.fontName, std::optional<QString>(QStringLiteral("Courier New")));
    QCOMPARE(all.fontSize, std::optional<double>(10));
    QVERIFY(!s.canUndo());
    QVERIFY(f.core.specialUndo().GetCanUndoSpecial());
    QCOMPARE(f.core.progress(), 0);

    // VB.NET: its own list ("AndAlso", "TypeOf"); Len is no VB.NET keyword.
    s.setText(QStringLiteral("If a andalso typeof b Is c Then x = len(y) ' rem"));
    f.core.syntax().ApplyVBNetSyntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(s.text(), QStringLiteral("If a AndAlso TypeOf b Is c Then x = len(y) ' rem"));
    QCOMPARE(colourOf(s, QStringLiteral("AndAlso")), Colour(0xFF0000));
    QCOMPARE(colourOf(s, QStringLiteral("len")), Colour(0));
}

void TestSyntax::nothingToColourLeavesDocumentUnchanged()
{
    CoreFixture f;
    EditorSurface &s = f.surface();
    s.setText(QStringLiteral("plain words 123\nmore words without anything"));
    s.setSelection(0, 5);
    CharFormat bold;
    bold.bold = true;
    bold.italic = true;
    s.setSelectionCharFormat(bold);
    s.setSelection(3, 4);
    const QString rtf = s.rtf();
    for (int method : {int(Syntax_All_Text), int(Syntax_Selected_Text)}) {
        f.core.syntax().ApplyVB6Syntax(method, Remove_All_Formatting);
        f.core.syntax().ApplyVBNetSyntax(method, Remove_All_Formatting);
        f.core.syntax().ApplyMySyntax(method, Remove_All_Formatting); // all three lists empty
        QCOMPARE(s.rtf(), rtf);
    }
    QCOMPARE(f.events.names.count(QStringLiteral("Begin")), 6);
    QCOMPARE(f.events.names.count(QStringLiteral("Ready")), 6);
    QVERIFY(f.boxes().isEmpty());
}

void TestSyntax::formattingOptionsAndSelectedText()
{
    const QString source = QStringLiteral("Dim a ' one\nDim b ' two\nDim c ' three");
    const struct {
        int option;
        bool bold, italic, underline, strike, bullet;
    } rows[] = {
        {Remove_All_Formatting, false, false, false, false, false}, {Remove_Bold, false, true, true, true, true},
        {Remove_Bullets, true, true, true, true, false},            {Remove_Italics, true, false, true, true, true},
        {Remove_StrikeThru, true, true, true, false, true},         {Remove_UnderLine, true, true, false, true, true},
        {Retain_All_Formatting, true, true, true, true, true},      {42, true, true, true, true, true},
    };
    for (const auto &row : rows) {
        CoreFixture f;
        EditorSurface &s = f.surface();
        s.setText(source);
        s.setSelection(0, -1);
        CharFormat rich;
        rich.bold = rich.italic = rich.underline = rich.strikeThrough = true;
        s.setSelectionCharFormat(rich);
        ParaFormat bullets;
        bullets.numbering = Numbering::Bullet;
        s.setSelectionParaFormat(bullets);
        f.core.syntax().ApplyVB6Syntax(Syntax_All_Text, row.option);
        const CharFormat after = s.rangeCharFormat(0, s.textLength());
        QCOMPARE(after.bold, std::optional<bool>(row.bold));
        QCOMPARE(after.italic, std::optional<bool>(row.italic));
        QCOMPARE(after.underline, std::optional<bool>(row.underline));
        QCOMPARE(after.strikeThrough, std::optional<bool>(row.strike));
        s.setSelection(0, -1);
        QCOMPARE(s.selectionParaFormat().numbering, std::optional<Numbering>(row.bullet ? Numbering::Bullet : Numbering::None));
        QCOMPARE(after.fontName, std::optional<QString>(QStringLiteral("Courier New")));
    }

    // Selected text: only the middle line changes; the caret ends at the selection's start.
    CoreFixture f;
    EditorSurface &s = f.surface();
    s.setText(source);
    const int middle = int(source.indexOf(QStringLiteral("Dim b")));
    s.setSelection(middle, 11);
    f.core.syntax().ApplyVB6Syntax(Syntax_Selected_Text, Retain_All_Formatting);
    QCOMPARE(colourOf(s, QStringLiteral("Dim b"), 0, 3), kVB6Keyword);
    QCOMPARE(colourOf(s, QStringLiteral("' two")), kComment);
    QCOMPARE(colourOf(s, QStringLiteral("Dim a"), 0, 3), Colour(0));
    QVERIFY(s.rangeCharFormat(0, 5).fontName != std::optional<QString>(QStringLiteral("Courier New")));
    QVERIFY(colourOf(s, QStringLiteral("' three")) != kComment);
    QCOMPARE(s.selStart(), middle);
    QCOMPARE(s.selLength(), 0);
}

void TestSyntax::batchEqualsOneByOneOnCorpusAndTrickyLines()
{
    // Lines where the order of the passes decides: a comment mark inside a string, a Rem inside
    // a string, keywords in both, a comment whose colour equals the string colour.
    const QString tricky = QStringLiteral(
        "x = \"a ' b\" & Dim\nx = \"Rem byval\" & y\nrem see \"quoted\" dim\ny = \"Dim\" ' Dim here\n"
        "Sub F(BYVAL addressof As Long) 'x\nPrivate Declare Function Len Lib \"k\" (ByVal s As String) As Long\n"
        "\n''\n\"\"\nREM\nremark = 1");
    QList<QPair<QString, QString>> inputs = {{QStringLiteral("tricky"), tricky}};
    const QDir corpus(test::corpusPath(QStringLiteral("vb")));
    const QStringList files = corpus.entryList(QDir::Files, QDir::Name);
    QVERIFY(files.size() >= 10);
    for (const QString &name : files) {
        // The first lines of each file keep the match-by-match reference quick.
        const QString text = QString::fromUtf8(test::readAll(corpus.filePath(name)));
        inputs.append({name, text.split(QLatin1Char('\n')).mid(0, 250).join(QLatin1Char('\n'))});
    }

    QTemporaryDir dir;
    for (const auto &[name, text] : inputs) {
        for (const bool crlf : {false, true}) {
            for (int variant = 0; variant < 3; ++variant) {
                CoreFixture batched;
                CoreFixture reference;
                ControlProperties &p = batched.core.properties();
                p.MyFirstString = QStringLiteral("\\b(Dim|As|Long|[a-z]+_[a-z]+)\\b");
                p.MySecondString = QStringLiteral("'.*");
                p.MyThirdString = QStringLiteral("\\(|\\)|\"");
                if (name == QLatin1String("tricky") && crlf)
                    p.ColorVB6Comment = p.ColorVB6String; // comment colour = string colour
                reference.core.properties() = p;
                // Loaded from a file, as a user opens one: CR LF and LF both end lines.
                const QString path = dir.filePath(QStringLiteral("in.txt"));
                QFile out(path);
                QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
                out.write((crlf ? QString(text).replace(QLatin1Char('\n'), QStringLiteral("\r\n")) : text).toUtf8());
                out.close();
                QVERIFY(batched.surface().loadFile(path, SurfaceFileType::Text));
                QVERIFY(reference.surface().loadFile(path, SurfaceFileType::Text));
                QVERIFY(!batched.surface().text().contains(QLatin1Char('\r')));

                const auto v = Syntax::Variant(variant);
                const int option = variant == 0 ? Retain_All_Formatting : Remove_All_Formatting;
                if (v == Syntax::Variant::VB6)
                    batched.core.syntax().ApplyVB6Syntax(Syntax_All_Text, option);
                else if (v == Syntax::Variant::VBNet)
                    batched.core.syntax().ApplyVBNetSyntax(Syntax_All_Text, option);
                else
                    batched.core.syntax().ApplyMySyntax(Syntax_All_Text, option);
                colourOneByOne(reference.surface(), 0, -1, reference.core.syntax().rulesFor(v), option);
                const QString what = QStringLiteral("%1 %2 variant %3").arg(name, crlf ? "CRLF" : "LF").arg(variant);
                QVERIFY2(batched.surface().text() == reference.surface().text(), qPrintable(what));
                QVERIFY2(batched.surface().rtf() == reference.surface().rtf(), qPrintable(what));
            }
        }
    }

    // Part of a document, from the middle of one line to the middle of another.
    CoreFixture batched;
    CoreFixture reference;
    for (CoreFixture *f : {&batched, &reference})
        f->surface().setText(tricky);
    const int start = int(tricky.indexOf(QStringLiteral("byval")));
    const int length = int(tricky.indexOf(QStringLiteral("Long")) - start);
    batched.surface().setSelection(start, length);
    batched.core.syntax().ApplyVB6Syntax(Syntax_Selected_Text, Remove_Bold);
    colourOneByOne(reference.surface(), start, length, reference.core.syntax().rulesFor(Syntax::Variant::VB6),
                   Remove_Bold);
    QCOMPARE(batched.surface().rtf(), reference.surface().rtf());
}

void TestSyntax::hostPatterns()
{
    CoreFixture f;
    EditorSurface &s = f.surface();
    ControlProperties &p = f.core.properties();
    const QString text = QStringLiteral("select name from people -- select all\nwhere id = 'select'");
    s.setText(text);
    p.MyFirstString = QStringLiteral("\\b(select|from|where)\\b");
    p.MySecondString = QStringLiteral("--.*");
    p.MyThirdString = QStringLiteral("'[^']*'");
    p.ColorMyThirdKeyWord = 0x0000FF;
    f.core.syntax().ApplyMySyntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(s.text(), text); // no capitalisation
    QCOMPARE(colourOf(s, QStringLiteral("select name"), 0, 6), Colour(0xC00000));
    QCOMPARE(colourOf(s, QStringLiteral("-- select all")), Colour(0x8000));
    QCOMPARE(colourOf(s, QStringLiteral("'select'")), Colour(0x0000FF));
    QCOMPARE(colourOf(s, QStringLiteral("where")), Colour(0xC00000));

    // An invalid pattern skips its pass with a warning; the other passes still colour.
    s.setText(text);
    p.MySecondString = QStringLiteral("--(.*");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral(
                                           "^KvRTB: MySecondString is not a valid pattern \\(.+ at offset 5\\); "
                                           "its pass colours nothing\\.$")));
    f.core.syntax().ApplyMySyntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(colourOf(s, QStringLiteral("-- ")), Colour(0));
    QCOMPARE(colourOf(s, QStringLiteral("select all"), 0, 6), Colour(0xC00000));

    // Only invalid patterns: nothing to colour, nothing changes.
    s.setText(text);
    const QString rtf = s.rtf();
    p.MyFirstString = QStringLiteral("[");
    p.MySecondString.clear();
    p.MyThirdString = QStringLiteral("(?<");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("MyThirdString is not a valid pattern")));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("MyFirstString is not a valid pattern")));
    f.core.syntax().ApplyMySyntax(Syntax_All_Text, Remove_All_Formatting);
    QCOMPARE(s.rtf(), rtf);

    // A pattern that backtracks without end stops at the engine's limit: that pass colours
    // nothing, the run ends, the other passes work.
    s.setText(QString(20000, QLatin1Char('a')) + QStringLiteral("\nb -- c"));
    p.MyFirstString = QStringLiteral("(a+)+$");
    p.MySecondString = QStringLiteral("--.*");
    p.MyThirdString.clear();
    f.core.syntax().ApplyMySyntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(colourOf(s, QStringLiteral("aaaa")), Colour(0));
    QCOMPARE(colourOf(s, QStringLiteral("-- c")), Colour(0x8000));
    QVERIFY(!f.core.syntax().CanCancelSyntax());
}

void TestSyntax::cancelLeavesExactDocumentAndProgress()
{
    // Rounding of the percentage: halves go to the even neighbour.
    QCOMPARE(ColouringEngine::percentage(0, 0), 0);
    QCOMPARE(ColouringEngine::percentage(1, 8), 12);   // 12.5
    QCOMPARE(ColouringEngine::percentage(3, 8), 38);   // 37.5
    QCOMPARE(ColouringEngine::percentage(1, 200), 0);  // 0.5
    QCOMPARE(ColouringEngine::percentage(3, 200), 2);  // 1.5
    QCOMPARE(ColouringEngine::percentage(2, 3), 67);
    QCOMPARE(ColouringEngine::percentage(7, 7), 100);

    for (const bool byKillSwitch : {false, true}) {
        CoreFixture f;
        EditorSurface &s = f.surface();
        f.core.properties().DetectHyperLinks = true;
        // An address that is not linked must not come back linked.
        s.setText(longSource(1500) + QStringLiteral("see www.example.com\n"));
        s.setSelection(5, 0);
        s.replaceSelection(QStringLiteral("x")); // something the surface can undo
        QVERIFY(s.canUndo());
        const QString rtf = s.rtf();
        const QString text = s.text();
        QCOMPARE(f.core.progress(), 0);

        QList<int> progress;
        bool couldUndo = true;
        bool couldCancel = false;
        f.services.onProcessEvents = [&] {
            progress << f.core.progress();
            couldUndo = couldUndo && f.core.specialUndo().CanUndo();
            couldCancel = f.core.syntax().CanCancelSyntax();
            if (progress.size() == 3) {
                if (byKillSwitch)
                    threadState().cancelRequested = true;
                else
                    f.core.syntax().Cancel_Syntax();
            }
        };
        f.core.syntax().ApplyVB6Syntax(Syntax_All_Text, Remove_All_Formatting);
        QCOMPARE(progress.size(), 3); // stopped at the yield where it was asked to
        QVERIFY(progress.at(0) > 0 && progress.at(0) < progress.at(2) && progress.at(2) < 100);
        QVERIFY(!couldUndo);
        QVERIFY(couldCancel);
        QCOMPARE(s.text(), text);
        QCOMPARE(s.rtf(), rtf);
        QCOMPARE(f.core.progress(), 0);
        QVERIFY(!f.core.syntax().CanCancelSyntax());
        QVERIFY(!threadState().cancelRequested);
        QVERIFY(f.core.specialUndo().CanUndo()); // the user's own edit can still be undone
        QCOMPARE(f.events.names, QStringList({"Begin", "Finish", "Ready"}));

        // Cancel while idle, and a stop asked for before the run: the next run is whole.
        f.services.onProcessEvents = nullptr;
        f.core.syntax().Cancel_Syntax();
        threadState().cancelRequested = true;
        f.core.syntax().ApplyVB6Syntax(Syntax_All_Text, Remove_All_Formatting);
        QCOMPARE(colourOf(s, QStringLiteral("' note 1499")), kComment);
        QCOMPARE(f.core.progress(), 0);
        // The control's own undo brings back the document from before the run.
        f.core.properties().DetectHyperLinks = false;
        f.core.specialUndo().HyperUndo();
        QCOMPARE(s.text(), text);
        QCOMPARE(colourOf(s, QStringLiteral("' note 1499")), colourOf(s, QStringLiteral("Dim s1499"), 0, 3));
    }
}

void TestSyntax::pendingInputAndTypingDuringRun()
{
    // Input that arrives during a yield makes the walk pass over the next match uncoloured.
    CoreFixture f;
    EditorSurface &s = f.surface();
    s.setText(QStringLiteral("' one\nx = \"two\" & \"three\"\nDim four"));
    f.core.properties().ColorVB6String = 0xFF;
    f.services.pendingInput = true;
    f.core.syntax().ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(colourOf(s, QStringLiteral("' one")), kComment);
    QCOMPARE(colourOf(s, QStringLiteral("\"two\"")), Colour(0));       // first after a yield: passed over
    QCOMPARE(colourOf(s, QStringLiteral("\"three\"")), Colour(0xFF));
    QCOMPARE(colourOf(s, QStringLiteral("Dim")), Colour(0));           // the keyword pass's only match

    // The user types into the shown control while the run yields: the typed text stays, and the
    // colours fit the text as it is after the typing.
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(500, 300);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    control.setText(longSource(300));
    QWidget *editor = control.RichTextBox1().widget();
    bool typed = false;
    services.onProcessEvents = [&] {
        if (typed)
            return;
        typed = true;
        control.RichTextBox1().setSelection(0, 0);
        QTest::keyClicks(editor, QStringLiteral("' typed"));
        QTest::keyClick(editor, Qt::Key_Return);
    };
    control.ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    QVERIFY(typed);
    EditorSurface &rtb = control.RichTextBox1();
    QVERIFY(rtb.text().startsWith(QStringLiteral("' typed\nDim s0 As String")));
    QCOMPARE(colourOf(rtb, QStringLiteral("' typed")), kComment);
    QCOMPARE(colourOf(rtb, QStringLiteral("Dim s0"), 0, 3), kVB6Keyword);
    QCOMPARE(colourOf(rtb, QStringLiteral("' note 299")), kComment);
}

void TestSyntax::keywordListsMatchPatterns()
{
    // The string table's lists hold exactly the keywords of the patterns, in the same order.
    const auto alternatives = [](QString pattern) {
        pattern.remove(QStringLiteral("(?!\\()"));
        return pattern.mid(3, pattern.size() - 6).split(QLatin1Char('|'));
    };
    const QString vb6 = KeywordPatterns::vb6KeywordList();
    const QString net = KeywordPatterns::vbNetKeywordList();
    QVERIFY(vb6.startsWith(QStringLiteral("|AddressOf|Alias|And|")) && vb6.endsWith(QStringLiteral("|Write|Xor|")));
    QCOMPARE(vb6.mid(1, vb6.size() - 2).split(QLatin1Char('|')), alternatives(KeywordPatterns::vb6Keywords()));
    QCOMPARE(net.mid(1, net.size() - 2).split(QLatin1Char('|')), alternatives(KeywordPatterns::vbNetKeywords()));
    QVERIFY(KeywordPatterns::stringTableEntry(104).isEmpty());

    QCOMPARE(KeywordPatterns::properCase(QStringLiteral("rem DON'T x(y)\tz-Q")), QStringLiteral("Rem Don't X(y)\tZ-q"));
    QCOMPARE(KeywordPatterns::properCase(QString()), QString());
}

void TestSyntax::keywordScannerAgreesWithPatternEngine()
{
    const auto engineMatches = [](const QString &pattern, const QString &text) {
        QList<KeywordScanner::Match> found;
        const QRegularExpression re(pattern, QRegularExpression::CaseInsensitiveOption);
        for (auto it = re.globalMatch(text); it.hasNext();) {
            const auto m = it.next();
            found.append({int(m.capturedStart()), int(m.capturedLength())});
        }
        return found;
    };
    const auto same = [](const QList<KeywordScanner::Match> &a, const QList<KeywordScanner::Match> &b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto &x, const auto &y) {
            return x.start == y.start && x.length == y.length;
        });
    };
    const QStringList patterns = {KeywordPatterns::vb6Keywords(), KeywordPatterns::vbNetKeywords(),
                                  QStringLiteral("\\b(select|from|Len(?!\\()|len|Option|option base)\\b")};

    // The corpus, and words next to digits, underscores, letters outside ASCII, parentheses and
    // characters beyond the first plane.
    QStringList texts = {QStringLiteral("Len(a) Len (a) LEN( len(x) String(3) string$ String\nLen"),
                         QStringLiteral("_Dim Dim_ Dim2 2Dim D1m \u00e9Dim Dim\u00e9 \u00a0If\u00a0Then x.End.Sub"),
                         QStringLiteral("Option Base 1\nOption Compare Binary\noption   explicit"),
                         QStringLiteral("\U0001D400Dim Dim\U0001D400 \u0130f x\u0130f AddressOfX NotOverridable NotOverridables"),
                         QStringLiteral("select FROM\tlen( Len(( selectfrom Select_ (select)")};
    const QDir corpus(test::corpusPath(QStringLiteral("vb")));
    for (const QString &name : corpus.entryList(QDir::Files, QDir::Name))
        texts << QString::fromUtf8(test::readAll(corpus.filePath(name)));
    // Random mixtures of keyword pieces and separators.
    const QStringList pieces = {"Len", "len", "String", "(", " ", "\n", "_", "1", "Dim", "AS", "s", "Option",
                                "Base", "\u00e9", "\"", "'", "Rem", "Xor", ".", "Select", "from", "x"};
    quint32 seed = 12345;
    for (int t = 0; t < 200; ++t) {
        QString text;
        for (int i = 0; i < 40; ++i) {
            seed = seed * 1664525u + 1013904223u;
            text += pieces.at(int((seed >> 8) % quint32(pieces.size())));
        }
        texts << text;
    }
    for (const QString &pattern : patterns) {
        const std::optional<KeywordScanner> scanner = KeywordScanner::fromPattern(pattern);
        QVERIFY2(scanner, qPrintable(pattern.left(40)));
        int total = 0;
        for (const QString &text : texts) {
            QVERIFY(KeywordScanner::canScan(text));
            const QList<KeywordScanner::Match> expected = engineMatches(pattern, text);
            QVERIFY2(same(scanner->matches(text), expected), qPrintable(pattern.left(40) + QLatin1Char(' ') + text.left(60)));
            total += int(expected.size());
        }
        QVERIFY(total > 100);
    }

    // Letters whose case variants are ASCII ones (the long s matches "Sub" for the pattern
    // engine), and broken surrogate pairs, go to the pattern engine; so does a pattern the
    // scanner cannot take.
    for (const char16_t c : {u'\u017F', u'\u212A', u'\u0131', u'\xD800', u'\xDC00'})
        QVERIFY(!KeywordScanner::canScan(QStringLiteral("x ") + QChar(c) + QStringLiteral("ub")));
    for (const QString &declined : {QStringLiteral("\\b(Dim|Base Option)\\b"), QStringLiteral("\\b(Di+m)\\b"),
                                    QStringLiteral("\\b(Dim||As)\\b"), QStringLiteral("(Dim|As)"),
                                    QStringLiteral("\\b(Dim|As)\\b|x"), QStringLiteral("\\b(D\u00edm)\\b")})
        QVERIFY2(!KeywordScanner::fromPattern(declined), qPrintable(declined));
    // Such a text still gets the pattern engine's matches: "A" and the long s read as "As" (the
    // long s is no word character, so a word boundary follows it).
    ColouringEngine::Rules rules;
    rules.passes[ColouringEngine::KeywordRole].pattern = KeywordPatterns::vb6Keywords();
    const QString longS = QStringLiteral("A\u017Fub Dim");
    const QList<KeywordScanner::Match> found = ColouringEngine::collect(longS, rules).byRole[ColouringEngine::KeywordRole];
    QCOMPARE(found.size(), 2);
    QCOMPARE(found.at(0).length, 2);
    QVERIFY(same(found, engineMatches(KeywordPatterns::vb6Keywords(), longS)));
}

void TestSyntax::surfaceRewriteAndScroll()
{
    // Rewritten characters keep their own formats (a link inside a comment stays a link, bold
    // stays on its letters), paragraph breaks stay, the selection does not move.
    CoreFixture f;
    EditorSurface &s = f.surface();
    s.setText(QStringLiteral("rem see www.x.com now\nnext"));
    CharFormat link;
    link.linkEffect = true;
    link.locale = kLinkMarkerLocale;
    s.setRangeCharFormat(8, 9, link);
    CharFormat bold;
    bold.bold = true;
    s.setRangeCharFormat(1, 2, bold);
    const QString before = s.rtf();
    s.setSelection(9, 6);
    s.rewriteCharacters({{0, QStringLiteral("REM SEE WWW.X.COM NOW\nNEXT")}, {30, QStringLiteral("zz")}});
    QCOMPARE(s.text(), QStringLiteral("REM SEE WWW.X.COM NOW\nNEXT"));
    QCOMPARE(s.rangeCharFormat(8, 9).linkEffect, std::optional<bool>(true));
    QCOMPARE(s.rangeCharFormat(7, 1).linkEffect, std::optional<bool>(false));
    QCOMPARE(s.rangeCharFormat(1, 2).bold, std::optional<bool>(true));
    QCOMPARE(s.rangeCharFormat(0, 1).bold, std::optional<bool>(false));
    QCOMPARE(s.selStart(), 9);
    QCOMPARE(s.selLength(), 6);
    s.rewriteCharacters({{0, QStringLiteral("rem see www.x.com now\nnext")}});
    QCOMPARE(s.rtf(), before);

    // The line that holds a position becomes the first visible one.
    f.show(300, 120);
    QString lines;
    for (int i = 0; i < 400; ++i)
        lines += QStringLiteral("line %1\n").arg(i);
    s.setText(lines);
    s.scrollToPosition(int(lines.indexOf(QStringLiteral("line 250"))));
    QCOMPARE(s.firstVisibleLine(), 250);
    s.scrollToPosition(0);
    QCOMPARE(s.firstVisibleLine(), 0);
}

void TestSyntax::controlMembersAndUndo()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.resize(400, 200);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    control.setText(QStringLiteral("Dim s As string ' c"));
    const QString before = control.GetRTFString();
    control.setDetectHyperLinks(false);
    QSignalSpy begin(&control, &KvRTB::Begin);
    QSignalSpy ready(&control, &KvRTB::Ready);
    QCOMPARE(control.ProgressPercentage(), short(0));
    control.RichTextBox1().setSelection(4, 0);
    control.ApplyVB6Syntax(Syntax_All_Text, Retain_All_Formatting);
    QCOMPARE(begin.size(), 1);
    QCOMPARE(ready.size(), 1);
    QCOMPARE(control.GetTextString(), QStringLiteral("Dim s As String ' c"));
    QCOMPARE(control.RichTextBox1().selStart(), 4); // the caret is put back
    QCOMPARE(control.ProgressPercentage(), short(0));
    QVERIFY(!control.ProgressBar1()->isVisible());
    QVERIFY(!control.CanCancelSyntax());
    QVERIFY(!control.CanUndo());
    QVERIFY(control.GetCanUndoSpecial());
    control.HyperUndo();
    QCOMPARE(control.GetRTFString(), before);
    // With the default arguments.
    control.ApplyVBNetSyntax();
    QCOMPARE(control.GetTextString(), QStringLiteral("Dim s As String ' c"));
    QCOMPARE(colourOf(control.RichTextBox1(), QStringLiteral("Dim")), Colour(0xFF0000));

    // As a user does it: "Apply VB6 Syntax" from the pop-up menu, then Ctrl+Z takes it back.
    control.setText(QStringLiteral("dim t as long ' x"));
    const QString typed = control.GetRTFString();
    control.setShowVB6Syntax(true);
    QWidget *editor = control.RichTextBox1().widget();
    services.menuAnswers << int(MenuCommand::ApplyVB6Syntax);
    QSignalSpy menuEnd(&control, &KvRTB::MenuVBSyntaxClickEnd);
    QTest::keyClick(editor, Qt::Key_Menu);
    QCOMPARE(menuEnd.size(), 1);
    QCOMPARE(control.GetTextString(), QStringLiteral("Dim t As Long ' x"));
    QCOMPARE(colourOf(control.RichTextBox1(), QStringLiteral("' x")), kComment);
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(control.GetRTFString(), typed);
}

void TestSyntax::commandLine()
{
#ifndef KVRTB_CLI
    QFAIL("The command-line tool is not part of this build.");
#else
    QTemporaryDir dir;
    const auto run = [](const QStringList &args, QString *err = nullptr) {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(KVRTB_CLI), args);
        if (!process.waitForFinished(120000))
            return -1;
        if (err)
            *err = QString::fromUtf8(process.readAllStandardError());
        return process.exitCode();
    };
    const QString input = dir.filePath(QStringLiteral("in.bas"));
    QFile file(input);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Dim s As string\r\nrem lower case\r\nx = \"Dim\"\r\n");
    file.close();
    const QString output = dir.filePath(QStringLiteral("out.rtf"));

    QCOMPARE(run({"colour", "vb6", input, output}), 0);
    CoreFixture f;
    QVERIFY(f.surface().loadFile(output, SurfaceFileType::Rtf));
    QCOMPARE(f.surface().text(), QStringLiteral("Dim s As String\nRem Lower Case\nx = \"Dim\"\n"));
    QCOMPARE(colourOf(f.surface(), QStringLiteral("Dim")), kVB6Keyword);
    QCOMPARE(colourOf(f.surface(), QStringLiteral("Rem Lower")), kComment);

    QCOMPARE(run({"colour", "my", input, output, "--first", "s, x", "--second-pattern", "rem.*", "--keep-formatting"}), 0);
    QVERIFY(f.surface().loadFile(output, SurfaceFileType::Rtf));
    QCOMPARE(f.surface().text(), QStringLiteral("Dim s As string\nrem lower case\nx = \"Dim\"\n"));
    QCOMPARE(colourOf(f.surface(), QStringLiteral("x ="), 0, 1), Colour(0xC00000));
    QCOMPARE(colourOf(f.surface(), QStringLiteral("rem lower")), Colour(0x8000));

    QString err;
    QCOMPARE(run({"colour", "my", input, output, "--third-pattern", "(x"}, &err), 2);
    QVERIFY2(err.contains(QStringLiteral("the pattern of --third is not valid")), qPrintable(err));
    QCOMPARE(run({"colour", "cobol", input, output}, &err), 2);
    QVERIFY(err.contains(QStringLiteral("vb6, vbnet or my")));
    QCOMPARE(run({"colour", "my", input, output}, &err), 2);
    QCOMPARE(run({"colour", "vb6", input, output, "--first", "x"}, &err), 2);
    QCOMPARE(run({"colour", "vb6", dir.filePath(QStringLiteral("missing.bas")), output}, &err), 3); // unreadable input
#endif
}

QTEST_MAIN(TestSyntax)
#include "test_syntax.moc"
