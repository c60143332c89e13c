// The Qt editor surface on a real QTextEdit: lines, selection conventions, formats, undo,
// the modified flag, find, Span/UpTo, freeze, and clamping of bad positions.

#include "core/editorsurface.h"
#include "surface/qtplatformservices.h"
#include "core/recordingplatformservices.h"
#include "surface/qteditorsurface.h"
#include "surface/surfacetextedit.h"

#include <QApplication>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>

using namespace kvrtb;

namespace {

// A listener that counts what the surface reports.
struct CountingListener : SurfaceListener {
    int selChanges = 0;
    int changes = 0;
    int swallowKey = 0; // key code to swallow in keyDown
    void selChange() override { ++selChanges; }
    void change() override { ++changes; }
    void keyDown(int &keyCode, int &shift) override
    {
        if (keyCode == swallowKey) {
            keyCode = 0;
            shift = 0;
        }
    }
};

} // namespace

class TestQtEditorSurface : public QObject {
    Q_OBJECT

private:
    // A shown surface of a known width, so that wrapping is predictable.
    std::unique_ptr<QtEditorSurface> makeSurface(int width = 300)
    {
        auto surface = std::make_unique<QtEditorSurface>();
        surface->widget()->resize(width, 200);
        surface->widget()->show();
        QFont font(QStringLiteral("Liberation Mono"));
        font.setPointSize(10);
        surface->setFont(font);
        return surface;
    }

private slots:
    void textAndParagraphBreaks()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("one\r\ntwo\rthree\nfour"));
        QCOMPARE(s->text(), QStringLiteral("one\ntwo\nthree\nfour"));
        QCOMPARE(s->textLength(), 18);
        QCOMPARE(s->textRange(4, 3), QStringLiteral("two"));
        QCOMPARE(s->textRange(2, 3), QStringLiteral("e\nt"));
        // Out-of-range ranges are clamped, never an error.
        QCOMPARE(s->textRange(15, 100), QStringLiteral("our"));
        QCOMPARE(s->textRange(-5, 3), QStringLiteral("one"));
        QCOMPARE(s->textRange(100, 3), QString());
        // Only the paragraph break becomes a line feed: no-break spaces and line separators
        // read back as they were written, in the whole text, a range and the selection.
        const QString special = QStringLiteral("a\u00A0b\u2028c\nd");
        s->setText(special);
        QCOMPARE(s->text(), special);
        QCOMPARE(s->textLength(), 7);
        QCOMPARE(s->textRange(1, 3), QStringLiteral("\u00A0b\u2028"));
        s->setSelection(0, -1);
        QCOMPARE(s->selectedText(), special);
        // New text takes the default format, whatever stood at the caret before.
        CharFormat bold;
        bold.bold = true;
        s->setSelection(0, -1);
        s->setSelectionCharFormat(bold);
        s->setText(QStringLiteral("fresh"));
        QCOMPARE(s->rangeCharFormat(0, 5).bold, std::optional<bool>(false));
        QCOMPARE(s->selStart(), 0);
    }

    void selectionConventions()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("hello world"));
        s->setSelection(6, -1);
        QCOMPARE(s->selStart(), 6);
        QCOMPARE(s->selLength(), 5);
        QCOMPARE(s->selectedText(), QStringLiteral("world"));
        s->setSelection(0, -1);
        QCOMPARE(s->selLength(), 11);
        s->setSelection(-3, 2);
        QCOMPARE(s->selStart(), 0);
        QCOMPARE(s->selLength(), 2);
        s->setSelection(50, 5);
        QCOMPARE(s->selStart(), 11);
        QCOMPARE(s->selLength(), 0);
        s->setSelection(3, 2);
        s->setSelLength(-1);
        QCOMPARE(s->selStart(), 3);
        QCOMPARE(s->selLength(), 8);
        s->setSelStart(4);
        QCOMPARE(s->selLength(), 0);
        s->setSelection(0, 5);
        s->replaceSelection(QStringLiteral("goodbye\r\ncruel"));
        QCOMPARE(s->text(), QStringLiteral("goodbye\ncruel world"));
        QCOMPARE(s->selStart(), 13);
        QCOMPARE(s->selLength(), 0);
    }

    void linesWithAndWithoutWrapping()
    {
        auto s = makeSurface(200);
        // One long paragraph, one short one, one empty one at the end.
        const QString longParagraph = QStringLiteral("alpha beta gamma delta epsilon zeta eta theta iota kappa lambda mu");
        s->setText(longParagraph + QStringLiteral("\nshort\n"));

        s->setWrap(WrapMode::None);
        QCOMPARE(s->lineCount(), 3);
        QCOMPARE(s->lineIndex(0), 0);
        QCOMPARE(s->lineIndex(1), int(longParagraph.size()) + 1);
        QCOMPARE(s->lineIndex(2), int(longParagraph.size()) + 7);
        QCOMPARE(s->lineIndex(3), -1);
        QCOMPARE(s->lineLength(0), int(longParagraph.size()));
        QCOMPARE(s->lineLength(s->lineIndex(1)), 5);
        QCOMPARE(s->lineLength(s->lineIndex(2)), 0);
        QCOMPARE(s->lineFromChar(int(longParagraph.size()) + 3), 1);

        s->setWrap(WrapMode::Window);
        const int wrapped = s->lineCount();
        QVERIFY2(wrapped >= 5, qPrintable(QStringLiteral("a wrapped paragraph gives display lines, got %1").arg(wrapped)));
        // Display lines of the first paragraph cover it exactly, in order.
        int covered = 0;
        for (int line = 0; line < wrapped - 2; ++line) {
            QCOMPARE(s->lineIndex(line), covered);
            QCOMPARE(s->lineFromChar(covered), line);
            covered += s->lineLength(s->lineIndex(line));
        }
        QCOMPARE(covered, int(longParagraph.size()));
        QCOMPARE(s->lineIndex(wrapped - 2), int(longParagraph.size()) + 1);
        QCOMPARE(s->lineLength(s->lineIndex(wrapped - 2)), 5);

        // A fixed wrap width wider than the window gives fewer lines than the window does.
        s->setWrap(WrapMode::Width, 1440 * 20);
        QCOMPARE(s->lineCount(), 3);

        // A manual line break starts a display line of its own even without wrapping.
        s->setWrap(WrapMode::None);
        s->setSelection(0, 0);
        s->replaceSelection(QString());
        auto *doc = s->document();
        QTextCursor cursor(doc);
        cursor.setPosition(5);
        cursor.insertText(QString(QChar::LineSeparator));
        QCOMPARE(s->lineCount(), 4);
        QCOMPARE(s->lineLength(0), 5);
        QCOMPARE(s->text().left(6), QStringLiteral("alpha\u2028"));
    }

    void minusOneConventionsAndEmptyDocument()
    {
        auto s = makeSurface();
        QCOMPARE(s->lineCount(), 1);
        QCOMPARE(s->lineIndex(0), 0);
        QCOMPARE(s->lineIndex(-1), 0);
        QCOMPARE(s->lineLength(-1), 0);
        QCOMPARE(s->lineFromChar(-1), 0);
        QCOMPARE(s->lineIndex(1), -1);

        s->setWrap(WrapMode::None);
        s->setText(QStringLiteral("first\nsecond line\nthird"));
        s->setSelection(8, 0); // in "second line"
        QCOMPARE(s->lineIndex(-1), 6);
        QCOMPARE(s->lineLength(-1), 11);
        QCOMPARE(s->lineFromChar(-1), 1);
        // -1 for lineFromChar is the line of the selection's start, even when the caret is
        // further on.
        s->setSelection(2, 20);
        QCOMPARE(s->lineFromChar(-1), 0);
        QCOMPARE(s->lineIndex(-1), 18); // the caret is at the selection's end
        // Positions past the end are clamped.
        QCOMPARE(s->lineFromChar(1000), 2);
    }

    void mixedFormatReads()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("plain bold plain"));
        CharFormat bold;
        bold.bold = true;
        bold.color = 0x0000FF;
        s->setRangeCharFormat(6, 4, bold);

        s->setSelection(6, 4);
        CharFormat read = s->selectionCharFormat();
        QCOMPARE(read.bold, std::optional<bool>(true));
        QCOMPARE(read.color, std::optional<Colour>(0x0000FFu));
        QCOMPARE(read.italic, std::optional<bool>(false));

        s->setSelection(3, 6); // plain and bold
        read = s->selectionCharFormat();
        QVERIFY(!read.bold.has_value());
        QVERIFY(!read.color.has_value());
        QCOMPARE(read.italic, std::optional<bool>(false)); // alike everywhere
        QVERIFY(read.fontName.has_value());

        // An empty selection reads the format at the caret (what typing would insert).
        s->setSelection(8, 0);
        read = s->selectionCharFormat();
        QCOMPARE(read.bold, std::optional<bool>(true));
        s->setSelection(2, 0);
        QCOMPARE(s->selectionCharFormat().bold, std::optional<bool>(false));

        // The link effect is not the user's underline, and the marker is a locale of its own.
        CharFormat link;
        link.linkEffect = true;
        link.locale = kLinkMarkerLocale;
        s->setRangeCharFormat(0, 5, link);
        s->setSelection(0, 5);
        read = s->selectionCharFormat();
        QCOMPARE(read.underline, std::optional<bool>(false));
        QCOMPARE(read.linkEffect, std::optional<bool>(true));
        QVERIFY(read.hasLinkMarker());
        CharFormat underline;
        underline.underline = true;
        s->setSelectionCharFormat(underline);
        CharFormat noUnderline;
        noUnderline.underline = false;
        s->setSelectionCharFormat(noUnderline);
        read = s->selectionCharFormat();
        QCOMPARE(read.underline, std::optional<bool>(false));
        QCOMPARE(read.linkEffect, std::optional<bool>(true)); // still shown as a link

        // Background: automatic until highlighted.
        s->setSelection(0, 3);
        QCOMPARE(s->selectionCharFormat().backColor, std::optional<Colour>(kAutoColour));
        CharFormat highlight;
        highlight.backColor = 0x00FFFF;
        s->setSelectionCharFormat(highlight);
        QCOMPARE(s->selectionCharFormat().backColor, std::optional<Colour>(0x00FFFFu));
        s->setSelection(0, 6);
        QVERIFY(!s->selectionCharFormat().backColor.has_value());
        CharFormat automatic;
        automatic.backColor = kAutoColour;
        s->setDocumentCharFormat(automatic);
        QCOMPARE(s->selectionCharFormat().backColor, std::optional<Colour>(kAutoColour));
    }

    void largeBatchOfFormats()
    {
        auto s = makeSurface(300);
        QStringList lines;
        for (int i = 0; i < 2000; ++i)
            lines << QStringLiteral("line %1 with some words to wrap in a narrow window").arg(i);
        s->setText(lines.join(QLatin1Char('\n')));
        const int lineCount = s->lineCount();
        const int index500 = s->lineIndex(500);
        QList<EditorSurface::FormatSpan> spans;
        for (int i = 0; i < 1000; ++i) {
            EditorSurface::FormatSpan span;
            span.start = i * 90;
            span.length = 4;
            span.format.color = 0x0000FF;
            span.format.bold = i % 2 == 0;
            spans.append(span);
        }
        s->applyCharFormats(spans);
        QCOMPARE(s->lineCount(), lineCount);
        QCOMPARE(s->lineIndex(500), index500);
        QCOMPARE(s->rangeCharFormat(90 * 7, 4).color, std::optional<Colour>(0x0000FFu));
        QCOMPARE(s->rangeCharFormat(90 * 7, 4).bold, std::optional<bool>(false));
        QCOMPARE(s->rangeCharFormat(90 * 8, 4).bold, std::optional<bool>(true));
        QVERIFY(!s->rangeCharFormat(90 * 7 + 2, 4).color.has_value()); // runs past the span
        QVERIFY(s->canUndo());
        s->undo(); // the batch is one step
        QCOMPARE(s->rangeCharFormat(0, -1).color, std::optional<Colour>(0u));
    }

    void paragraphFormats()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("one\ntwo\nthree"));
        ParaFormat change;
        change.alignment = ParaAlignment::Center;
        change.leftIndent = 720;
        change.hangingIndent = 360;
        change.rightIndent = 144;
        change.lineSpacingRule = LineSpacingRule::Multiple;
        change.lineSpacing = 30;
        change.tabStops = QList<int>{720, 1440};
        s->setSelection(0, 5); // first two paragraphs
        s->setSelectionParaFormat(change);
        ParaFormat read = s->selectionParaFormat();
        QCOMPARE(read.alignment, std::optional<ParaAlignment>(ParaAlignment::Center));
        QCOMPARE(read.leftIndent, std::optional<int>(720));
        QCOMPARE(read.hangingIndent, std::optional<int>(360));
        QCOMPARE(read.rightIndent, std::optional<int>(144));
        QCOMPARE(read.lineSpacingRule, std::optional<LineSpacingRule>(LineSpacingRule::Multiple));
        QCOMPARE(read.lineSpacing, std::optional<int>(30));
        QCOMPARE(read.tabStops, std::optional<QList<int>>(QList<int>{720, 1440}));

        s->setSelection(0, -1);
        read = s->selectionParaFormat();
        QVERIFY(!read.alignment.has_value()); // the third paragraph is left-aligned
        QVERIFY(!read.leftIndent.has_value());

        ParaFormat list;
        list.numbering = Numbering::UpperRoman;
        list.numberingStart = 1;
        list.numberingStyle = NumberingStyle::Period;
        s->setSelectionParaFormat(list);
        read = s->selectionParaFormat();
        QCOMPARE(read.numbering, std::optional<Numbering>(Numbering::UpperRoman));
        QCOMPARE(read.numberingStyle, std::optional<NumberingStyle>(NumberingStyle::Period));
        list.numbering = Numbering::None;
        s->setSelection(4, 0);
        s->setSelectionParaFormat(list);
        s->setSelection(0, -1);
        QVERIFY(!s->selectionParaFormat().numbering.has_value());
        s->setSelection(4, 0);
        QCOMPARE(s->selectionParaFormat().numbering, std::optional<Numbering>(Numbering::None));
    }

    void historyPointIsReadWithoutTrace()
    {
        auto s = makeSurface();
        CountingListener listener;
        s->setText(QStringLiteral("kept text"));
        s->setSelection(4, 0);
        QTest::keyClicks(s->widget(), QStringLiteral("XY"));
        int lost = 0;
        QVERIFY(s->markHistoryPoint([&lost] { ++lost; }));
        QTest::keyClicks(s->widget(), QStringLiteral("Z"));
        s->emptyUndoBuffer(); // ends the one-step undo only: the point stays readable
        QVERIFY(!s->canUndo());
        s->setSelection(2, 3);
        s->setListener(&listener);
        const quint64 revision = s->revision();
        QString seen;
        QVERIFY(s->readAtHistoryPoint([&] { seen = s->text(); }));
        QCOMPARE(seen, QStringLiteral("keptXY text"));
        QCOMPARE(s->text(), QStringLiteral("keptXYZ text"));
        QCOMPARE(s->selStart(), 2);
        QCOMPARE(s->selLength(), 3);
        QCOMPARE(s->revision(), revision);
        QCOMPARE(listener.changes, 0);
        QCOMPARE(listener.selChanges, 0);
        QVERIFY(!s->canUndo());
        s->setListener(nullptr);

        // A new document lets the keeper read the point first, once.
        s->setText(QStringLiteral("new"));
        QCOMPARE(lost, 1);
        QVERIFY(!s->hasHistoryPoint());
        QVERIFY(!s->readAtHistoryPoint([] {}));
        QVERIFY(!s->restoreHistoryPoint());
        QCOMPARE(s->text(), QStringLiteral("new"));

        // Restoring goes back for good and empties the history.
        QTest::keyClicks(s->widget(), QStringLiteral("A"));
        QVERIFY(s->markHistoryPoint(nullptr));
        QTest::keyClicks(s->widget(), QStringLiteral("BC"));
        QVERIFY(s->restoreHistoryPoint());
        QCOMPARE(s->text(), QStringLiteral("Anew"));
        QVERIFY(!s->canUndo());
        QVERIFY(!s->hasHistoryPoint());
    }

    void undoThenUndoRedoes()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("abc"));
        QVERIFY(!s->canUndo()); // setting the text empties the buffer
        s->setSelection(3, 0);
        s->replaceSelection(QStringLiteral("def"));
        QVERIFY(s->canUndo());
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("abc"));
        QVERIFY(s->canUndo());
        s->undo(); // redoes
        QCOMPARE(s->text(), QStringLiteral("abcdef"));
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("abc"));
        // A new edit after an undo is the one step to undo.
        s->setSelection(0, 0);
        s->replaceSelection(QStringLiteral("x"));
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("abc"));
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("xabc"));
        s->emptyUndoBuffer();
        QVERIFY(!s->canUndo());
        s->undo(); // nothing to undo: no change
        QCOMPARE(s->text(), QStringLiteral("xabc"));

        // Typed text undoes and redoes the same way.
        auto *edit = s->editor();
        edit->setFocus();
        s->setSelection(4, 0);
        QTest::keyClicks(edit, QStringLiteral("yz"));
        QCOMPARE(s->text(), QStringLiteral("xabcyz"));
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("xabc"));
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("xabcyz"));
    }

    void modifiedFlagAfterProgrammaticEdits()
    {
        auto s = makeSurface();
        QVERIFY(!s->isModified());
        s->setText(QStringLiteral("text"));
        QVERIFY(s->isModified());
        s->setModified(false);
        CharFormat italic;
        italic.italic = true;
        s->setRangeCharFormat(0, 2, italic);
        QVERIFY2(s->isModified(), "a format change is an edit");
        s->setModified(false);
        s->setSelection(0, 0);
        s->replaceSelection(QStringLiteral("more "));
        QVERIFY(s->isModified());
        s->setModified(false);
        s->undo();
        QVERIFY2(s->isModified(), "undo is an edit too");
        s->setModified(false);
        s->setSelection(0, 3); // selecting is not an edit
        QVERIFY(!s->isModified());
    }

    void findFlags_data()
    {
        QTest::addColumn<QString>("what");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("expected");
        // Text: "The cat scattered Cats. cat"
        QTest::newRow("any case") << "cat" << 0 << -1 << 0 << 4;
        QTest::newRow("inside a word") << "cat" << 5 << -1 << 0 << 9;
        QTest::newRow("whole word skips scattered") << "cat" << 5 << -1 << int(FindWholeWord) << 24;
        QTest::newRow("match case skips Cats") << "Cat" << 0 << -1 << int(FindMatchCase) << 18;
        QTest::newRow("whole word and case") << "Cats" << 0 << -1 << int(FindWholeWord | FindMatchCase) << 18;
        QTest::newRow("range end excludes a match that runs past it") << "cat" << 5 << 11 << 0 << -1;
        QTest::newRow("range end includes a match ending on it") << "cat" << 5 << 12 << 0 << 9;
        QTest::newRow("backward finds the last") << "cat" << 0 << -1 << int(FindBackward) << 24;
        QTest::newRow("backward within a range") << "cat" << 0 << 20 << int(FindBackward) << 9;
        QTest::newRow("not there") << "dog" << 0 << -1 << 0 << -1;
        QTest::newRow("empty pattern") << "" << 0 << -1 << 0 << -1;
        QTest::newRow("start past the end") << "cat" << 500 << -1 << 0 << -1;
    }

    void findFlags()
    {
        QFETCH(QString, what);
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(int, flags);
        QFETCH(int, expected);
        auto s = makeSurface();
        s->setText(QStringLiteral("The cat scattered Cats. cat"));
        QCOMPARE(s->find(what, start, end, flags), expected);
    }

    void spanAndUpTo()
    {
        auto s = makeSurface();
        s->setText(QStringLiteral("  12345abc  def"));
        s->setSelection(2, 0);
        s->span(QStringLiteral("0123456789"));
        QCOMPARE(s->selectedText(), QStringLiteral("12345"));
        s->span(QStringLiteral(" "), true, true); // negate: over everything that is not a space
        QCOMPARE(s->selectedText(), QStringLiteral("12345abc"));
        s->setSelection(10, 0);
        s->span(QStringLiteral("abc"), false);
        QCOMPARE(s->selStart(), 7);
        QCOMPARE(s->selLength(), 3);

        s->setSelection(0, 0);
        s->upTo(QStringLiteral("d"));
        QCOMPARE(s->selStart(), 12);
        QCOMPARE(s->selLength(), 0);
        s->upTo(QStringLiteral(" "), false);
        QCOMPARE(s->selStart(), 12); // the character before is a space already
        s->setSelection(0, 0);
        s->upTo(QStringLiteral(" "), true, true); // up to the first non-space
        QCOMPARE(s->selStart(), 2);
        s->upTo(QStringLiteral("xyz"));
        QCOMPARE(s->selStart(), s->textLength()); // none: to the end
        s->upTo(QStringLiteral("xyz"), false);
        QCOMPARE(s->selStart(), 0);
    }

    void caseChanges_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::newRow("lower") << 0 << "the quick. brown fox! it's here";
        QTest::newRow("upper") << 1 << "THE QUICK. BROWN FOX! IT'S HERE";
        QTest::newRow("title") << 2 << "The Quick. Brown Fox! It's Here";
        QTest::newRow("sentence") << 4 << "The quick. Brown fox! It's here";
        QTest::newRow("toggle") << 5 << "tHE quick. BROWN FOX! IT'S hERE";
        QTest::newRow("unknown code changes nothing") << 3 << "The QUICK. brown fox! it's Here";
    }

    void caseChanges()
    {
        QFETCH(int, kind);
        QFETCH(QString, expected);
        auto s = makeSurface();
        s->setText(QStringLiteral("The QUICK. brown fox! it's Here"));
        CharFormat bold;
        bold.bold = true;
        s->setRangeCharFormat(4, 5, bold);
        s->setSelection(0, -1);
        s->changeCase(kind);
        QCOMPARE(s->text(), expected);
        QCOMPARE(s->selLength(), int(expected.size()));
        // Formatting of each run survives the change.
        s->setSelection(4, 5);
        QCOMPARE(s->selectionCharFormat().bold, std::optional<bool>(true));
        s->setSelection(0, 3);
        QCOMPARE(s->selectionCharFormat().bold, std::optional<bool>(false));
    }

    void caseChangesKeepLengthAndWords_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("expected");
        QTest::newRow("title, typographic apostrophe") << QStringLiteral("don\u2019t stop") << 2
                                                       << QStringLiteral("Don\u2019t Stop");
        QTest::newRow("title, quoted word") << QStringLiteral("say \u2018hi\u2019 now 2nd") << 2
                                            << QStringLiteral("Say \u2018Hi\u2019 Now 2nd");
        QTest::newRow("upper, sharp s keeps its length") << QStringLiteral("stra\u00DFe bold") << 1
                                                         << QStringLiteral("STRA\u00DFE BOLD");
        // Deseret letters lie outside the Basic Multilingual Plane (surrogate pairs).
        QTest::newRow("upper, surrogate pairs") << QStringLiteral("\U00010428x \U00010429") << 1
                                                << QStringLiteral("\U00010400X \U00010401");
        QTest::newRow("lower, surrogate pairs") << QStringLiteral("\U00010400X") << 0
                                                << QStringLiteral("\U00010428x");
        QTest::newRow("title, surrogate pairs") << QStringLiteral("\U00010428\U00010428 \U00010400\U00010400") << 2
                                                << QStringLiteral("\U00010400\U00010428 \U00010400\U00010428");
        QTest::newRow("toggle, surrogate pairs") << QStringLiteral("\U00010428\U00010401a") << 5
                                                 << QStringLiteral("\U00010400\U00010429A");
    }

    void caseChangesKeepLengthAndWords()
    {
        QFETCH(QString, text);
        QFETCH(int, kind);
        QFETCH(QString, expected);
        auto s = makeSurface();
        s->setText(text);
        // The last character is bold; it stays bold, in its place.
        CharFormat bold;
        bold.bold = true;
        const int tail = text.back().isLowSurrogate() ? 2 : 1;
        const int last = int(text.size()) - tail;
        s->setRangeCharFormat(last, tail, bold);
        s->setSelection(0, -1);
        s->changeCase(kind);
        QCOMPARE(s->text(), expected);
        QCOMPARE(s->selStart(), 0);
        QCOMPARE(s->selLength(), int(text.size()));
        QCOMPARE(s->rangeCharFormat(last, tail).bold, std::optional<bool>(true));
        QCOMPARE(s->rangeCharFormat(0, last).bold, std::optional<bool>(false));
    }

    void nestedFreeze()
    {
        auto s = makeSurface();
        CountingListener listener;
        s->setListener(&listener);
        s->setText(QStringLiteral("one two three"));
        const int before = listener.selChanges;
        QVERIFY(s->editor()->updatesEnabled());
        s->freeze();
        s->freeze();
        QCOMPARE(s->freezeCount(), 2);
        QVERIFY(!s->editor()->updatesEnabled());
        s->setSelection(4, 3);
        QCOMPARE(s->selectedText(), QStringLiteral("two"));
        QCOMPARE(s->editor()->textCursor().selectedText(), QString()); // the widget has not moved yet
        s->unfreeze();
        QVERIFY(!s->editor()->updatesEnabled());
        QCOMPARE(listener.selChanges, before);
        s->unfreeze();
        QVERIFY(s->editor()->updatesEnabled());
        QCOMPARE(s->editor()->textCursor().selectedText(), QStringLiteral("two"));
        QCOMPARE(listener.selChanges, before + 1); // one notice for the whole frozen stretch
        // Edits while frozen are seen at once by line queries, the modified flag and undo.
        s->setWrap(WrapMode::None);
        s->setModified(false);
        s->freeze();
        s->setSelection(3, 0);
        s->replaceSelection(QStringLiteral("\nnew line\n"));
        QCOMPARE(s->lineCount(), 3);
        QCOMPARE(s->lineIndex(1), 4);
        QVERIFY(s->isModified());
        QVERIFY(s->canUndo());
        s->undo();
        QCOMPARE(s->text(), QStringLiteral("one two three"));
        QCOMPARE(s->lineCount(), 1);
        s->undo();
        QCOMPARE(s->lineCount(), 3);
        s->emptyUndoBuffer();
        QVERIFY(!s->canUndo());
        s->setText(QStringLiteral("a\nb"));
        QCOMPARE(s->lineCount(), 2);
        s->unfreeze();
        QVERIFY(!s->canUndo());
        QCOMPARE(s->text(), QStringLiteral("a\nb"));
        // A typing format set while frozen is what the next typed character takes.
        s->setSelection(s->textLength(), 0);
        s->freeze();
        CharFormat typing;
        typing.italic = true;
        s->setSelectionCharFormat(typing);
        s->unfreeze();
        s->editor()->setFocus();
        QTest::keyClicks(s->editor(), QStringLiteral("z"));
        QCOMPARE(s->rangeCharFormat(s->textLength() - 1, 1).italic, std::optional<bool>(true));
        s->unfreeze(); // unbalanced: no effect, no underflow
        QCOMPARE(s->freezeCount(), 0);
        SurfaceFreeze guard(*s);
        QCOMPARE(s->freezeCount(), 1);
        s->setListener(nullptr);
    }

    void keysReachTheListener()
    {
        auto s = makeSurface();
        CountingListener listener;
        listener.swallowKey = 'B';
        s->setListener(&listener);
        s->editor()->setFocus();
        QTest::keyClicks(s->editor(), QStringLiteral("abcb"));
        QCOMPARE(s->text(), QStringLiteral("ac")); // key code 66 is the B key, with or without Shift
        QVERIFY(listener.changes > 0);
        s->setMaxLength(4);
        QTest::keyClicks(s->editor(), QStringLiteral("xyz"));
        QCOMPARE(s->text(), QStringLiteral("acxy"));
        s->setListener(nullptr);
    }

    void scrollingAndVisibleLines()
    {
        auto s = makeSurface(300);
        s->setWrap(WrapMode::None);
        QStringList lines;
        for (int i = 0; i < 200; ++i)
            lines << QStringLiteral("line %1").arg(i);
        s->setText(lines.join(QLatin1Char('\n')));
        QCOMPARE(s->lineCount(), 200);
        QCOMPARE(s->firstVisibleLine(), 0);
        s->scrollLines(50);
        QCOMPARE(s->firstVisibleLine(), 50);
        s->scrollLines(-20);
        QCOMPARE(s->firstVisibleLine(), 30);
        const QRect rect = s->formattingRect();
        QVERIFY(rect.width() > 0 && rect.height() > 0);
        const int atTop = s->charFromPoint(rect.topLeft() + QPoint(1, 1));
        QCOMPARE(s->lineFromChar(atTop), 30);
        s->scrollLines(-1000);
        QCOMPARE(s->firstVisibleLine(), 0);
    }
};

class TestPlatformServices : public QObject {
    Q_OBJECT
private slots:
    void filtersConvertPairByPair()
    {
        const QStringList filters = QtPlatformServices::qtFilters(
            QStringLiteral("Mobbit Document File (*.mbdf)|*.mbdf|Text Files (*.txt)|*.txt|All|*.a;*.b"));
        QCOMPARE(filters, (QStringList{QStringLiteral("Mobbit Document File (*.mbdf)"),
                                       QStringLiteral("Text Files (*.txt)"), QStringLiteral("All (*.a *.b)")}));
        QVERIFY(QtPlatformServices::qtFilters(QStringLiteral("odd")).isEmpty());
    }

    void pendingInputCountsOnlyInputDuringAYield()
    {
        QtPlatformServices services;
        QWidget target;
        // Input handled before a pass (the key that started it) is not pending.
        QKeyEvent before(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QApplication::sendEvent(&target, &before);
        QVERIFY(!services.hasPendingInput());
        // Input that arrives while the pass yields is, once.
        QCoreApplication::postEvent(&target, new QKeyEvent(QEvent::KeyPress, Qt::Key_B, Qt::NoModifier, QStringLiteral("b")));
        services.processEvents();
        QVERIFY(services.hasPendingInput());
        QVERIFY(!services.hasPendingInput());
        services.processEvents(); // a quiet yield
        QVERIFY(!services.hasPendingInput());
    }

    void recordingServicesAnswerFromTheScript()
    {
        RecordingPlatformServices services;
        QCOMPARE(services.messageBox(QStringLiteral("t"), MessageButtons::YesNo, MessageIcon::Question, QStringLiteral("T")),
                 MessageAnswer::Yes);
        services.messageAnswers << MessageAnswer::No;
        QCOMPARE(services.messageBox(QStringLiteral("u"), MessageButtons::YesNo, MessageIcon::Question, QStringLiteral("U")),
                 MessageAnswer::No);
        QCOMPARE(services.callsOf(QStringLiteral("messageBox")).size(), 2);
        QCOMPARE(services.calls.at(1).text, QStringLiteral("u"));
        QCOMPARE(services.calls.at(1).icon, int(MessageIcon::Question));
        QVERIFY(!services.openFileDialog({}).accepted);
        {
            BusyGuard busy(services);
            BusyGuard nested(services);
            QCOMPARE(services.busyDepth, 2);
        }
        QCOMPARE(services.busyDepth, 0);
    }
};

int runFormatBatchTests(int argc, char *argv[]); // tst_formatbatch.cpp

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    int status = 0;
    {
        TestQtEditorSurface surface;
        status |= QTest::qExec(&surface, argc, argv);
    }
    {
        TestPlatformServices services;
        status |= QTest::qExec(&services, argc, argv);
    }
    status |= runFormatBatchTests(argc, argv);
    return status;
}

#include "tst_qteditorsurface.moc"
