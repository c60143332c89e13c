// Font and colour selection: the control's own font dialog driven through its widgets, the
// desktop's font dialog, default-font mode across two controls, and the colour dialogs'
// cancel and keep-original rules.

#include "control/kvrtb.h"
#include "core/editorsurface.h"
#include "corefixture.h"
#include "fonts/fontfrm.h"
#include "fonts/fontselection.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace kvrtb;

namespace {

constexpr short kCancelled = 32755;

/// Replaces the text of an editable combo box as a user does: select all, type, Enter.
void typeInto(QComboBox *combo, const QString &text)
{
    QLineEdit *edit = combo->lineEdit();
    QVERIFY(edit);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(edit, text);
    QTest::keyClick(edit, Qt::Key_Return);
}

/// Sets every attribute in the dialog through its own widgets: family, Bold Italic, 18 pt,
/// strike-through, underline and a colour (the colour dialog answers \a colour).
void chooseEverything(FontFrm &dialog, test::CoreFixture &fixture, Colour colour)
{
    fixture.services.colourDialogAnswers.append({true, colour});
    typeInto(dialog.findChild<QFontComboBox *>(QStringLiteral("FontCombo")), QStringLiteral("Liberation Mono"));
    auto *styles = dialog.findChild<QListWidget *>(QStringLiteral("StyleList"));
    QTest::mouseClick(styles->viewport(), Qt::LeftButton, {},
                      styles->visualItemRect(styles->item(3)).center());
    typeInto(dialog.findChild<QComboBox *>(QStringLiteral("SizeCombo")), QStringLiteral("18"));
    for (const char *name : {"StrikeCheck", "UnderlineCheck"}) {
        auto *check = dialog.findChild<QCheckBox *>(QString::fromLatin1(name));
        QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(6, check->height() / 2));
    }
    QTest::mouseClick(dialog.findChild<QPushButton *>(QStringLiteral("ColorButton")), Qt::LeftButton);
}

/// Runs \a drive on the modal font dialog as soon as it opens.
void whenFontDialogOpens(std::function<void(FontFrm &)> drive)
{
    QTimer::singleShot(0, [drive] {
        auto *dialog = qobject_cast<FontFrm *>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        drive(*dialog);
    });
}

void pressButton(QWidget &dialog, const char *name)
{
    QTest::mouseClick(dialog.findChild<QPushButton *>(QString::fromLatin1(name)), Qt::LeftButton);
}

} // namespace

class TestFonts : public QObject {
    Q_OBJECT

private slots:
    void customDialogAppliesEachAttribute();
    void customDialogLeavesUntouchedAttributes();
    void desktopFontDialog();
    void defaultFontModeAcrossTwoControls();
    void colourDialogs();
};

void TestFonts::customDialogAppliesEachAttribute()
{
    test::CoreFixture fixture;
    fixture.surface().setText(QStringLiteral("Plain words here"));
    fixture.surface().setSelection(6, 5);   // "words"
    fixture.core.properties().UseCustomFontDialog = true;

    bool sampleFollowed = false;
    whenFontDialogOpens([&](FontFrm &dialog) {
        chooseEverything(dialog, fixture, 0x0000FF);
        const QLabel *sample = dialog.findChild<QLabel *>(QStringLiteral("SampleLB"));
        sampleFollowed = sample->font().family() == QStringLiteral("Liberation Mono") && sample->font().bold()
            && sample->font().italic() && sample->font().strikeOut() && sample->font().underline()
            && sample->palette().color(QPalette::WindowText) == QColor(Qt::red);
        pressButton(dialog, "OKButton");
    });
    fixture.core.fontSelection().ShowFontSelect();
    QVERIFY(sampleFollowed);

    const CharFormat format = fixture.surface().rangeCharFormat(6, 5);
    QCOMPARE(format.fontName.value_or(QString()), QStringLiteral("Liberation Mono"));
    QCOMPARE(format.fontSize.value_or(0), 18.0);
    QCOMPARE(format.bold, std::optional<bool>(true));
    QCOMPARE(format.italic, std::optional<bool>(true));
    QCOMPARE(format.strikeThrough, std::optional<bool>(true));
    QCOMPARE(format.underline, std::optional<bool>(true));
    QCOMPARE(format.color, std::optional<Colour>(0x0000FF));
    // Only the selection changed.
    QCOMPARE(fixture.surface().rangeCharFormat(0, 5).bold, std::optional<bool>(false));
    QCOMPARE(fixture.surface().text(), QStringLiteral("Plain words here"));
    QVERIFY(fixture.events.names.contains(QStringLiteral("Finish")));

    // Cancel changes nothing, whatever was set in the dialog.
    fixture.surface().setSelection(0, 5);
    const QString before = fixture.surface().rtf();
    whenFontDialogOpens([&](FontFrm &dialog) {
        chooseEverything(dialog, fixture, 0x00FF00);
        pressButton(dialog, "CancelButton");
    });
    fixture.core.fontSelection().ShowFontSelect();
    QCOMPARE(fixture.surface().rtf(), before);
}

void TestFonts::customDialogLeavesUntouchedAttributes()
{
    // A selection of two sizes where only the style is changed keeps both sizes.
    test::CoreFixture fixture;
    fixture.surface().setText(QStringLiteral("small BIG"));
    CharFormat big;
    big.fontSize = 24;
    fixture.surface().setRangeCharFormat(6, 3, big);
    fixture.surface().setSelection(0, 9);
    FontFrm dialog(fixture.services, FontChoice::fromCharFormat(fixture.surface().selectionCharFormat(),
                                                                 fixture.surface().font()));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    const FontChoice before = FontChoice::fromCharFormat(fixture.surface().selectionCharFormat(), fixture.surface().font());
    auto *styles = dialog.findChild<QListWidget *>(QStringLiteral("StyleList"));
    QTest::mouseClick(styles->viewport(), Qt::LeftButton, {}, styles->visualItemRect(styles->item(2)).center());
    const CharFormat changes = dialog.choice().changesFrom(before);
    QCOMPARE(changes.bold, std::optional<bool>(true));
    QVERIFY(!changes.fontSize && !changes.fontName && !changes.italic && !changes.color);
    fixture.surface().setSelectionCharFormat(changes);
    QCOMPARE(fixture.surface().rangeCharFormat(6, 3).fontSize.value_or(0), 24.0);
    QVERIFY(fixture.surface().rangeCharFormat(0, 5).fontSize.value_or(0) < 24);

    // A size outside 1..1638 typed into the box is not taken.
    typeInto(dialog.findChild<QComboBox *>(QStringLiteral("SizeCombo")), QStringLiteral("0"));
    QCOMPARE(dialog.choice().size, before.size);
}

void TestFonts::desktopFontDialog()
{
    test::CoreFixture fixture;
    fixture.surface().setText(QStringLiteral("one two"));
    fixture.surface().setSelection(4, 3);
    fixture.core.properties().UseCustomFontDialog = false;
    QFont answer(QStringLiteral("Liberation Serif"));
    answer.setPointSize(30);
    answer.setItalic(true);
    fixture.services.fontDialogAnswers.append({true, answer});
    fixture.core.fontSelection().ShowFontSelect();   // the desktop's dialog, not FontFrm
    QCOMPARE(fixture.services.callsOf(QStringLiteral("fontDialog")).size(), 1);
    const CharFormat format = fixture.surface().rangeCharFormat(4, 3);
    QCOMPARE(format.fontName.value_or(QString()), QStringLiteral("Liberation Serif"));
    QCOMPARE(format.fontSize.value_or(0), 30.0);
    QCOMPARE(format.italic, std::optional<bool>(true));

    short error = -1;
    const QString before = fixture.surface().rtf();
    fixture.core.fontSelection().CommonDialogFontSelect(&error);   // no answer: cancelled
    QCOMPARE(error, kCancelled);
    QCOMPARE(fixture.surface().rtf(), before);
}

void TestFonts::defaultFontModeAcrossTwoControls()
{
    RecordingPlatformServices services;
    KvRTB first(services);
    KvRTB second(services);
    first.setUseCustomFontDialog(false);
    first.setText(QStringLiteral("first"));
    second.setText(QStringLiteral("second"));

    QFont chosen(QStringLiteral("Liberation Serif"));
    chosen.setPointSize(20);
    chosen.setBold(true);
    chosen.setUnderline(true);
    services.fontDialogAnswers.append({true, chosen});
    first.SetDefaultFontMode();
    const DEFUALT_FONT_DATA data = first.GetDefaultFontData();
    QCOMPARE(data.tFONTNAME, QStringLiteral("Liberation Serif"));
    QCOMPARE(data.tFONTSTYLE, QStringLiteral("Bold"));
    QCOMPARE(data.tFONTSIZE, qint16(20));
    QVERIFY(data.tFONTUNDERLINE);
    QVERIFY(!data.tFONTSTRIKETHROUGH);

    second.ShareDefaultFontData(data);
    second.resize(300, 120);
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&second));
    QWidget *editor = second.RichTextBox1().widget();
    editor->setFocus();
    second.setSelStart(6);
    QTest::keyClicks(editor, QStringLiteral(" new"));
    QCOMPARE(second.Text(), QStringLiteral("second new"));
    const CharFormat typed = second.RichTextBox1().rangeCharFormat(6, 4);
    QCOMPARE(typed.fontName.value_or(QString()), QStringLiteral("Liberation Serif"));
    QCOMPARE(typed.fontSize.value_or(0), 20.0);
    QCOMPARE(typed.bold, std::optional<bool>(true));
    QCOMPARE(typed.underline, std::optional<bool>(true));
    // The text that was there keeps its font; so does the first control's text.
    QCOMPARE(second.RichTextBox1().rangeCharFormat(0, 6).bold, std::optional<bool>(false));
    QCOMPARE(first.RichTextBox1().rangeCharFormat(0, 5).bold, std::optional<bool>(false));

    // After the mode ends, typing at the start takes the format found there again.
    second.EndDefaultFontMode();
    second.setSelStart(0);
    QTest::keyClicks(editor, QStringLiteral("x"));
    QCOMPARE(second.Text(), QStringLiteral("xsecond new"));
    QCOMPARE(second.RichTextBox1().rangeCharFormat(0, 1).bold, std::optional<bool>(false));

    // Cancelling the dialog leaves the mode and the font as they were; an empty record is ignored.
    second.ShareDefaultFontData(DEFUALT_FONT_DATA());
    QVERIFY(!second.core().fontSelection().isDefaultFontMode());
    first.SetDefaultFontMode();   // no answer queued: cancelled
    QVERIFY(first.core().fontSelection().isDefaultFontMode());
    QCOMPARE(first.GetDefaultFontData().tFONTNAME, QStringLiteral("Liberation Serif"));
}

void TestFonts::colourDialogs()
{
    RecordingPlatformServices services;
    KvRTB control(services);
    control.setText(QStringLiteral("red text"));
    control.setSelStart(0);
    control.setSelLength(3);
    QSignalSpy changed(&control, &KvRTB::PropertyChanged);

    // CommonDialogColor: chosen, then cancelled with and without keeping the original.
    bool cancelled = true;
    short error = -1;
    services.colourDialogAnswers.append({true, 0x123456});
    QCOMPARE(control.CommonDialogColor(cancelled, false, 0xABCDEF, &error), 0x123456u);
    QVERIFY(!cancelled);
    QCOMPARE(error, short(0));
    QCOMPARE(control.CommonDialogColor(cancelled, true, 0xABCDEF, &error), 0xABCDEFu);
    QVERIFY(cancelled);
    QCOMPARE(error, kCancelled);
    QCOMPARE(control.CommonDialogColor(cancelled, false, 0xABCDEF), 0u);
    QVERIFY(cancelled);
    // A system colour starts the dialog at its RGB value.
    control.CommonDialogColor(cancelled, true, 0x80000005);
    QCOMPARE(services.callsOf(QStringLiteral("colourDialog")).last().text, QString::number(translateColour(0x80000005)));

    // The selection's text colour: cancelled keeps the text and gives back the colour passed.
    const QString before = control.TextRTF();
    const std::optional<Colour> restBefore = control.RichTextBox1().rangeCharFormat(4, 4).color;
    QCOMPARE(control.CommonDialogSelFontColor(QVariant(0x00FF00u), &error), 0x00FF00u);
    QCOMPARE(error, kCancelled);
    QCOMPARE(control.TextRTF(), before);
    services.colourDialogAnswers.append({true, 0x0000FF});
    QCOMPARE(control.CommonDialogSelFontColor(), 0x0000FFu);
    QCOMPARE(control.SelColor(), QVariant(0x0000FFu));
    QCOMPARE(control.MyFontColor(), 0x0000FFu);
    QVERIFY(changed.contains(QVariantList{QStringLiteral("MyFontColor")}));
    QCOMPARE(control.RichTextBox1().rangeCharFormat(4, 4).color, restBefore);

    // The highlight: starts at MyHLColor; cancelled changes nothing.
    const QString coloured = control.TextRTF();
    QCOMPARE(control.CommonDialogSelColor(), 0xFFFFu);
    QCOMPARE(services.callsOf(QStringLiteral("colourDialog")).last().text, QString::number(0xFFFF));
    QCOMPARE(control.TextRTF(), coloured);
    const std::optional<Colour> highlightBefore = control.RichTextBox1().rangeCharFormat(0, 3).backColor;
    QVERIFY(highlightBefore != std::optional<Colour>(0x00FFFF));
    services.colourDialogAnswers.append({true, 0x00FFFF});
    QCOMPARE(control.CommonDialogSelColor(QVariant(0xFFu), &error), 0x00FFFFu);
    QCOMPARE(error, short(0));
    QCOMPARE(control.RichTextBox1().rangeCharFormat(0, 3).backColor, std::optional<Colour>(0x00FFFF));
    QCOMPARE(control.MyHLColor(), 0x00FFFFu);

    // The "Font Color" command's colour: cancelled keeps MyFontColor.
    QCOMPARE(control.CommonDialogFontColor(QVariant(), &error), 0x0000FFu);
    QCOMPARE(control.MyFontColor(), 0x0000FFu);
    services.colourDialogAnswers.append({true, 0x808080});
    QCOMPARE(control.CommonDialogFontColor(QVariant(0x1u)), 0x808080u);
    QCOMPARE(control.MyFontColor(), 0x808080u);
    QCOMPARE(control.Text(), QStringLiteral("red text"));
}

QTEST_MAIN(TestFonts)
#include "test_fonts.moc"
