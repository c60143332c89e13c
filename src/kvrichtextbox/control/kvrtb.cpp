#include "control/kvrtb.h"

#include "editing/editcommands.h"
#include "editorinput/editorinput.h"
#include "ruler/ruler.h"
#include "ruler/rulerstrip.h"
#include "spelling/dictionary.h"

#include "core/controlcore.h"
#include "control/kvrtb_p.h"
#include "surface/qtplatformservices.h"
#include "core/threadstate.h"

#include <QFrame>
#include <QProgressBar>
#include <QSequentialIterable>

#include <algorithm>
#include <limits>

namespace kvrtb {

namespace {

// A new control is 1575 by 735 twips.
constexpr int kInitialWidth = 1575 / kTwipsPerPixel;
constexpr int kInitialHeight = 735 / kTwipsPerPixel;
constexpr int kProgressBarHeight = 12;

const QString kDefaultDisplayName = QStringLiteral("KvRTB1");

} // namespace

// --- Life cycle -----------------------------------------------------------------------------

KvRTB::KvRTB(QWidget *parent) : QWidget(parent), m_ownServices(std::make_unique<QtPlatformServices>(this))
{
    initialise(*m_ownServices);
}

KvRTB::KvRTB(PlatformServices &services, QWidget *parent) : QWidget(parent)
{
    initialise(services);
}

void KvRTB::initialise(PlatformServices &services)
{
    auto *frame = new QFrame(this);
    frame->setFrameShape(QFrame::NoFrame);
    frame->setObjectName(QStringLiteral("RTBPicture"));
    m_rtbPicture = frame;
    m_picture1 = new QWidget(this);
    m_picture1->setObjectName(QStringLiteral("Picture1"));
    m_picture1->hide();
    m_progressBar = new QProgressBar(this);
    m_progressBar->setObjectName(QStringLiteral("ProgressBar1"));
    m_progressBar->setRange(0, 100);
    m_progressBar->setTextVisible(false);
    m_progressBar->hide();

    m_core = std::make_unique<ControlCore>(m_rtbPicture, services, static_cast<ControlEvents &>(*this));
    m_core->surface().widget()->setObjectName(QStringLiteral("RichTextBox1"));
    m_core->converter().widget()->setObjectName(QStringLiteral("RichTextBox2"));
    m_inputCommands = std::make_unique<InputCommands>(*this);
    m_core->editorInput().setHost(m_inputCommands.get());
    m_core->surface().setListener(&m_core->editorInput());
    // The ruler strip (`MasterPic`) with its shading, scale and indent handles.
    m_masterPic = new RulerStrip(m_core->ruler(), m_core->surface(), this);

    // The editor starts flat and borderless, as the property defaults say; its own font is what
    // `Font` means when no font is set.
    m_editorSettings.editorFont = m_core->surface().font();
    m_core->surface().setAppearance(m_editorSettings.appearance);
    m_core->surface().setBorderStyle(m_editorSettings.borderStyle);

    // The surface's freeze counter stands for the document model's freeze; nothing to obtain.
    threadState().cancelRequested = false;
    threadState().scratch.clear();
    layoutChildren();
}

KvRTB::~KvRTB()
{
    // The strip draws from the core's ruler: it goes before the core does.
    delete m_masterPic;
    m_masterPic = nullptr;
    m_core->surface().setListener(nullptr);
    m_core->surface().setText(QString());
    m_core->converter().setText(QString());
    threadState().scratch.clear();
}

void KvRTB::initProperties()
{
    PropertyTarget target = propertyTarget();
    kvrtb::initProperties(target);
    resize(kInitialWidth, kInitialHeight);
    const QString name = objectName().isEmpty() ? kDefaultDisplayName : objectName();
    m_core->surface().setText(name);
    layoutChildren();
}

PropertyPassResult KvRTB::readProperties(PropertyBag &bag)
{
    PropertyTarget target = propertyTarget();
    const PropertyPassResult result = kvrtb::readProperties(target, bag);
    layoutChildren();
    return result;
}

PropertyPassResult KvRTB::writeProperties(PropertyBag &bag) const
{
    return kvrtb::writeProperties(propertyTarget(), bag);
}

EditorSurface &KvRTB::RichTextBox1()
{
    return m_core->surface();
}

EditorSurface &KvRTB::RichTextBox2()
{
    return m_core->converter();
}

void KvRTB::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutChildren();
}

void KvRTB::layoutChildren()
{
    if (!m_masterPic)
        return; // being destroyed
    const int w = width();
    const int h = height();
    const bool ruler = m_core->properties().DisplayRuler;
    const int strip = ruler ? std::min(kRulerStripHeight, h) : 0;
    m_masterPic->setGeometry(0, 0, w, strip);
    m_masterPic->setVisible(ruler);
    m_rtbPicture->setGeometry(0, strip, w, h - strip);
    m_core->surface().widget()->setGeometry(0, 0, w, h - strip);
    // The progress bar lies over the foot of the editor while a long operation runs.
    m_progressBar->setGeometry(0, std::max(0, h - kProgressBarHeight), w, std::min(h, kProgressBarHeight));
    m_progressBar->raise();
    if (ruler)
        m_core->ruler().draw();
}

// --- Persisted properties -------------------------------------------------------------------

PropertyTarget KvRTB::propertyTarget() const
{
    auto *self = const_cast<KvRTB *>(this);
    return PropertyTarget{self->m_core->properties(), self->m_core->surface(), m_editorSettings};
}

QVariant KvRTB::propertyValue(const char *key) const
{
    const PropertySpec *entry = findProperty(QLatin1String(key));
    return entry ? entry->get(propertyTarget()) : QVariant();
}

void KvRTB::setPropertyValue(const char *key, const QVariant &value)
{
    const PropertySpec *entry = findProperty(QLatin1String(key));
    if (!entry)
        return;
    QVariant applied = value;
    // The bag keeps 16-bit values: a wider one is brought into range rather than cut.
    if (entry->type == PropertyType::Int16)
        applied = std::clamp(value.toInt(), int(std::numeric_limits<qint16>::min()),
                             int(std::numeric_limits<qint16>::max()));
    PropertyTarget target = propertyTarget();
    QString error;
    if (!entry->set(target, applied, &error))
        qWarning("KvRTB: %s", qPrintable(error));
    emit PropertyChanged(QLatin1String(entry->key));
    if (entry->updatesParentMenu)
        emit UpdateParentMenu();
    if (qstrcmp(entry->key, "DisplayRuler") == 0)
        layoutChildren();
    else if (qstrcmp(entry->key, "PrinterMargin") == 0)
        m_core->ruler().shade();
}

#define KVRTB_PERSISTED(Type, name, convert, SetterArg, setter)                                     \
    Type KvRTB::name() const { return propertyValue(#name).convert(); }                           \
    void KvRTB::setter(SetterArg value) { setPropertyValue(#name, QVariant(value)); }

KVRTB_PERSISTED(bool, AllowImages, toBool, bool, setAllowImages)
KVRTB_PERSISTED(int, Appearance, toInt, int, setAppearance)
KVRTB_PERSISTED(uint, BackColor, toUInt, uint, setBackColor)
KVRTB_PERSISTED(int, BorderStyle, toInt, int, setBorderStyle)
KVRTB_PERSISTED(int, BulletIndent, toInt, int, setBulletIndent)
KVRTB_PERSISTED(bool, Enabled, toBool, bool, setEditorEnabled)
KVRTB_PERSISTED(bool, Locked, toBool, bool, setLocked)
KVRTB_PERSISTED(int, MaxLength, toInt, int, setMaxLength)
KVRTB_PERSISTED(int, MousePointer, toInt, int, setMousePointer)
KVRTB_PERSISTED(int, RightMargin, toInt, int, setRightMargin)
KVRTB_PERSISTED(QString, Text, toString, const QString &, setText)
KVRTB_PERSISTED(QString, TextRTF, toString, const QString &, setTextRTF)
KVRTB_PERSISTED(bool, RemoveUnUsableData, toBool, bool, setRemoveUnUsableData)
KVRTB_PERSISTED(uint, ColorVBNetKeyWord, toUInt, uint, setColorVBNetKeyWord)
KVRTB_PERSISTED(uint, ColorVB6KeyWord, toUInt, uint, setColorVB6KeyWord)
KVRTB_PERSISTED(uint, ColorVBNetComment, toUInt, uint, setColorVBNetComment)
KVRTB_PERSISTED(uint, ColorVB6Comment, toUInt, uint, setColorVB6Comment)
KVRTB_PERSISTED(uint, ColorVBNetString, toUInt, uint, setColorVBNetString)
KVRTB_PERSISTED(uint, ColorVB6String, toUInt, uint, setColorVB6String)
KVRTB_PERSISTED(uint, ColorMyFirstKeyWord, toUInt, uint, setColorMyFirstKeyWord)
KVRTB_PERSISTED(uint, ColorMySecondKeyWord, toUInt, uint, setColorMySecondKeyWord)
KVRTB_PERSISTED(uint, ColorMyThirdKeyWord, toUInt, uint, setColorMyThirdKeyWord)
KVRTB_PERSISTED(QString, MyFirstString, toString, const QString &, setMyFirstString)
KVRTB_PERSISTED(QString, MySecondString, toString, const QString &, setMySecondString)
KVRTB_PERSISTED(QString, MyThirdString, toString, const QString &, setMyThirdString)
KVRTB_PERSISTED(bool, DetectHyperLinks, toBool, bool, setDetectHyperLinks)
KVRTB_PERSISTED(bool, AutoVMenu, toBool, bool, setAutoVMenu)
KVRTB_PERSISTED(uint, MyFontColor, toUInt, uint, setMyFontColor)
KVRTB_PERSISTED(uint, MyHLColor, toUInt, uint, setMyHLColor)
KVRTB_PERSISTED(bool, ShowVB6Syntax, toBool, bool, setShowVB6Syntax)
KVRTB_PERSISTED(bool, UseCustomFontDialog, toBool, bool, setUseCustomFontDialog)
KVRTB_PERSISTED(int, PrinterMargin, toInt, int, setPrinterMargin)
KVRTB_PERSISTED(QString, WhatsThisHelpFile, toString, const QString &, setWhatsThisHelpFile)
KVRTB_PERSISTED(bool, TurnOnSound, toBool, bool, setTurnOnSound)
KVRTB_PERSISTED(int, MyWrapStyle, toInt, int, setMyWrapStyle)
KVRTB_PERSISTED(bool, DisplayRuler, toBool, bool, setDisplayRuler)
KVRTB_PERSISTED(bool, AllowRTFSave, toBool, bool, setAllowRTFSave)

#undef KVRTB_PERSISTED

QFont KvRTB::Font() const
{
    return m_core->surface().font();
}

void KvRTB::setEditorFont(const QFont &value)
{
    setPropertyValue("Font", QVariant(value));
}

QPixmap KvRTB::MouseIcon() const
{
    return m_editorSettings.mouseIcon;
}

void KvRTB::setMouseIcon(const QPixmap &value)
{
    setPropertyValue("MouseIcon", value.isNull() ? QVariant() : QVariant(value));
}

// --- Control shell --------------------------------------------------------------------------

qulonglong KvRTB::hwnd() const
{
    return m_core->surface().windowHandle();
}

void KvRTB::Refresh()
{
    repaint();
    m_core->surface().refresh();
}

void KvRTB::SetInFocus()
{
    m_core->surface().setFocus();
}

void KvRTB::ToolTipTxt(const QString &NewTip)
{
    m_core->surface().setToolTip(NewTip);
}

QVariant KvRTB::FreezeRichText(const bool &FreezeRTB)
{
    LockWindowUpdateEx(FreezeRTB);
    return QVariant();
}

void KvRTB::LockWindowUpdateEx(const bool &MyLockBool)
{
    m_core->lockWindowUpdate(MyLockBool);
}

void KvRTB::PrepareKvRTB()
{
    threadState().scratch.clear();
    m_list1.clear();
    m_regexTxt.clear();
    m_regexTxt2.clear();
    m_regexTxt3.clear();
    Dictionary::Prepare();
}

QString KvRTB::GetRTFString() const
{
    return m_core->surface().rtf();
}

QString KvRTB::GetTextString() const
{
    return m_core->surface().text();
}

bool KvRTB::IsArrayGood(const QVariant &AnyArray) const
{
    const int type = AnyArray.metaType().id();
    // Strings are iterable to Qt but are not arrays to the interface.
    if (!AnyArray.isValid() || type == QMetaType::QString || type == QMetaType::QByteArray)
        return false;
    if (!AnyArray.canView<QSequentialIterable>())
        return false;
    const QSequentialIterable items = AnyArray.value<QSequentialIterable>();
    return items.size() > 0;
}

short KvRTB::ProgressPercentage() const
{
    return short(m_core->progress());
}

void KvRTB::KillSwitch()
{
    threadState().cancelRequested = true;
}

void KvRTB::Word_Wrap(const bool &Wrap, const bool &RulerWrap)
{
    // The wrapping mode is recorded as it stands, without the notices of a property set by
    // the host (`PropertyChanged`, `UpdateParentMenu`): the command raises `Finish` and `Ready`
    // only.
    m_core->properties().MyWrapStyle = !Wrap ? NoWrap : RulerWrap ? kvrtb::RulerWrap : WindowWrap;
    m_core->editCommands().Word_Wrap(Wrap, RulerWrap);
}

bool KvRTB::HasRTBChanged() const
{
    return m_core->surface().isModified();
}

void KvRTB::SetRTBChanged(const bool &BoolValQ)
{
    m_core->surface().setModified(BoolValQ);
}

} // namespace kvrtb
