// The control shell: life cycle, the persisted property set and its bags, the by-name
// interface, the events and the selection pass-through.

#include "core/controlcore.h"
#include "core/editorsurface.h"
#include "control/kvrtb.h"
#include "control/propertybag.h"
#include "control/propertytable.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "spelling/wordlists.h"

#include <QAbstractScrollArea>
#include <QFile>
#include <QProgressBar>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace kvrtb;

namespace {

// A small document with one bold word, as a word processor writes it.
const QString kRtfDocument = QStringLiteral(
    "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\f0\\fs20 From the \\b stored\\b0  RTF\\par}");

const QStringList kKeysInOrder = {
    "AllowImages", "Appearance", "BackColor", "BorderStyle", "BulletIndent", "Enabled", "Font", "Locked",
    "MaxLength", "MouseIcon", "MousePointer", "RightMargin", "Text", "TextRTF", "RemoveUnUsableData",
    "ColorVBNetKeyWord", "ColorVB6KeyWord", "ColorVBNetComment", "ColorVB6Comment", "ColorVBNetString",
    "ColorVB6String", "ColorMyFirstKeyWord", "ColorMySecondKeyWord", "ColorMyThirdKeyWord", "MyFirstString",
    "MySecondString", "MyThirdString", "DetectHyperLinks", "AutoVMenu", "MyFontColor", "MyHLColor",
    "ShowVB6Syntax", "UseCustomFontDialog", "PrinterMargin", "WhatsThisHelpFile", "TurnOnSound",
    "MyWrapStyle", "DisplayRuler", "AllowRTFSave"};

/// A bag whose store fails at one key, as a damaged form file would.
class FailingBag : public MemoryPropertyBag {
public:
    explicit FailingBag(QString failingKey) : m_failingKey(std::move(failingKey)) {}
    bool readProperty(const QString &key, const QVariant &defaultValue, QVariant *value, QString *error) override
    {
        if (key == m_failingKey) {
            *error = QStringLiteral("The form file is damaged at %1.").arg(key);
            return false;
        }
        return MemoryPropertyBag::readProperty(key, defaultValue, value, error);
    }

private:
    QString m_failingKey;
};

QWidget *editorViewport(KvRTB &control)
{
    auto *area = qobject_cast<QAbstractScrollArea *>(control.RichTextBox1().widget());
    return area ? area->viewport() : control.RichTextBox1().widget();
}

/// Gives every persisted property a value other than its default.
void setNonDefaults(KvRTB &control)
{
    control.setAllowImages(false);
    control.setAppearance(rtfThreeD);
    control.setBackColor(0x00FFEEDD);
    control.setBorderStyle(rtfFixedSingle);
    control.setBulletIndent(360);
    control.setEditorEnabled(false);
    control.setEditorFont(QFont(QStringLiteral("Liberation Serif"), 17));
    control.setLocked(true);
    control.setMaxLength(500);
    QPixmap icon(16, 16);
    icon.fill(Qt::red);
    control.setMouseIcon(icon);
    control.setMousePointer(99);
    control.setRightMargin(7200);
    control.setText(QStringLiteral("Some text"));
    control.setRemoveUnUsableData(false);
    control.setColorVBNetKeyWord(1);
    control.setColorVB6KeyWord(2);
    control.setColorVBNetComment(3);
    control.setColorVB6Comment(4);
    control.setColorVBNetString(5);
    control.setColorVB6String(6);
    control.setColorMyFirstKeyWord(7);
    control.setColorMySecondKeyWord(8);
    control.setColorMyThirdKeyWord(0x123456);
    control.setMyFirstString(QStringLiteral("alpha beta"));
    control.setMySecondString(QStringLiteral("gamma, delta"));
    control.setMyThirdString(QStringLiteral("epsilon"));
    control.setDetectHyperLinks(false);
    control.setAutoVMenu(false);
    control.setMyFontColor(0xFF);
    control.setMyHLColor(0xFF00);
    control.setShowVB6Syntax(true);
    control.setUseCustomFontDialog(false);
    control.setPrinterMargin(TenEighty);
    control.setWhatsThisHelpFile(QStringLiteral("/tmp/help.chm"));
    control.setTurnOnSound(false);
    control.setMyWrapStyle(WindowWrap);
    control.setDisplayRuler(false);
    control.setAllowRTFSave(true);
}

qint64 residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

} // namespace

class TestControl : public QObject {
    Q_OBJECT

private slots:
    void propertyTableMatchesTheInterface();
    void emptyBagGivesTheDefaults();
    void storedRtfReplacesStoredText();
    void freshControlWritesNothing();
    void typedTextIsStoredUnderBothKeys();
    void narrowColoursKeepTheirType_data();
    void narrowColoursKeepTheirType();
    void everySetterNotifiesTheHost();
    void readPassStopsAtABagFailure();
    void badStoredValuesAreRefused_data();
    void badStoredValuesAreRefused();
    void settingsBagRoundTrip();
    void initPropertiesSizeAndName();
    void displayRulerRelaysTheLayout();
    void isArrayGood_data();
    void isArrayGood();
    void killSwitchOnlySetsTheFlag();
    void handlersChangeByReferenceArguments();
    void mouseEventsCarryTwips();
    void selectionPassThrough();
    void mixedSelectionReadsNullByName_data();
    void mixedSelectionReadsNullByName();
    void byNameInvocation();
    void progressAndQuietSelection();
    void wordWrapSetsMyWrapStyle();
    void createShowResizeDestroyDoesNotGrow();
    void membersReachTheirAreas();
    void completionsRequestedByInput();
    void optionalOutArgumentsByName();

private:
    RecordingPlatformServices m_services;
};

void TestControl::propertyTableMatchesTheInterface()
{
    QStringList keys;
    for (const PropertySpec &entry : propertyTable())
        keys << QLatin1String(entry.key);
    QCOMPARE(keys, kKeysInOrder);

    // Every key is a designable property of the control with the same name.
    const QMetaObject &meta = KvRTB::staticMetaObject;
    for (const QString &key : kKeysInOrder) {
        const int index = meta.indexOfProperty(key.toLatin1().constData());
        QVERIFY2(index >= 0, qPrintable(key));
        QVERIFY2(meta.property(index).isDesignable(), qPrintable(key));
        QVERIFY2(meta.property(index).isWritable(), qPrintable(key));
    }
    // The selection properties are run-time only.
    QVERIFY(!meta.property(meta.indexOfProperty("SelBold")).isDesignable());
}

void TestControl::emptyBagGivesTheDefaults()
{
    KvRTB control(m_services);
    const QFont editorFont = control.Font();
    setNonDefaults(control);
    MemoryPropertyBag empty;
    const PropertyPassResult result = control.readProperties(empty);
    QVERIFY2(result.ok, qPrintable(result.error));

    for (const PropertySpec &entry : propertyTable()) {
        const QVariant value = control.property(entry.key);
        if (entry.type == PropertyType::Font)
            QCOMPARE(value.value<QFont>(), editorFont);
        else if (entry.type == PropertyType::Picture)
            QVERIFY2(value.value<QPixmap>().isNull(), entry.key);
        else
            QVERIFY2(PropertyBag::isDefault(value, entry.defaultValue),
                     qPrintable(QStringLiteral("%1 is %2").arg(QLatin1String(entry.key), value.toString())));
    }
    QCOMPARE(control.Text(), QString());
    QCOMPARE(control.TextRTF(), QString());
    QCOMPARE(control.BackColor(), 0x80000005u);
    QCOMPARE(control.ColorVBNetKeyWord(), 0xFF0000u);
    QCOMPARE(control.MyHLColor(), 0xFFFFu);
    QCOMPARE(control.PrinterMargin(), 1440);
    QCOMPARE(control.MyWrapStyle(), int(RulerWrap));
    QVERIFY(threadState().detectHyperLinks);
    // Applied to the editor, not only remembered.
    QVERIFY(!control.RichTextBox1().isReadOnly());
    QVERIFY(control.RichTextBox1().isEnabled());
    QCOMPARE(control.RichTextBox1().maxLength(), 0);

    // A disabled window around the control does not make its Enabled setting false.
    QWidget window;
    control.setParent(&window);
    window.setEnabled(false);
    QVERIFY(control.Enabled());
    MemoryPropertyBag written;
    QVERIFY(control.writeProperties(written).ok);
    QVERIFY(!written.contains(QStringLiteral("Enabled")));
    control.setParent(nullptr);
}

void TestControl::storedRtfReplacesStoredText()
{
    KvRTB control(m_services);
    MemoryPropertyBag bag;
    bag.insert(QStringLiteral("Text"), QStringLiteral("From the stored Text"));
    bag.insert(QStringLiteral("TextRTF"), kRtfDocument);
    const PropertyPassResult result = control.readProperties(bag);
    QVERIFY2(result.ok, qPrintable(result.error));
    QCOMPARE(control.Text(), QStringLiteral("From the stored RTF"));
    control.RichTextBox1().setSelection(9, 6);
    QCOMPARE(control.SelText(), QStringLiteral("stored"));
    QCOMPARE(control.SelBold(), QVariant(true));
}

void TestControl::freshControlWritesNothing()
{
    {
        KvRTB control(m_services);
        MemoryPropertyBag bag;
        QVERIFY(control.writeProperties(bag).ok);
        QCOMPARE(bag.keys(), QStringList());
    }
    {
        // Placed on a form, it holds its name as text: that is the only thing to keep.
        KvRTB control(m_services);
        control.initProperties();
        MemoryPropertyBag bag;
        QVERIFY(control.writeProperties(bag).ok);
        QCOMPARE(bag.keys(), (QStringList{QStringLiteral("Text"), QStringLiteral("TextRTF")}));
        QCOMPARE(bag.value(QStringLiteral("Text")).toString(), QStringLiteral("KvRTB1"));
    }
    {
        // Setting a value back to its default removes it again.
        KvRTB control(m_services);
        MemoryPropertyBag bag;
        control.setMyHLColor(0x123);
        QVERIFY(control.writeProperties(bag).ok);
        QCOMPARE(bag.keys(), QStringList{QStringLiteral("MyHLColor")});
        control.setMyHLColor(0xFFFF);
        QVERIFY(control.writeProperties(bag).ok);
        QCOMPARE(bag.keys(), QStringList());
    }
}

void TestControl::typedTextIsStoredUnderBothKeys()
{
    KvRTB control(m_services);
    control.resize(300, 150);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    control.SetInFocus();
    QTest::keyClicks(control.RichTextBox1().widget(), QStringLiteral("Typed words"));
    QCOMPARE(control.Text(), QStringLiteral("Typed words"));

    MemoryPropertyBag bag;
    QVERIFY(control.writeProperties(bag).ok);
    QCOMPARE(bag.value(QStringLiteral("Text")).toString(), QStringLiteral("Typed words"));
    const QString rtf = bag.value(QStringLiteral("TextRTF")).toString();
    QVERIFY2(rtf.startsWith(QStringLiteral("{\\rtf")), qPrintable(rtf));
    QVERIFY2(rtf.contains(QStringLiteral("Typed words")), qPrintable(rtf));

    // A control restored from that bag holds the same document.
    KvRTB restored(m_services);
    restored.readProperties(bag);
    QCOMPARE(restored.Text(), QStringLiteral("Typed words"));
}

void TestControl::narrowColoursKeepTheirType_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<uint>("colour");
    QTest::addColumn<int>("storedType");

    QTest::newRow("VB6 strings, dark red") << "ColorVB6String" << 0x80u << int(QMetaType::Short);
    QTest::newRow("third list, largest narrow") << "ColorMyThirdKeyWord" << 0x7FFFu << int(QMetaType::Short);
    // A colour that does not fit 16 bits keeps all its bits rather than the narrow type.
    QTest::newRow("VB6 strings, yellow") << "ColorVB6String" << 0xFFFFu << int(QMetaType::UInt);
    QTest::newRow("third list, blue") << "ColorMyThirdKeyWord" << 0xFF0000u << int(QMetaType::UInt);
    QTest::newRow("VB.NET strings stay wide") << "ColorVBNetString" << 0x80u << int(QMetaType::UInt);
    QTest::newRow("highlight stays wide") << "MyHLColor" << 0x10u << int(QMetaType::UInt);
}

void TestControl::narrowColoursKeepTheirType()
{
    QFETCH(QString, key);
    QFETCH(uint, colour);
    QFETCH(int, storedType);

    KvRTB control(m_services);
    QVERIFY(control.setProperty(key.toLatin1().constData(), colour));
    MemoryPropertyBag bag;
    QVERIFY(control.writeProperties(bag).ok);
    QCOMPARE(bag.keys(), QStringList{key});
    const QVariant stored = bag.value(key);
    QCOMPARE(stored.metaType().id(), storedType);
    QCOMPARE(stored.toUInt(), colour);

    KvRTB restored(m_services);
    QVERIFY(restored.readProperties(bag).ok);
    QCOMPARE(restored.property(key.toLatin1().constData()).toUInt(), colour);

    // The default of the narrow ones is a 16-bit zero.
    const PropertySpec *entry = findProperty(key);
    QVERIFY(entry);
    if (entry->type == PropertyType::Colour16) {
        QCOMPARE(storedDefault(*entry).metaType().id(), int(QMetaType::Short));
        QCOMPARE(storedDefault(*entry).toInt(), 0);
    } else {
        QCOMPARE(storedDefault(*entry).metaType().id(), int(QMetaType::UInt));
    }
}

void TestControl::everySetterNotifiesTheHost()
{
    const QSet<QString> mirroredByMenus = {"AllowImages", "RemoveUnUsableData", "DetectHyperLinks",
                                           "ShowVB6Syntax", "MyWrapStyle", "DisplayRuler"};
    KvRTB control(m_services);
    for (const PropertySpec &entry : propertyTable()) {
        QSignalSpy changed(&control, &KvRTB::PropertyChanged);
        QSignalSpy menu(&control, &KvRTB::UpdateParentMenu);
        // The value does not change: the host is told all the same.
        QVERIFY2(control.setProperty(entry.key, control.property(entry.key)), entry.key);
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), QLatin1String(entry.key));
        QCOMPARE(menu.count(), mirroredByMenus.contains(QLatin1String(entry.key)) ? 1 : 0);
    }
    // DetectHyperLinks reaches the per-thread flag that typing consults.
    control.setDetectHyperLinks(false);
    QVERIFY(!threadState().detectHyperLinks);
    control.setDetectHyperLinks(true);
    QVERIFY(threadState().detectHyperLinks);
}

void TestControl::readPassStopsAtABagFailure()
{
    KvRTB control(m_services);
    FailingBag bag(QStringLiteral("Locked"));
    bag.insert(QStringLiteral("Appearance"), QVariant::fromValue(qint16(1)));
    bag.insert(QStringLiteral("MaxLength"), QVariant::fromValue(qint16(10)));
    const PropertyPassResult result = control.readProperties(bag);
    QVERIFY(!result.ok);
    QCOMPARE(result.error, QStringLiteral("The form file is damaged at Locked."));
    QCOMPARE(control.Appearance(), 1); // read before the failure: stays applied
    QCOMPARE(control.MaxLength(), 0);  // after it: never read
}

void TestControl::badStoredValuesAreRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("error");

    QTest::newRow("text for a number") << "MaxLength" << QVariant(QStringLiteral("abc"))
                                       << "The stored value of MaxLength (\"abc\") is not a 16-bit integer.";
    QTest::newRow("too wide for 16 bits") << "RightMargin" << QVariant(40000)
                                          << "The stored value of RightMargin (\"40000\") is not a 16-bit integer.";
    QTest::newRow("not a Boolean") << "Locked" << QVariant(QStringLiteral("maybe"))
                                   << "The stored value of Locked (\"maybe\") is not a Boolean.";
    QTest::newRow("not a colour") << "MyHLColor" << QVariant(QStringLiteral("yellow"))
                                  << "The stored value of MyHLColor (\"yellow\") is not a colour.";
    QTest::newRow("not a picture") << "MouseIcon" << QVariant(QByteArray("not an image"))
                                   << "The stored value of MouseIcon (\"not an image\") is not a picture.";
}

void TestControl::badStoredValuesAreRefused()
{
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QString, error);

    KvRTB control(m_services);
    MemoryPropertyBag bag;
    bag.insert(key, stored);
    const PropertyPassResult result = control.readProperties(bag);
    QVERIFY(!result.ok);
    QCOMPARE(result.error, error);
}

void TestControl::settingsBagRoundTrip()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("form.ini"));
    KvRTB original(m_services);
    setNonDefaults(original);
    {
        QSettings settings(file, QSettings::IniFormat);
        SettingsPropertyBag bag(settings, QStringLiteral("KvRTB1"));
        QVERIFY(original.writeProperties(bag).ok);
    }
    KvRTB restored(m_services);
    {
        QSettings settings(file, QSettings::IniFormat);
        SettingsPropertyBag bag(settings, QStringLiteral("KvRTB1"));
        const PropertyPassResult result = restored.readProperties(bag);
        QVERIFY2(result.ok, qPrintable(result.error));
    }
    for (const PropertySpec &entry : propertyTable()) {
        const QVariant before = original.property(entry.key);
        const QVariant after = restored.property(entry.key);
        if (entry.type == PropertyType::Picture)
            QCOMPARE(after.value<QPixmap>().toImage(), before.value<QPixmap>().toImage());
        else if (entry.type == PropertyType::String && QLatin1String(entry.key) == QLatin1String("TextRTF"))
            continue; // compared through Text: the writer may word the same document differently
        else
            QVERIFY2(after == before, qPrintable(QStringLiteral("%1: %2 became %3")
                                                     .arg(QLatin1String(entry.key), before.toString(), after.toString())));
    }
}

void TestControl::initPropertiesSizeAndName()
{
    KvRTB unnamed(m_services);
    unnamed.initProperties();
    QCOMPARE(unnamed.size(), QSize(105, 49));
    QCOMPARE(unnamed.Text(), QStringLiteral("KvRTB1"));

    KvRTB named(m_services);
    named.setObjectName(QStringLiteral("NotesBox"));
    named.setMaxLength(3); // a new control starts from the defaults
    named.initProperties();
    QCOMPARE(named.Text(), QStringLiteral("NotesBox"));
    QCOMPARE(named.MaxLength(), 0);
}

void TestControl::displayRulerRelaysTheLayout()
{
    KvRTB control(m_services);
    control.resize(300, 200);
    control.show();
    QWidget *editor = control.RichTextBox1().widget();
    QVERIFY(control.DisplayRuler());
    QCOMPARE(control.MasterPic()->geometry(), QRect(0, 0, 300, KvRTB::kRulerStripHeight));
    QCOMPARE(control.RTBPicture()->geometry(), QRect(0, KvRTB::kRulerStripHeight, 300, 200 - KvRTB::kRulerStripHeight));
    QCOMPARE(editor->size(), QSize(300, 200 - KvRTB::kRulerStripHeight));

    control.setDisplayRuler(false);
    QVERIFY(!control.MasterPic()->isVisible());
    QCOMPARE(control.RTBPicture()->geometry(), QRect(0, 0, 300, 200));
    QCOMPARE(editor->size(), QSize(300, 200));

    control.resize(400, 100);
    QCOMPARE(editor->size(), QSize(400, 100));
    control.setDisplayRuler(true);
    QVERIFY(control.MasterPic()->isVisible());
    QCOMPARE(editor->size(), QSize(400, 100 - KvRTB::kRulerStripHeight));
}

void TestControl::isArrayGood_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("good");

    QTest::newRow("null") << QVariant() << false;
    QTest::newRow("empty string list") << QVariant(QStringList()) << false;
    QTest::newRow("one-element string list") << QVariant(QStringList{QString()}) << true;
    QTest::newRow("empty variant list") << QVariant(QVariantList()) << false;
    QTest::newRow("one-element variant list") << QVariant(QVariantList{0}) << true;
    QTest::newRow("list of numbers") << QVariant::fromValue(QList<int>{4, 5}) << true;
    QTest::newRow("string") << QVariant(QStringLiteral("abc")) << false;
    QTest::newRow("bytes") << QVariant(QByteArray("abc")) << false;
    QTest::newRow("number") << QVariant(5) << false;
}

void TestControl::isArrayGood()
{
    QFETCH(QVariant, value);
    QFETCH(bool, good);
    KvRTB control(m_services);
    QCOMPARE(control.IsArrayGood(value), good);
}

void TestControl::killSwitchOnlySetsTheFlag()
{
    KvRTB control(m_services);
    QVERIFY(!threadState().cancelRequested); // cleared at start-up
    control.setText(QStringLiteral("Nothing runs"));
    QSignalSpy begin(&control, &KvRTB::Begin);
    QSignalSpy finish(&control, &KvRTB::Finish);
    QSignalSpy change(&control, &KvRTB::Change);
    control.KillSwitch();
    QVERIFY(threadState().cancelRequested);
    QCOMPARE(control.Text(), QStringLiteral("Nothing runs"));
    QCOMPARE(begin.count() + finish.count() + change.count(), 0);
    QCOMPARE(control.ProgressPercentage(), short(0));

    // The flag is shared by the thread's controls; a new control clears it.
    KvRTB other(m_services);
    QVERIFY(!threadState().cancelRequested);
}

void TestControl::handlersChangeByReferenceArguments()
{
    KvRTB control(m_services);
    control.resize(300, 150);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    QWidget *editor = control.RichTextBox1().widget();
    control.SetInFocus();

    // KeyDown setting the key code to 0 swallows the key: every "q" is dropped.
    auto swallow = connect(&control, &KvRTB::KeyDown, [](short &keyCode, short &shift) {
        if (keyCode == 'Q') {
            keyCode = 0;
            shift = 0;
        }
    });
    QTest::keyClicks(editor, QStringLiteral("quiq"));
    QCOMPARE(control.Text(), QStringLiteral("ui"));
    disconnect(swallow);

    // KeyPress changing the character types the new one; 0 drops it.
    auto replace = connect(&control, &KvRTB::KeyPress, [](short &keyAscii) {
        if (keyAscii == 'x')
            keyAscii = 'y';
        else if (keyAscii == 'z')
            keyAscii = 0;
    });
    QTest::keyClicks(editor, QStringLiteral("xzx"));
    QCOMPARE(control.Text(), QStringLiteral("uiyy"));
    disconnect(replace);

    // KeyUp is followed by Finish and Ready, in that order.
    QStringList order;
    connect(&control, &KvRTB::KeyUp, [&order](short &, short &) { order << "KeyUp"; });
    connect(&control, &KvRTB::Finish, [&order] { order << "Finish"; });
    connect(&control, &KvRTB::Ready, [&order] { order << "Ready"; });
    QTest::keyClick(editor, Qt::Key_A);
    QCOMPARE(order, (QStringList{"KeyUp", "Finish", "Ready"}));
}

void TestControl::mouseEventsCarryTwips()
{
    KvRTB control(m_services);
    control.resize(300, 150);
    control.show();
    QVERIFY(QTest::qWaitForWindowExposed(&control));
    QStringList order;
    float downX = -1;
    float downY = -1;
    short downButton = -1;
    connect(&control, &KvRTB::MouseDown, [&](short &button, short &, float &x, float &y) {
        downButton = button;
        downX = x;
        downY = y;
    });
    connect(&control, &KvRTB::Begin, [&order] { order << "Begin"; });
    connect(&control, &KvRTB::MouseUp, [&order](short &, short &, float &, float &) { order << "MouseUp"; });
    connect(&control, &KvRTB::Click, [&order] { order << "Click"; });
    connect(&control, &KvRTB::Finish, [&order] { order << "Finish"; });
    QTest::mouseClick(editorViewport(control), Qt::LeftButton, Qt::NoModifier, QPoint(10, 6));
    QCOMPARE(downButton, short(1));
    QCOMPARE(downX, 150.0f);
    QCOMPARE(downY, 90.0f);
    QCOMPARE(order, (QStringList{"Begin", "MouseUp", "Finish", "Click"}));
}

void TestControl::selectionPassThrough()
{
    KvRTB control(m_services);
    control.setText(QStringLiteral("plain bold"));
    control.setSelStart(6);
    control.setSelLength(4);
    QCOMPARE(control.SelText(), QStringLiteral("bold"));
    QVERIFY(control.setProperty("SelBold", true));
    QCOMPARE(control.property("SelBold"), QVariant(true));
    control.setProperty("SelFontSize", 14);
    QCOMPARE(control.property("SelFontSize").toInt(), 14);

    // Across plain and bold the attribute is mixed: null by name.
    control.RichTextBox1().setSelection(0, -1);
    QVERIFY(control.property("SelBold").isNull());
    QVERIFY(control.property("SelFontSize").isNull());
    QCOMPARE(control.property("SelItalic"), QVariant(false));
    // Setting null leaves the attribute alone.
    control.setSelBold(QVariant());
    QVERIFY(control.SelBold().isNull());

    control.setSelTabCount(3);
    QCOMPARE(control.SelTabCount(), QVariant(3));
    QCOMPARE(control.SelTabs(0), QVariant(720));
    QCOMPARE(control.SelTabs(2), QVariant(2160));
    QVERIFY(control.SelTabs(3).isNull());
    control.setSelTabs(0, 3000); // stops stay in order
    QCOMPARE(control.SelTabs(2), QVariant(3000));
    control.setSelTabCount(1);
    QCOMPARE(control.SelTabs(0), QVariant(1440));

    control.setSelStart(0);
    control.setSelLength(5);
    control.setSelText(QStringLiteral("clear"));
    QCOMPARE(control.GetTextString(), QStringLiteral("clear bold"));
    QCOMPARE(control.SelStart(), 5);
}

void TestControl::mixedSelectionReadsNullByName_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("paragraph");
    // Values as a host passes them: -1 for True, plain integers for colours and sizes.
    QTest::newRow("SelBold") << QByteArray("SelBold") << QVariant(-1) << false;
    QTest::newRow("SelItalic") << QByteArray("SelItalic") << QVariant(-1) << false;
    QTest::newRow("SelUnderline") << QByteArray("SelUnderline") << QVariant(-1) << false;
    QTest::newRow("SelStrikeThru") << QByteArray("SelStrikeThru") << QVariant(-1) << false;
    QTest::newRow("SelProtected") << QByteArray("SelProtected") << QVariant(-1) << false;
    QTest::newRow("SelColor") << QByteArray("SelColor") << QVariant(255) << false;
    QTest::newRow("SelFontName") << QByteArray("SelFontName") << QVariant(QStringLiteral("Courier New")) << false;
    QTest::newRow("SelFontSize") << QByteArray("SelFontSize") << QVariant(20) << false;
    QTest::newRow("SelCharOffset") << QByteArray("SelCharOffset") << QVariant(60) << false;
    QTest::newRow("SelBullet") << QByteArray("SelBullet") << QVariant(-1) << true;
    QTest::newRow("SelIndent") << QByteArray("SelIndent") << QVariant(720) << true;
    QTest::newRow("SelHangingIndent") << QByteArray("SelHangingIndent") << QVariant(360) << true;
    QTest::newRow("SelRightIndent") << QByteArray("SelRightIndent") << QVariant(500) << true;
    QTest::newRow("SelTabCount") << QByteArray("SelTabCount") << QVariant(2) << true;
}

void TestControl::mixedSelectionReadsNullByName()
{
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    QFETCH(bool, paragraph);
    KvRTB control(m_services);
    control.setProperty("Text", QStringLiteral("one two\nthree four"));
    // The second word (or the second paragraph) gets the attribute.
    QVERIFY(control.setProperty("SelStart", paragraph ? 8 : 4));
    QVERIFY(control.setProperty("SelLength", paragraph ? 10 : 3));
    QVERIFY(control.setProperty(property.constData(), value));
    const QVariant applied = control.property(property.constData());
    QVERIFY2(applied.isValid(), "the attribute reads back where it is uniform");

    // Across both parts it is mixed: the host reads null, not a default value.
    QVERIFY(control.setProperty("SelStart", 0));
    QVERIFY(control.setProperty("SelLength", 18));
    QVERIFY2(!control.property(property.constData()).isValid(),
             qPrintable(control.property(property.constData()).toString()));
    // Writing null back leaves the mixed attribute as it is.
    QVERIFY(control.setProperty(property.constData(), QVariant()));
    QVERIFY(!control.property(property.constData()).isValid());
    control.setProperty("SelStart", paragraph ? 8 : 4);
    control.setProperty("SelLength", paragraph ? 10 : 3);
    QCOMPARE(control.property(property.constData()), applied);
}

void TestControl::byNameInvocation()
{
    KvRTB control(m_services);
    bool good = false;
    QVERIFY(QMetaObject::invokeMethod(&control, "IsArrayGood", Q_RETURN_ARG(bool, good),
                                      Q_ARG(QVariant, QVariant(QStringList{QStringLiteral("x")}))));
    QVERIFY(good);

    // Freezing by name nests with the surface's counter.
    bool lock = true;
    QVERIFY(QMetaObject::invokeMethod(&control, "LockWindowUpdateEx", Q_ARG(bool, lock)));
    QCOMPARE(control.RichTextBox1().freezeCount(), 1);
    QVariant ignored;
    QVERIFY(QMetaObject::invokeMethod(&control, "FreezeRichText", Q_RETURN_ARG(QVariant, ignored), Q_ARG(bool, false)));
    QCOMPARE(control.RichTextBox1().freezeCount(), 0);

    // An out argument written back through the by-name call.
    QStringList synonyms{QStringLiteral("kept")};
    QString answer;
    QVERIFY(QMetaObject::invokeMethod(&control, "GetSynonyms", Q_RETURN_ARG(QString, answer),
                                      Q_ARG(QString, QStringLiteral("xqzzv")), Q_ARG(QStringList &, synonyms)));
    QCOMPARE(answer, QStringLiteral("No synonyms found."));
    QCOMPARE(synonyms, QStringList{QStringLiteral("kept")});
    QVERIFY(QMetaObject::invokeMethod(&control, "GetSynonyms", Q_RETURN_ARG(QString, answer),
                                      Q_ARG(QString, QStringLiteral("aback")), Q_ARG(QStringList &, synonyms)));
    QVERIFY2(synonyms.contains(QStringLiteral("confused")), qPrintable(synonyms.join(QLatin1Char(','))));

    // Change tracking is the editor's modified flag.
    control.setText(QStringLiteral("changed"));
    QVERIFY(control.HasRTBChanged());
    QVERIFY(QMetaObject::invokeMethod(&control, "SetRTBChanged"));
    QVERIFY(!control.HasRTBChanged());
    // A host marks the document changed by name with its True.
    QVERIFY(QMetaObject::invokeMethod(&control, "SetRTBChanged", Q_ARG(bool, QVariant(-1).toBool())));
    QVERIFY(control.HasRTBChanged());
    QVERIFY(QMetaObject::invokeMethod(&control, "SetRTBChanged", Q_ARG(bool, false)));
    QVERIFY(!control.HasRTBChanged());
    bool result = true;
    QVERIFY(QMetaObject::invokeMethod(&control, "HasRTBChanged", Q_RETURN_ARG(bool, result)));
    QVERIFY(!result);
    control.SetRTBChanged(true);
    QVERIFY(control.HasRTBChanged());

    // Reading hwnd leaves the editor as it is: no native window of its own until the host
    // asks for one, and then hwnd is that window's id.
    control.show();
    QWidget *editor = control.RichTextBox1().widget();
    QCOMPARE(control.property("hwnd").toULongLong(), qulonglong(0));
    QVERIFY(!editor->testAttribute(Qt::WA_NativeWindow));
    const qulonglong native = qulonglong(editor->winId());
    QVERIFY(native != 0);
    QCOMPARE(control.property("hwnd").toULongLong(), native);
    QCOMPARE(control.GetRTFString(), control.RichTextBox1().rtf());
}

void TestControl::progressAndQuietSelection()
{
    KvRTB control(m_services);
    control.resize(200, 100);
    control.show();
    control.core().setProgress(40);
    QCOMPARE(control.ProgressPercentage(), short(40));
    QCOMPARE(control.ProgressBar1()->value(), 40);
    QVERIFY(control.ProgressBar1()->isVisible());
    control.core().setProgress(250);
    QCOMPARE(control.ProgressPercentage(), short(100));
    control.core().setProgress(0);
    QVERIFY(!control.ProgressBar1()->isVisible());

    // Bulk passes move the selection without telling the host; the user's moves are reported.
    control.setText(QStringLiteral("some words here"));
    QSignalSpy selChange(&control, &KvRTB::SelChange);
    {
        QuietSelection quiet(control.core());
        control.RichTextBox1().setSelection(5, 5);
        control.RichTextBox1().setSelection(0, 4);
    }
    QCOMPARE(selChange.count(), 0);
    control.RichTextBox1().setSelection(11, 4);
    QCOMPARE(selChange.count(), 1);
}

void TestControl::wordWrapSetsMyWrapStyle()
{
    KvRTB control(m_services);
    QSignalSpy menu(&control, &KvRTB::UpdateParentMenu);
    QSignalSpy changed(&control, &KvRTB::PropertyChanged);
    QStringList order;
    connect(&control, &KvRTB::UpdateParentMenu, this, [&order] { order << QStringLiteral("menu"); });
    connect(&control, &KvRTB::Finish, this, [&order] { order << QStringLiteral("finish"); });
    connect(&control, &KvRTB::Ready, this, [&order] { order << QStringLiteral("ready"); });
    control.Word_Wrap(false);
    QCOMPARE(control.RichTextBox1().wrapMode(), WrapMode::None);
    QCOMPARE(control.MyWrapStyle(), int(NoWrap));
    control.Word_Wrap(true);
    QCOMPARE(control.RichTextBox1().wrapMode(), WrapMode::Window);
    QCOMPARE(control.MyWrapStyle(), int(WindowWrap));
    control.Word_Wrap(true, true);
    QCOMPARE(control.MyWrapStyle(), int(RulerWrap));
    // The command raises Finish and Ready only: the wrapping style it records is no property
    // change of the host's.
    QCOMPARE(menu.count(), 0);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(order, (QStringList{QStringLiteral("finish"), QStringLiteral("ready"), QStringLiteral("finish"),
                                 QStringLiteral("ready"), QStringLiteral("finish"), QStringLiteral("ready")}));

    // By name, with the switches a host passes (-1 for True), the ruler switch included.
    control.setRightMargin(2880);
    QVERIFY(QMetaObject::invokeMethod(&control, "Word_Wrap", Q_ARG(bool, QVariant(-1).toBool()),
                                      Q_ARG(bool, QVariant(-1).toBool())));
    QCOMPARE(control.RichTextBox1().wrapMode(), WrapMode::Width);
    QCOMPARE(control.MyWrapStyle(), int(RulerWrap));
    QVERIFY(QMetaObject::invokeMethod(&control, "Word_Wrap", Q_ARG(bool, false)));
    QCOMPARE(control.RichTextBox1().wrapMode(), WrapMode::None);
    QCOMPARE(control.MyWrapStyle(), int(NoWrap));
}

void TestControl::createShowResizeDestroyDoesNotGrow()
{
    QWidget host;
    host.resize(400, 300);
    host.show();
    auto cycle = [this, &host](int times) {
        for (int i = 0; i < times; ++i) {
            auto *control = new KvRTB(m_services, &host);
            control->initProperties();
            control->show();
            control->resize(200 + i % 50, 100 + i % 30);
            control->setDisplayRuler(i % 2 == 0);
            delete control;
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    };
    cycle(200); // warm caches (fonts, styles) first
    const qint64 before = residentKilobytes();
    QVERIFY(before > 0);
    cycle(1000);
    const qint64 after = residentKilobytes();
    qInfo("Resident memory before %lld kB, after 1000 controls %lld kB", before, after);
    // A control that leaked its editor would cost several megabytes over 1000 rounds.
    QVERIFY2(after - before < 2048, qPrintable(QStringLiteral("grew by %1 kB").arg(after - before)));
}

// The public members of the built areas reach them through the control.
void TestControl::membersReachTheirAreas()
{
    QTemporaryDir dir;
    KvRTB control(m_services);
    control.resize(400, 200);
    control.RichTextBox1().setText(QStringLiteral("Write to someone@example.com\nsecond line"));

    // Lines: 1-based current line, 0-based line text.
    control.RichTextBox1().setSelection(32, 0);
    QCOMPARE(control.CurrentLine(), 2);
    QCOMPARE(control.GetAnyLineText(0), QStringLiteral("Write to someone@example.com"));

    // Hyperlinks: the address is marked with the link marker.
    control.HyperLinkDocument();
    control.RichTextBox1().setSelection(9, 19);
    QVERIFY(control.RichTextBox1().selectionCharFormat().hasLinkMarker());
    QString address;
    QVERIFY(control.DetectEmailZone(12, address));
    QCOMPARE(address, QStringLiteral("someone@example.com"));

    // Formatting commands and the special undo.
    bool apply = true;
    control.AlignCenter(apply);
    QCOMPARE(control.GetAlignment(), QVariant(int(mCenter)));
    control.RichTextBox1().setSelection(0, -1);
    control.Delete();
    QCOMPARE(control.GetTextString(), QString());
    control.HyperUndo();
    QCOMPARE(control.GetTextString(), QStringLiteral("Write to someone@example.com\nsecond line"));

    // Documents: save as RTF and load back through the control.
    const QString path = dir.filePath(QStringLiteral("doc.rtf"));
    QVERIFY(control.SaveFile(path, rtfRTF));
    control.RichTextBox1().setText(QString());
    bool opened = false;
    control.LoadFile(path, rtfRTF, nullptr, &opened);
    QVERIFY(opened);
    QCOMPARE(control.GetTextString(), QStringLiteral("Write to someone@example.com\nsecond line"));

    // Word lists.
    QString prefix = QStringLiteral("aardv");
    QStringList words;
    QVERIFY(control.GetWordsThatStartWith(prefix, words, 3));
    QVERIFY(!words.isEmpty());
    QVERIFY(words.first().startsWith(QStringLiteral("aardvark")));
}

void TestControl::completionsRequestedByInput()
{
    // With the desktop's services, the click or key that made the host ask is input already
    // handled, not input waiting: no completion may be passed over because of it.
    QWidget host;
    auto *control = new KvRTB(&host);
    host.resize(300, 200);
    host.show();
    QWidget *editor = control->RichTextBox1().widget();
    QTest::keyClick(editor, Qt::Key_Z);
    QTest::mouseClick(editor, Qt::LeftButton);
    QString prefix = QStringLiteral("zul");
    QStringList words;
    QVERIFY(control->GetWordsThatStartWith(prefix, words, 1));
    QCOMPARE(words, QStringList{QStringLiteral("Zulu")});

    QTest::keyClick(editor, Qt::Key_B);
    prefix = QStringLiteral("ab");
    bool found = false;
    QVERIFY(QMetaObject::invokeMethod(control, "GetWordsThatStartWith", Q_RETURN_ARG(bool, found),
                                      Q_ARG(QString &, prefix), Q_ARG(QStringList &, words), Q_ARG(int, 2)));
    QVERIFY(found);
    QString plainPrefix = QStringLiteral("ab");
    QStringList expected;
    QVERIFY(WordLists::GetWordsThatStartWith(plainPrefix, expected, 2));
    QCOMPARE(expected.size(), 2);
    QCOMPARE(words, expected);
}

void TestControl::optionalOutArgumentsByName()
{
    // Every member with optional out arguments (pointers in C++) has a form that a host calling
    // by name can use: all the arguments, the optional ones as references.
    const QMetaObject &meta = KvRTB::staticMetaObject;
    QSet<QByteArray> signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        signatures.insert(meta.method(i).methodSignature());
    int withPointers = 0;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if (method.attributes() & QMetaMethod::Cloned)
            continue; // a shorter form made from default arguments; the full form is checked
        QList<QByteArray> types = method.parameterTypes();
        bool pointer = false;
        for (QByteArray &type : types) {
            if (type.endsWith('*')) {
                pointer = true;
                type.replace("const ", "");
                type.back() = '&';
            }
        }
        if (!pointer)
            continue;
        ++withPointers;
        const QByteArray byName = method.name() + '(' + types.join(',') + ')';
        QVERIFY2(signatures.contains(QMetaObject::normalizedSignature(byName.constData())), byName.constData());
    }
    QVERIFY(withPointers >= 13);

    KvRTB control(m_services);
    control.setText(QStringLiteral("first\nsecond"));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("lines.txt"));
    QVERIFY(control.SaveFile(path, rtfText));
    control.setText(QString());
    bool links = false;
    bool opened = false;
    QVERIFY(QMetaObject::invokeMethod(&control, "LoadFile", Q_ARG(QString, path), Q_ARG(kvrtb::QFileType, rtfText),
                                      Q_ARG(bool &, links), Q_ARG(bool &, opened)));
    QVERIFY(opened);
    QCOMPARE(control.GetTextString(), QStringLiteral("first\nsecond"));
    opened = true;
    QVERIFY(QMetaObject::invokeMethod(&control, "LoadFile", Q_ARG(QString, dir.filePath(QStringLiteral("none.txt"))),
                                      Q_ARG(kvrtb::QFileType, rtfText), Q_ARG(bool &, links), Q_ARG(bool &, opened)));
    QVERIFY(!opened);

    control.RichTextBox1().setSelection(8, 0);
    int lineStart = 0;
    int lineLength = 0;
    QString line;
    QVERIFY(QMetaObject::invokeMethod(&control, "GetLineText", Q_RETURN_ARG(QString, line),
                                      Q_ARG(int &, lineStart), Q_ARG(int &, lineLength)));
    QCOMPARE(line, QStringLiteral("second"));
    QCOMPARE(lineStart, 7); // 1-based
    QCOMPARE(lineLength, 6);
}

QTEST_MAIN(TestControl)
#include "test_control.moc"
