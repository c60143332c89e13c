// Address patterns, link marking, hit tests and the linking pass while typing, on the real
// surface under the offscreen platform.

#include "corefixture.h"
#include "control/kvrtb.h"
#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "editing/specialundo.h"
#include "hyperlinks/addresspatterns.h"
#include "hyperlinks/hyperlinks.h"

#include <QTextEdit>
#include <QtTest>
#include <QWidget>

using namespace kvrtb;

namespace {

struct Control : test::CoreFixture {
    Hyperlinks &links() { return core.hyperlinks(); }
};

/// The linked ranges of the document as "start+length" items: runs of characters that carry
/// both the link effect and the marker.
QStringList linkedRuns(EditorSurface &surface)
{
    QStringList runs;
    int runStart = -1;
    const int length = surface.textLength();
    for (int p = 0; p <= length; ++p) {
        bool linked = false;
        if (p < length && surface.textRange(p, 1) != QStringLiteral("\n")) {
            const CharFormat f = surface.rangeCharFormat(p, 1);
            linked = f.hasLinkMarker() && f.linkEffect.value_or(false);
        }
        if (linked && runStart < 0)
            runStart = p;
        if (!linked && runStart >= 0) {
            runs << surface.textRange(runStart, p - runStart);
            runStart = -1;
        }
    }
    return runs;
}

/// The extra selections of \a editor that set a text colour, as "text=colour" items.
QStringList colouredSelections(QTextEdit *editor)
{
    QStringList items;
    for (const QTextEdit::ExtraSelection &selection : editor->extraSelections()) {
        if (selection.format.hasProperty(QTextFormat::ForegroundBrush))
            items << selection.cursor.selectedText() + QLatin1Char('=') + selection.format.foreground().color().name();
    }
    return items;
}

QStringList matchTexts(const QRegularExpression &pattern, const QString &text)
{
    QStringList texts;
    for (const AddressMatch &m : AddressPatterns::matches(pattern, text)) {
        if (text.mid(m.start, m.length) != m.text)
            return {QStringLiteral("offset mismatch")};
        texts << m.text;
    }
    return texts;
}

} // namespace

class TestHyperlinks : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        threadState() = ThreadState();
    }

    void linkPattern_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("www plus two") << "go to www.ab now" << QStringList();
        QTest::newRow("www plus three") << "go to www.abc now" << QStringList{"www.abc"};
        QTest::newRow("www any case") << "WwW.Example.COM" << QStringList{"WwW.Example.COM"};
        QTest::newRow("top part of one letter") << "me@host.c" << QStringList();
        QTest::newRow("top part of two letters") << "me@host.co" << QStringList{"me@host.co"};
        QTest::newRow("top part of four letters") << "me@host.info" << QStringList{"me@host.info"};
        QTest::newRow("top part of five letters") << "me@host.abcde" << QStringList();
        QTest::newRow("scheme without slashes") << "http:example.com" << QStringList();
        QTest::newRow("scheme with one slash") << "ftp:/example.com" << QStringList();
        QTest::newRow("scheme with two body chars") << "http://ab" << QStringList();
        QTest::newRow("scheme with three body chars") << "http://abc" << QStringList{"http://abc"};
        QTest::newRow("scheme with backslashes") << R"(file:\\server\share)" << QStringList{R"(file:\\server\share)"};
        QTest::newRow("ms-help scheme") << "ms-help://topic" << QStringList{"ms-help://topic"};
        QTest::newRow("range plus to equals") << "http://a.com/x,y<z>w" << QStringList{"http://a.com/x,y<z"};
        QTest::newRow("e-mail first, text order")
            << "mail me@host.org or see https://kvrtb.org/a?b=1 and www.x.com"
            << QStringList{"me@host.org", "https://kvrtb.org/a?b=1", "www.x.com"};
        QTest::newRow("non-ASCII letters end the body") << "www.abc\u00E9def" << QStringList{"www.abc"};
    }

    void linkPattern()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        QCOMPARE(matchTexts(AddressPatterns::link(), text), expected);
        // The link pattern is the two others together: each of its matches is one of theirs.
        QStringList separate = matchTexts(AddressPatterns::email(), text) + matchTexts(AddressPatterns::url(), text);
        for (const QString &m : expected)
            QVERIFY2(separate.contains(m), qPrintable(m));
    }

    void quickRejection()
    {
        QVERIFY(AddressPatterns::quickReject(QStringLiteral("plain words only")));
        QVERIFY(!AddressPatterns::quickReject(QStringLiteral("a@b")));
        QVERIFY(!AddressPatterns::quickReject(QStringLiteral("time: 10")));
        QVERIFY(!AddressPatterns::quickReject(QStringLiteral("WwW")));
        // A huge text made of address characters with no address ends, with no match.
        const QString hostile = QStringLiteral("www.") + QString(300000, QLatin1Char('.'));
        QCOMPARE(matchTexts(AddressPatterns::link(), QStringLiteral("x ") + hostile.left(5)).size(), 0);
        QCOMPARE(matchTexts(AddressPatterns::link(), hostile).size(), 1);
    }

    void patternsOnHostileText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        const QString tail = QStringLiteral(" me@host.org");
        QTest::newRow("www. repeated") << QStringLiteral("www.").repeated(25000) + tail
                                       << QStringList{QStringLiteral("www.").repeated(25000), "me@host.org"};
        QTest::newRow("schemes repeated") << QStringLiteral("ftp://").repeated(15000) + QStringLiteral("abc") + tail
                                          << QStringList{QStringLiteral("ftp://").repeated(15000) + "abc", "me@host.org"};
        QTest::newRow("www. repeated, short body") << QStringLiteral("www.").repeated(25000).chopped(1) + tail
                                                   << QStringList{QStringLiteral("www.").repeated(25000).chopped(1), "me@host.org"};
        QTest::newRow("at signs") << QString(100000, QLatin1Char('@')) + tail << QStringList{"me@host.org"};
        QTest::newRow("dotted local part") << QStringLiteral("a.").repeated(50000) + QStringLiteral("@b.x") + tail
                                           << QStringList{"me@host.org"};
        QTest::newRow("no address") << QStringLiteral("plain: words and more ").repeated(20000) << QStringList();
    }

    void patternsOnHostileText()
    {
        // Long runs the engine must neither give up on (which would lose the addresses after
        // them) nor take long over.
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        QCOMPARE(matchTexts(AddressPatterns::link(), text), expected);
    }

    void engineFormFindsWhatThePatternsFind()
    {
        // The compiled web-address patterns take the scheme group once; on texts short enough
        // for the engine, they find exactly what the patterns as written find.
        const QRegularExpression url(AddressPatterns::urlPatternText(), QRegularExpression::CaseInsensitiveOption);
        const QRegularExpression link(AddressPatterns::linkPatternText(), QRegularExpression::CaseInsensitiveOption);
        QVERIFY(url.isValid() && link.isValid());
        const QStringList pieces{"www.", "WWW", "http", "https", "s", "ftp", "ms-help", "file", ":", "//", "/",
                                 "\\\\", "\\", ".", "a", "b1", "@", "x.org", " ", ",", "<", "-", "\u00E9", "=", ">"};
        quint32 seed = 12345;
        const auto next = [&seed] {
            seed = seed * 1103515245u + 12345u;
            return (seed >> 16) & 0x7FFF;
        };
        int compared = 0;
        int withMatches = 0;
        for (int round = 0; round < 20000; ++round) {
            QString text;
            const int count = 1 + int(next() % 12);
            for (int i = 0; i < count; ++i)
                text += pieces.at(int(next() % pieces.size()));
            const QStringList exactUrl = matchTexts(url, text);
            const QStringList exactLink = matchTexts(link, text);
            QCOMPARE(matchTexts(AddressPatterns::url(), text), exactUrl);
            QCOMPARE(matchTexts(AddressPatterns::link(), text), exactLink);
            withMatches += exactLink.isEmpty() ? 0 : 1;
            ++compared;
        }
        QVERIFY(withMatches > 1000);
        QCOMPARE(compared, 20000);
    }

    void hyperLinkDocumentMarksEveryMatch()
    {
        Control c;
        c.surface().setText(QStringLiteral("Write to me@host.org\nor see www.kvrtb.org today, not www.ab\nhttp://x.io/p"));
        c.surface().setSelection(3, 4);
        c.links().HyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()), (QStringList{"me@host.org", "www.kvrtb.org", "http://x.io/p"}));
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        // The caret is back where it was, nothing selected; the surface's undo holds nothing.
        QCOMPARE(c.surface().selStart(), 3);
        QCOMPARE(c.surface().selLength(), 0);
        QVERIFY(!c.surface().canUndo());
        QCOMPARE(c.surface().freezeCount(), 0);
        QCOMPARE(c.services.busyDepth, 0);
        QVERIFY(c.services.maxBusyDepth > 0);
        QCOMPARE(threadState().lastUndoKind, 1);
        QVERIFY(!threadState().linkingInProgress);
        // The link keeps the address it points at.
        QCOMPARE(c.surface().rangeCharFormat(9, 3).linkAddress.value_or(QString()), QStringLiteral("mailto:me@host.org"));
        QCOMPARE(c.surface().rangeCharFormat(29, 3).linkAddress.value_or(QString()), QStringLiteral("http://www.kvrtb.org"));
        QCOMPARE(c.surface().rangeCharFormat(61, 3).linkAddress.value_or(QString()), QStringLiteral("http://x.io/p"));
        // The user's underline is untouched by the link effect.
        QCOMPARE(c.surface().rangeCharFormat(9, 3).underline.value_or(true), false);
    }

    void hyperLinkDocumentQuickRejection()
    {
        Control c;
        c.surface().setText(QStringLiteral("nothing to link here"));
        c.links().HyperLinkDocument();
        QCOMPARE(c.events.names, QStringList{"Begin"});
        QVERIFY(!c.surface().rangeCharFormat(0, -1).hasLinkMarker());
        QCOMPARE(c.services.busyDepth, 0);

        // A colon lets the pass run; no match still ends with Finish and Ready.
        c.events.names.clear();
        c.surface().setText(QStringLiteral("time: 10 o'clock"));
        c.links().HyperLinkDocument();
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QCOMPARE(linkedRuns(c.surface()), QStringList());
    }

    void passesStandAside()
    {
        Control c;
        c.surface().setText(QStringLiteral("see www.kvrtb.org"));
        // A pass already running: the second only reports its end.
        threadState().linkingInProgress = true;
        c.links().HyperLinkDocument();
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready"}));
        QCOMPARE(linkedRuns(c.surface()), QStringList());
        threadState().linkingInProgress = false;
        // The undo rewriting the document stops the marking loop.
        threadState().rewriteInProgress = true;
        c.links().HyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()), QStringList());
        threadState().rewriteInProgress = false;
        c.links().HyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()), QStringList{"www.kvrtb.org"});
    }

    void unHyperLinkDocument()
    {
        Control c;
        c.surface().setText(QStringLiteral("see www.kvrtb.org and me@host.org"));
        c.links().HyperLinkDocument();
        c.surface().setSelection(2, 3);
        // While automatic detection is on, unlinking would only be undone again: nothing changes.
        c.links().UnHyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()).size(), 2);
        c.core.properties().DetectHyperLinks = false;
        c.links().UnHyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()), QStringList());
        const CharFormat all = c.surface().rangeCharFormat(0, -1);
        QCOMPARE(all.linkEffect.value_or(true), false);
        QCOMPARE(all.locale.value_or(0), 1033);
        QCOMPARE(c.surface().selStart(), 2);
        QCOMPARE(c.surface().selLength(), 3);
        QVERIFY(!c.surface().canUndo());
    }

    void hyperLinkSelected()
    {
        Control c;
        c.surface().setText(QStringLiteral("call the office now"));
        c.links().HyperLinkSelected(9, 6);
        QCOMPARE(linkedRuns(c.surface()), QStringList{"office"});
        QCOMPARE(c.surface().selStart(), 9);
        QCOMPARE(c.surface().selLength(), 0);
        QVERIFY(c.events.names.isEmpty());
    }

    void hitTests()
    {
        Control c;
        c.surface().setText(QStringLiteral("a me@host.org b www.kvrtb.org c x@y.com"));
        // Link only the first two; the last e-mail address matches but never gets the marker.
        c.links().HyperLinkSelected(2, 11);
        c.links().HyperLinkSelected(16, 13);

        QString address = QStringLiteral("untouched");
        c.surface().setSelStart(5);
        QVERIFY(c.links().DetectEmailZone(5, &address));
        QCOMPARE(address, QStringLiteral("me@host.org"));
        QVERIFY(!c.links().DetectURLZone(5, &address));

        c.surface().setSelStart(20);
        QVERIFY(c.links().DetectURLZone(20, &address));
        QCOMPARE(address, QStringLiteral("www.kvrtb.org"));
        // The last character of a match still hits; the one after it does not.
        c.surface().setSelStart(28);
        QVERIFY(c.links().DetectURLZone(28, &address));
        c.surface().setSelStart(29);
        QVERIFY(!c.links().DetectURLZone(29, &address));

        // Matching text without the marker is no link.
        address = QStringLiteral("untouched");
        c.surface().setSelStart(36);
        QVERIFY(!c.links().DetectEmailZone(36, &address));
        QCOMPARE(address, QStringLiteral("untouched"));

        // While the user acts, matches are passed over unexamined.
        c.services.pendingInput = true;
        c.surface().setSelStart(5);
        QVERIFY(!c.links().DetectEmailZone(5, &address));
        QCOMPARE(address, QStringLiteral("untouched"));
    }

    void openingAddresses()
    {
        Control c;
        c.links().GoToWebsite(QString());
        c.links().GoToEmailClient(QString());
        QVERIFY(c.services.openedAddresses.isEmpty());
        c.links().GoToWebsite(QStringLiteral("www.kvrtb.org"));
        c.links().GoToEmailClient(QStringLiteral("me@host.org"));
        QCOMPARE(c.services.openedAddresses, (QStringList{"www.kvrtb.org", "mailto:me@host.org"}));
        QCOMPARE(c.services.processEventsCalls, 0);

        c.services.openAddressSucceeds = false;
        QString error;
        c.links().GoToWebsite(QStringLiteral("www.kvrtb.org"), &error);
        QCOMPARE(error, c.services.openAddressError);
        QCOMPARE(c.services.processEventsCalls, 1);
    }

    void currentLinePass()
    {
        Control c;
        c.surface().setText(QStringLiteral("first www.one.org\nplain words\nsecond "));
        c.surface().setSelStart(c.surface().textLength());
        QTest::keyClicks(c.surface().widget(), QStringLiteral("me@host.org and more"));
        const int caret = c.surface().selStart();
        c.links().HyperLinkCurrentLine();
        // Only the caret's line is linked.
        QCOMPARE(linkedRuns(c.surface()), QStringList{"me@host.org"});
        QCOMPARE(c.surface().selStart(), caret);
        QCOMPARE(c.surface().selLength(), 0);
        QVERIFY(!c.surface().canUndo());
        // The pass raises no events of its own: these are the undo round trip's two steps.
        QCOMPARE(c.events.names, (QStringList{"Begin", "Finish", "Ready", "Begin", "Finish", "Ready"}));
        // The snapshot is the document before the typing: it can be restored by the control's undo.
        QVERIFY(threadState().specialUndo.available);
        QVERIFY(SpecialUndo::snapshotText().contains(QLatin1String("second")));
        QVERIFY(!SpecialUndo::snapshotText().contains(QLatin1String("host")));
        QCOMPARE(c.surface().text(), QStringLiteral("first www.one.org\nplain words\nsecond me@host.org and more"));

        // A line with nothing that could be an address: no snapshot, no change.
        threadState().specialUndo = SpecialUndoSlot();
        c.surface().setSelStart(20);
        c.links().HyperLinkCurrentLine();
        QVERIFY(!threadState().specialUndo.available);
    }

    void typingAfterTrailingLink()
    {
        Control c;
        c.surface().setText(QStringLiteral("see www.kvrtb.org"));
        c.links().HyperLinkDocument();
        c.surface().setSelStart(c.surface().textLength());
        c.links().ClearTrailingLinkMarker(c.surface().selStart());
        QTest::keyClicks(c.surface().widget(), QStringLiteral(" ok"));
        QCOMPARE(c.surface().text(), QStringLiteral("see www.kvrtb.org ok"));
        QVERIFY(!c.surface().rangeCharFormat(17, 3).hasLinkMarker());
        QVERIFY(c.surface().rangeCharFormat(4, 13).hasLinkMarker());
    }

    void largeDocumentSwitchesLinkingOff()
    {
        Control c;
        QString big;
        big.reserve(Hyperlinks::kLargeDocumentRtfLength + 100);
        while (big.size() < Hyperlinks::kLargeDocumentRtfLength + 10)
            big += QStringLiteral("plain words and more plain words www.kvrtb.org\n");
        c.surface().setText(big);
        c.surface().setSelStart(5);
        c.links().HyperLinkCurrentLine();
        QVERIFY(!c.core.properties().DetectHyperLinks);
        QVERIFY(!threadState().detectHyperLinks);
        const auto boxes = c.services.callsOf(QStringLiteral("messageBox"));
        QCOMPARE(boxes.size(), 1);
        QCOMPARE(boxes.first().title, QStringLiteral("Automatic Hyperlinking Disabled"));
        QCOMPARE(boxes.first().text,
                 QStringLiteral("The current file is very large or contains images, automatic hyperlinking has been "
                                "disabled to improve performance.\r\nSimply click the Detect Hyperlinks button to "
                                "use hyperlinking as needed."));
        QCOMPARE(boxes.first().icon, int(MessageIcon::Information));
        QCOMPARE(boxes.first().buttons, int(MessageButtons::OK));
        QVERIFY(c.events.names.contains(QStringLiteral("Changed:DetectHyperLinks")));
        QVERIFY(!c.surface().rangeCharFormat(33, 13).hasLinkMarker());
    }

    void largeDocumentLimitIsExact()
    {
        // A document whose RTF is exactly at the limit keeps linking; one character more, or a
        // format change that lengthens the RTF, switches it off at the next pass, also when the
        // change was made while the display is frozen.
        Control c;
        const QString paragraph = QStringLiteral("plain words and more plain words of the same kind\n");
        QString text = paragraph.repeated(Hyperlinks::kLargeDocumentRtfLength / 200) + QLatin1Char('x');
        c.surface().setText(text);
        const qsizetype missing = Hyperlinks::kLargeDocumentRtfLength - c.surface().rtf().size();
        QVERIFY(missing > 0);
        text += QString(int(missing), QLatin1Char('x')); // plain letters in the last paragraph: one RTF character each
        c.surface().setText(text);
        QCOMPARE(c.surface().rtf().size(), qsizetype(Hyperlinks::kLargeDocumentRtfLength));
        const auto passAt = [&c](int position) {
            c.surface().setSelStart(position);
            c.links().HyperLinkCurrentLine();
            return c.boxes().size();
        };
        QCOMPARE(passAt(10), 0);
        QCOMPARE(passAt(20), 0); // the caret moved, the document did not
        QVERIFY(c.core.properties().DetectHyperLinks);

        c.surface().freeze();
        CharFormat bold;
        bold.bold = true;
        c.surface().setRangeCharFormat(0, 5, bold);
        QCOMPARE(passAt(10), 1);
        c.surface().unfreeze();
        QVERIFY(!c.core.properties().DetectHyperLinks);

        // A document just at the limit again, then one character typed into it.
        Control d;
        d.surface().setText(text);
        d.surface().setSelStart(5);
        d.links().HyperLinkCurrentLine();
        QCOMPARE(d.boxes().size(), 0);
        d.surface().setSelStart(d.surface().textLength());
        QTest::keyClicks(d.surface().widget(), QStringLiteral("y"));
        d.links().HyperLinkCurrentLine();
        QCOMPARE(d.boxes().size(), 1);
    }

    void darkPaletteShowsLinksInTheLinkColour()
    {
        // In a dark palette a link is painted in the palette's link colour (made lighter until
        // it reads on the base), whatever colour is stored with it; the stored colour, the RTF,
        // the undo and the changed flag stay as they were. A light palette paints nothing.
        RecordingPlatformServices services;
        KvRTB control(services);
        control.resize(500, 200);
        control.show();
        QVERIFY(QTest::qWaitForWindowExposed(&control));
        control.setText(QStringLiteral("See www.example.com or write to a@b.org now."));
        control.setDetectHyperLinks(true);
        control.setSelStart(4);
        control.setSelLength(15);
        control.setSelColor(0x000080); // a dark red, unreadable on a dark base
        control.HyperLinkDocument();
        control.EmptyRTBUndoRedoBuffer();
        control.SetRTBChanged(false);
        auto *editor = qobject_cast<QTextEdit *>(control.RichTextBox1().widget());
        QVERIFY(colouredSelections(editor).isEmpty());
        const QString rtf = control.TextRTF();

        const QPalette light = editor->palette();
        QPalette dark = light;
        dark.setColor(QPalette::Base, QColor(30, 30, 30));
        dark.setColor(QPalette::Text, QColor(230, 230, 230));
        dark.setColor(QPalette::Link, QColor(0, 0, 255));
        editor->setPalette(dark);
        const QStringList painted = colouredSelections(editor);
        QCOMPARE(painted.size(), 2);
        QVERIFY(painted.at(0).startsWith(QStringLiteral("www.example.com=")));
        QVERIFY(painted.at(1).startsWith(QStringLiteral("a@b.org=")));
        const QColor link(painted.at(0).section(QLatin1Char('='), 1));
        QCOMPARE(link.hslHue(), QColor(0, 0, 255).hslHue());
        QVERIFY2(link.lightness() > 150, qPrintable(link.name()));
        QCOMPARE(control.TextRTF(), rtf);
        QCOMPARE(control.CanUndo(), false);
        QCOMPARE(control.HasRTBChanged(), false);
        control.setSelStart(4);
        control.setSelLength(3);
        QCOMPARE(control.SelColor().toUInt(), 0x000080u); // the link's own colour, as stored

        // A link typed in the dark palette is painted too; a link colour that already reads is
        // kept as the palette gives it.
        dark.setColor(QPalette::Link, QColor(110, 170, 255));
        editor->setPalette(dark);
        control.setSelStart(control.Text().size());
        QTest::keyClicks(editor, QStringLiteral(" www.other.net "));
        QCOMPARE(colouredSelections(editor),
                 (QStringList{"www.example.com=#6eaaff", "a@b.org=#6eaaff", "www.other.net=#6eaaff"}));

        // Back to a light palette: links keep their own colour again.
        editor->setPalette(light);
        QVERIFY(colouredSelections(editor).isEmpty());
    }

    void caretAndScrollComeBack()
    {
        Control c;
        QWidget *view = c.surface().widget();
        view->resize(400, 200);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view));
        QString text;
        for (int i = 0; i < 200; ++i)
            text += QStringLiteral("line %1 with me%1@host.org inside\n").arg(i);
        c.surface().setText(text);
        c.surface().scrollLines(80);
        const int first = c.surface().firstVisibleLine();
        QVERIFY(first > 50);
        const int caret = c.surface().lineIndex(first + 2) + 3;
        c.surface().setSelStart(caret);
        c.links().HyperLinkDocument();
        QCOMPARE(linkedRuns(c.surface()).size(), 200);
        QCOMPARE(c.surface().firstVisibleLine(), first);
        QCOMPARE(c.surface().selStart(), caret);
        QCOMPARE(c.surface().selLength(), 0);
    }
};

QTEST_MAIN(TestHyperlinks)
#include "test_hyperlinks.moc"
