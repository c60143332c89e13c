// RTF formats Qt shows in part or not at all: tab kinds and leaders, paragraph borders and
// shading, capitals and other character effects, the stylesheet's formats, fields other than
// links, bookmarks and the page setup. Each is read, written, and read back the same.

#include "surface/formatmapping.h"
#include "surface/rtf/rtfformats.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"
#include "rtftesthelpers.h"
#include "testregistry.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>

using namespace kvrtb;

namespace {

QByteArray rtfOf(const QByteArray &body)
{
    return "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}" + body + "}";
}

using test::writtenStably;

// The fragments of the document's first paragraph: (text, format).
QList<QPair<QString, QTextCharFormat>> runs(const QTextBlock &block)
{
    QList<QPair<QString, QTextCharFormat>> out;
    for (auto it = block.begin(); !it.atEnd(); ++it)
        out.append({it.fragment().text(), it.fragment().charFormat()});
    return out;
}

QTextCharFormat formatOf(const QTextDocument &doc, const QString &text)
{
    for (QTextBlock block = doc.begin(); block.isValid(); block = block.next()) {
        for (const auto &run : runs(block)) {
            if (run.first.contains(text))
                return run.second;
        }
    }
    return QTextCharFormat();
}

} // namespace

class TestRtfFormats : public QObject {
    Q_OBJECT

private slots:
    void tabKindsBordersAndShading();
    void characterEffectsKeepTheTypedText();
    void stylesheetFormatsAreApplied();
    void fieldsKeepTheirInstruction();
    void bookmarksKeepTheirPlace();
    void pageSetupIsKept();
    void badFormatWordsAreHarmless();
    void libreOfficeReadsWhatWeWrite();
};

void TestRtfFormats::tabKindsBordersAndShading()
{
    QTextDocument doc;
    const QByteArray written = writtenStably(
        doc, rtfOf("\\pard\\tx720\\tqr\\tldot\\tx5000\\tqc\\tlhyph\\tx3000\\tqdec\\tx4000"
                   "\\brdrt\\brdrdb\\brdrw15\\brdrcf1\\brsp40\\box\\brdrs\\brdrw10\\cbpat2\\cfpat1\\shading2500 "
                   "a\\tab b\\tab c\\par\\pard\\cbpat2 plain blue\\par\\pard no format\\par"));
    QCOMPARE(doc.toPlainText(), QStringLiteral("a\tb\tc\nplain blue\nno format"));

    // Qt shows the kinds, in the order of their positions; leaders are kept for the writer.
    const QTextBlockFormat first = doc.begin().blockFormat();
    const QList<QTextOption::Tab> tabs = first.tabPositions();
    QCOMPARE(tabs.size(), 4);
    QCOMPARE(tabs[0].type, QTextOption::LeftTab);
    QCOMPARE(tabs[1].type, QTextOption::CenterTab);
    QCOMPARE(tabs[2].type, QTextOption::DelimiterTab);
    QCOMPARE(tabs[2].delimiter, QLatin1Char('.'));
    QCOMPARE(tabs[3].type, QTextOption::RightTab);
    QCOMPARE(format::readPara(doc.begin()).tabStops.value(), (QList<int>{720, 3000, 4000, 5000}));
    QVERIFY(written.contains("\\tx720\\tqc\\tlhyph\\tx3000\\tqdec\\tx4000\\tqr\\tldot\\tx5000"));

    // \box replaced the top border given before it; all four sides have its border.
    QVERIFY(written.contains("\\brdrt\\brdrs\\brdrw10\\brdrb\\brdrs\\brdrw10\\brdrl\\brdrs\\brdrw10\\brdrr\\brdrs\\brdrw10"));
    QVERIFY(!written.contains("brdrdb"));
    // A quarter of red over blue, and plain blue.
    QCOMPARE(first.background().color(), QColor(64, 0, 191));
    QCOMPARE(doc.begin().next().blockFormat().background().color(), QColor(0, 0, 255));
    QVERIFY(!doc.lastBlock().blockFormat().hasProperty(QTextFormat::BackgroundBrush));
    // Colours are numbered anew in the written colour table, in the order they are used.
    QVERIFY2(written.contains("\\cbpat1\\cfpat2\\shading2500"), written.constData());

    // Borders of a side given alone, and the border words of a table cell leave the paragraph's.
    QTextDocument sides;
    const QByteArray sideWritten = writtenStably(
        sides, rtfOf("\\pard\\brdrb\\brdrdot\\brdrw20\\brdrcf2\\clbrdrt\\brdrth\\brdrw60 under\\par"));
    QVERIFY2(sideWritten.contains("\\pard\\brdrb\\brdrdot\\brdrw20\\brdrcf1\\f1 under"), sideWritten.constData());
    QVERIFY(!sideWritten.contains("brdrth"));

    // Changing the tab stops by hand drops the old kinds with them.
    QTextCursor cursor(&doc);
    ParaFormat change;
    change.tabStops = QList<int>{1440};
    QTextBlockFormat replaced = cursor.blockFormat();
    format::applyParaFields(replaced, change);
    cursor.setBlockFormat(replaced);
    const QByteArray after = rtf::writeRtf(doc);
    QVERIFY(after.contains("\\tx1440") && !after.contains("\\tqr") && !after.contains("\\tldot"));
}

void TestRtfFormats::characterEffectsKeepTheTypedText()
{
    QTextDocument doc;
    const QByteArray written = writtenStably(
        doc, rtfOf("\\pard {\\caps Shout} {\\scaps Small} {\\outl\\cf1 Hollow} {\\shad Shade} {\\expnd4 wide}"
                   " {\\expndtw-10 tight}{\\caps\\caps0 calm}\\plain after\\par"));
    // The letters stay as typed: capitals are shown only.
    QCOMPARE(doc.toPlainText(), QStringLiteral("Shout Small Hollow Shade wide tightcalmafter"));
    QCOMPARE(formatOf(doc, QStringLiteral("Shout")).fontCapitalization(), QFont::AllUppercase);
    QCOMPARE(formatOf(doc, QStringLiteral("Small")).fontCapitalization(), QFont::SmallCaps);
    QCOMPARE(formatOf(doc, QStringLiteral("calm")).fontCapitalization(), QFont::MixedCase);
    const QTextCharFormat hollow = formatOf(doc, QStringLiteral("Hollow"));
    QVERIFY(hollow.boolProperty(rtf::CharOutline));
    QCOMPARE(hollow.textOutline().color(), QColor(255, 0, 0));
    QVERIFY(formatOf(doc, QStringLiteral("Shade")).boolProperty(rtf::CharShadow));
    QCOMPARE(formatOf(doc, QStringLiteral("wide")).fontLetterSpacing(), 20.0 / kTwipsPerPixel);
    QCOMPARE(formatOf(doc, QStringLiteral("wide")).fontLetterSpacingType(), QFont::AbsoluteSpacing);
    QCOMPARE(formatOf(doc, QStringLiteral("tight")).fontLetterSpacing(), -10.0 / kTwipsPerPixel);
    QVERIFY(!formatOf(doc, QStringLiteral("after")).hasProperty(QTextFormat::FontLetterSpacing));
    for (const char *word : {"\\caps Shout", "\\scaps Small", "\\outl", "\\shad Shade", "\\expnd4\\expndtw20 wide",
                             "\\expnd-2\\expndtw-10 tight"})
        QVERIFY2(written.contains(word), word);
    // Shown in capitals, the text reads and writes as typed.
    QVERIFY(written.contains("Shout") && !written.contains("SHOUT"));
}

void TestRtfFormats::stylesheetFormatsAreApplied()
{
    const QByteArray stylesheet = "{\\stylesheet{\\ql\\fs20 Normal;}{\\s1\\qc\\sb240\\brdrb\\brdrs\\tqr\\tx9000\\b\\fs32\\cf1 "
                                  "heading 1;}{\\*\\cs2 \\additive\\i\\cf2 Emphasis;}}";
    QTextDocument doc;
    const QByteArray written = writtenStably(
        doc, rtfOf(stylesheet + "\\pard\\plain\\s1 Title\\par\\pard\\plain\\s1\\b0 Quiet title\\par"
                   "\\pard\\plain Body {\\cs2 stressed} text\\par\\pard\\plain\\s7 unknown style\\par"
                   "\\pard\\s1\\i Styled\\par\\pard Next\\par"));
    QCOMPARE(doc.toPlainText(), QStringLiteral("Title\nQuiet title\nBody stressed text\nunknown style\nStyled\nNext"));
    const format::CharDefaults defaults = format::defaultsOf(doc);
    const CharFormat title = format::readChar(formatOf(doc, QStringLiteral("Title")), defaults);
    QVERIFY(*title.bold);
    QCOMPARE(*title.fontSize, 16.0);
    QCOMPARE(*title.color, Colour(0x0000FF));
    const ParaFormat titlePara = format::readPara(doc.begin());
    QCOMPARE(*titlePara.alignment, ParaAlignment::Center);
    QCOMPARE(*titlePara.spaceBefore, 240);
    QCOMPARE(doc.begin().blockFormat().tabPositions().value(0).type, QTextOption::RightTab);
    QVERIFY(doc.begin().blockFormat().hasProperty(rtf::ParagraphBorders));
    // The words after the style's number change what it gives.
    QVERIFY(!*format::readChar(formatOf(doc, QStringLiteral("Quiet")), defaults).bold);
    const CharFormat stressed = format::readChar(formatOf(doc, QStringLiteral("stressed")), defaults);
    QVERIFY(*stressed.italic);
    QCOMPARE(*stressed.color, Colour(0xFF0000));
    QVERIFY(!*format::readChar(formatOf(doc, QStringLiteral("Body")), defaults).italic);
    QVERIFY(!*format::readChar(formatOf(doc, QStringLiteral("unknown")), defaults).bold);
    // The style's formats end with its paragraph; formats given with the words stay.
    const CharFormat next = format::readChar(formatOf(doc, QStringLiteral("Next")), defaults);
    QVERIFY(*format::readChar(formatOf(doc, QStringLiteral("Styled")), defaults).bold);
    QVERIFY(!*next.bold);
    QVERIFY(*next.italic);
    QCOMPARE(*next.fontSize, *format::readChar(formatOf(doc, QStringLiteral("Body")), defaults).fontSize);

    // The stylesheet is written back once, as read; the formats are written with the text.
    QCOMPARE(written.count(stylesheet), 1);
    QCOMPARE(written.count("\\s1"), 1);
    QVERIFY(written.contains("\\qc\\sb240"));
}

void TestRtfFormats::fieldsKeepTheirInstruction()
{
    QTextDocument doc;
    const QByteArray source = rtfOf(
        "\\pard Page {\\field{\\*\\fldinst { PAGE }}{\\fldrslt {\\b 3}}} of {\\field{\\*\\fldinst NUMPAGES \\\\* MERGEFORMAT}"
        "{\\fldrslt 12}}, {\\field{\\*\\fldinst DATE \\\\@ \"d MMMM yyyy\"}{\\fldrslt 5 May 2020}}"
        "{\\field{\\*\\fldinst TOC \\\\o}{\\fldrslt Contents}}\\par");
    const QByteArray written = writtenStably(doc, source);
    QCOMPARE(doc.toPlainText(), QStringLiteral("Page 3 of 12, 5 May 2020Contents"));
    QCOMPARE(formatOf(doc, QStringLiteral("3")).stringProperty(rtf::FieldInstruction), QStringLiteral("PAGE"));
    QCOMPARE(formatOf(doc, QStringLiteral("May")).stringProperty(rtf::FieldInstruction), QStringLiteral("DATE \\@ \"d MMMM yyyy\""));
    QVERIFY(!formatOf(doc, QStringLiteral("Page")).hasProperty(rtf::FieldInstruction));
    // A table of contents is shown by its result alone.
    QVERIFY(!formatOf(doc, QStringLiteral("Contents")).hasProperty(rtf::FieldInstruction));
    QVERIFY2(written.contains("{\\field{\\*\\fldinst PAGE}{\\fldrslt\\b 3}}"), written.constData());
    QVERIFY(written.contains("{\\field{\\*\\fldinst NUMPAGES \\'5c* MERGEFORMAT}{\\fldrslt 12}}"));
    QVERIFY(written.contains("{\\field{\\*\\fldinst DATE \\'5c@ \"d MMMM yyyy\"}{\\fldrslt 5 May 2020}}"));

    // Neighbouring fields stay two fields; a field in a link's result stays inside the link.
    QTextDocument two;
    const QByteArray twoWritten = writtenStably(
        two, rtfOf("\\pard {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}}{\\field{\\*\\fldinst PAGE}{\\fldrslt 2}} "
                   "{\\field{\\*\\fldinst HYPERLINK \"http://example.com/\"}{\\fldrslt see "
                   "{\\field{\\*\\fldinst PAGEREF here}{\\fldrslt 4}}}}\\par"));
    QCOMPARE(two.toPlainText(), QStringLiteral("12 see 4"));
    QCOMPARE(twoWritten.count("fldinst PAGE}"), 2);
    QVERIFY2(twoWritten.contains("{\\fldrslt see {\\field{\\*\\fldinst PAGEREF here}{\\fldrslt 4}}}}"), twoWritten.constData());

    // Text typed inside a result belongs to the field; deleting the result deletes the field.
    QTextCursor cursor(&doc);
    cursor.setPosition(QStringLiteral("Page 3 of 1").size());
    cursor.insertText(QStringLiteral("0"));
    QVERIFY(rtf::writeRtf(doc).contains("{\\fldrslt 102}}"));
    cursor.setPosition(5);
    cursor.setPosition(6, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    QVERIFY(!rtf::writeRtf(doc).contains("fldinst PAGE"));
}

void TestRtfFormats::bookmarksKeepTheirPlace()
{
    QTextDocument doc;
    const QByteArray written = writtenStably(
        doc, rtfOf("\\pard Intro {\\*\\bkmkstart part}Part{\\*\\bkmkend part} two.{\\*\\bkmkstart atEnd}\\par"
                   "{\\*\\bkmkstart point}{\\*\\bkmkend point}\\pard Go{\\*\\bkmkstart mid}{\\*\\bkmkend mid}ne "
                   "{\\field{\\*\\fldinst HYPERLINK \\\\l \"part\"}{\\fldrslt back}}\\par"
                   "\\pard {\\*\\bkmkend atEnd}\\par"));
    QCOMPARE(doc.toPlainText(), QStringLiteral("Intro Part two.\nGone back\n"));
    QCOMPARE(formatOf(doc, QStringLiteral("P")).anchorNames(), QStringList{QStringLiteral("part")});
    // Each at its place, in the order read; the link points at a bookmark that is there.
    const qsizetype part = written.indexOf("{\\*\\bkmkstart part}");
    QVERIFY(part > written.indexOf("Intro") && part < written.indexOf("Part"));
    const qsizetype partEnd = written.indexOf("{\\*\\bkmkend part}");
    QVERIFY(partEnd > written.indexOf("Part") && partEnd < written.indexOf(" two."));
    QVERIFY(written.indexOf("{\\*\\bkmkstart atEnd}") > written.indexOf("two."));
    QVERIFY(written.indexOf("{\\*\\bkmkstart atEnd}") < written.indexOf("Go"));
    QVERIFY(written.contains("Go{\\*\\bkmkstart mid}{\\*\\bkmkend mid}ne"));
    QVERIFY(written.indexOf("{\\*\\bkmkstart point}{\\*\\bkmkend point}") < written.indexOf("Go"));
    QVERIFY(written.indexOf("{\\*\\bkmkend atEnd}") > written.indexOf("back"));
    QVERIFY(written.contains("HYPERLINK \\'5cl \"part\"}"));
    QCOMPARE(format::readChar(formatOf(doc, QStringLiteral("back")), format::defaultsOf(doc)).linkAddress.value(),
             QStringLiteral("#part"));
    for (const char *name : {"part", "atEnd", "point", "mid"}) {
        QCOMPARE(written.count(QByteArray("{\\*\\bkmkstart ") + name + '}'), 1);
        QCOMPARE(written.count(QByteArray("{\\*\\bkmkend ") + name + '}'), 1);
    }

    // Typing after a bookmark's last character extends it; deleting its text deletes it.
    QTextCursor cursor(&doc);
    cursor.setPosition(QStringLiteral("Intro Part").size());
    cursor.insertText(QStringLiteral("s"));
    QVERIFY(rtf::writeRtf(doc).contains("Parts{\\*\\bkmkend part}"));
    cursor.setPosition(6);
    cursor.setPosition(11, QTextCursor::KeepAnchor);
    cursor.removeSelectedText();
    QVERIFY(!rtf::writeRtf(doc).contains("bkmkstart part"));
}

void TestRtfFormats::pageSetupIsKept()
{
    QTextDocument doc;
    const QByteArray written = writtenStably(
        doc, rtfOf("\\paperw15840\\paperh12240\\margl1000\\margr1100\\margt720\\margb900\\landscape"
                   "\\sectd\\marglsxn1200\\pard text\\sect\\sectd\\marglsxn3000\\pard more\\par"));
    // The first section's margin says more than the document's; later sections do not count.
    QCOMPARE(doc.rootFrame()->frameFormat().property(rtf::PageSetupProperty).value<QList<int>>(),
             (QList<int>{15840, 12240, 1200, 1100, 720, 900, 1}));
    QVERIFY(written.contains("\\paperw15840\\paperh12240\\margl1200\\margr1100\\margt720\\margb900\\landscape\n"));

    QTextDocument none;
    QVERIFY(!writtenStably(none, rtfOf("\\pard text\\par")).contains("paperw"));
    QVERIFY(!none.rootFrame()->frameFormat().hasProperty(rtf::PageSetupProperty));
    // Pasted RTF does not change the document's page.
    QTextCursor cursor(&none);
    QVERIFY(rtf::insertRtf(cursor, rtfOf("\\paperw5000\\pard pasted\\par")).ok);
    QVERIFY(!none.rootFrame()->frameFormat().hasProperty(rtf::PageSetupProperty));
}

void TestRtfFormats::badFormatWordsAreHarmless()
{
    QByteArray body = "\\pard";
    for (int i = 0; i < 200; ++i)
        body += "\\tqdec\\tlth\\tx" + QByteArray::number(i * 10);
    body += "\\brdrw-5\\brdrcf999\\brsp-40\\brdrbtw\\brdrcf999\\brdrw99999\\brdrs\\cbpat999\\shading-3\\cfpat-2"
            "\\expnd-99999\\expndtw2147483647\\s-4\\cs99{\\*\\bkmkend nowhere}{\\*\\bkmkstart {\\b deep}}"
            "{\\*\\bkmkstart}{\\*\\bkmkend}\\paperw-100\\margl99999999 text {\\field{\\*\\fldinst PAGE}}"
            "{\\field{\\*\\fldinst}{\\fldrslt kept}}\\par{\\stylesheet{\\s3\\b late;}}\\pard\\s3 last\\par";
    QTextDocument doc;
    const QByteArray written = writtenStably(doc, rtfOf(body));
    QCOMPARE(doc.toPlainText(), QStringLiteral("text kept\nlast"));
    QCOMPARE(format::readPara(doc.begin()).tabStops.value().size(), 64);
    QVERIFY(!written.startsWith("unstable") && !written.startsWith("not read"));
}

void TestRtfFormats::libreOfficeReadsWhatWeWrite()
{
    // An independent reader finds in our RTF what it finds in the original: LibreOffice's flat
    // document format names each construct.
    const QByteArray source = rtfOf(
        "\\paperw16838\\paperh11906\\margl2000\\margr1000\\margt800\\margb700\\landscape"
        "{\\stylesheet{\\s0 Normal;}{\\s1\\b\\fs32 Heading;}}"
        "\\pard\\s1\\box\\brdrs\\brdrw10\\brsp40\\cbpat2 {\\*\\bkmkstart part}Boxed{\\*\\bkmkend part} heading\\par"
        "\\pard\\tqr\\tldot\\tx6000\\tqc\\tx3000\\tqdec\\tx4500 left\\tab centre\\tab 1.5\\tab right\\par"
        "\\pard\\brdrb\\brdrdb\\brdrw15\\brsp60 ruled\\par\\pard\\tlhyph\\tx2000\\tlul\\tx4000 a\\tab b\\tab c\\par"
        "\\pard {\\caps capitals} {\\scaps small} {\\outl outline} {\\shad shadow} {\\expndtw40 spaced}\\par"
        "\\pard Page {\\field{\\*\\fldinst PAGE}{\\fldrslt 1}} of {\\field{\\*\\fldinst NUMPAGES}{\\fldrslt 1}}, "
        "{\\field{\\*\\fldinst HYPERLINK \\\\l \"part\"}{\\fldrslt back}}\\par"
        "\\trowd\\trleft-108\\trrh400\\cellx2000\\cellx4000\\pard\\intbl a\\cell b\\cell\\row"
        "\\trowd\\trleft-108\\trrh-600\\cellx2000\\cellx4000\\pard\\intbl c\\cell d\\cell\\row\\pard after\\par");
    QTextDocument doc;
    QVERIFY(rtf::readRtf(doc, source).ok);
    QTemporaryDir work;
    QVERIFY(work.isValid());
    const QString original = work.filePath(QStringLiteral("original.rtf"));
    const QString ours = work.filePath(QStringLiteral("ours.rtf"));
    for (const auto &[path, bytes] : {std::pair{original, source}, std::pair{ours, rtf::writeRtf(doc)}}) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    const QString soffice = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (soffice.isEmpty())
        QSKIP("LibreOffice (soffice) is not installed: no independent reader to compare with");
    QProcess process;
    process.start(soffice, {QStringLiteral("-env:UserInstallation=file://") + work.filePath(QStringLiteral("profile")),
                            QStringLiteral("--headless"), QStringLiteral("--convert-to"), QStringLiteral("fodt"),
                            QStringLiteral("--outdir"), work.path(), original, ours});
    QVERIFY(process.waitForFinished(240000));
    const auto read = [&work](const QString &name) {
        QFile file(work.filePath(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    };
    const QString theirs = read(QStringLiteral("original.fodt"));
    const QString mine = read(QStringLiteral("ours.fodt"));
    QVERIFY(!theirs.isEmpty() && !mine.isEmpty());
    const QStringList constructs{
        QStringLiteral(R"(fo:page-width="[^"]+")"), QStringLiteral(R"(fo:margin-top="[^"]+" fo:margin-bottom="[^"]+" fo:margin-left="[^"]+" fo:margin-right="[^"]+")"),
        QStringLiteral(R"(style:print-orientation="landscape")"),
        QStringLiteral(R"(style:type="right"[^>]*style:leader-style="dotted")"), QStringLiteral(R"(style:type="center")"),
        QStringLiteral(R"(style:type="char")"), QStringLiteral(R"(fo:border="[^n"][^"]*")"),
        QStringLiteral(R"(fo:padding="[^"]+")"), QStringLiteral(R"(fo:border-bottom="[^"]*double[^"]*")"),
        QStringLiteral(R"(style:leader-text="-")"), QStringLiteral(R"(style:leader-text="_")"),
        QStringLiteral(R"(fo:background-color="#0000ff")"), QStringLiteral(R"(fo:text-transform="uppercase")"),
        QStringLiteral(R"(fo:font-variant="small-caps")"), QStringLiteral(R"(style:text-outline="true")"),
        QStringLiteral(R"(fo:text-shadow="[^n"][^"]*")"), QStringLiteral(R"(fo:letter-spacing="[^n"][^"]*")"),
        QStringLiteral("<text:page-number"), QStringLiteral("<text:page-count"),
        QStringLiteral(R"(<text:bookmark-start text:name="part")"), QStringLiteral(R"(xlink:href="#part")"),
        QStringLiteral(R"(style:min-row-height="[^"]+")"), QStringLiteral(R"(style:row-height="[^"]+")"),
        QStringLiteral(R"(<style:table-properties [^>]*fo:margin-left="-[^"]+")"),
    };
    for (const QString &construct : constructs) {
        const QRegularExpression pattern(construct);
        const auto found = [&pattern](const QString &text) {
            QStringList matches;
            for (auto it = pattern.globalMatch(text); it.hasNext();)
                matches << it.next().captured();
            return matches;
        };
        QVERIFY2(!found(theirs).isEmpty(), qPrintable(construct + QStringLiteral(" is not in the original")));
        QVERIFY2(!found(mine).isEmpty(), qPrintable(construct + QStringLiteral(" is lost in ours")));
        QCOMPARE(found(mine).first(), found(theirs).first());
    }
}

KVRTB_REGISTER_TEST(TestRtfFormats)
#include "test_rtfformats.moc"
