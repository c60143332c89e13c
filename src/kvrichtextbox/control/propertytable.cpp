#include "control/propertytable.h"

#include "core/threadstate.h"

#include <QAbstractScrollArea>
#include <QCursor>
#include <QImage>
#include <QWidget>

#include <limits>

namespace kvrtb {

namespace {

constexpr int kCustomPointer = 99;

// Rows of settings the control keeps itself: the value lives in `ControlProperties`.
#define KVRTB_CONTROL_ROW(name, type, defaultValue, menu, toVariant, fromVariant)                   \
    PropertySpec                                                                                   \
    {                                                                                              \
        #name, type, QVariant(defaultValue), AppliedTo::Control, menu,                             \
            [](const PropertyTarget &t) { return QVariant(toVariant(t.properties.name)); },       \
            [](PropertyTarget &t, const QVariant &v, QString *) {                                  \
                t.properties.name = fromVariant(v);                                                \
                return true;                                                                       \
            }                                                                                      \
    }

bool toBool(const QVariant &v) { return v.toBool(); }
Colour toColour(const QVariant &v) { return v.toUInt(); }
QString toString(const QVariant &v) { return v.toString(); }
bool asBool(bool b) { return b; }
uint asColour(Colour c) { return c; }
QString asString(const QString &s) { return s; }

#define KVRTB_BOOL(name, def, menu) KVRTB_CONTROL_ROW(name, PropertyType::Boolean, bool(def), menu, asBool, toBool)
#define KVRTB_COLOUR(name, def) KVRTB_CONTROL_ROW(name, PropertyType::Colour32, uint(def), false, asColour, toColour)
#define KVRTB_NARROW_COLOUR(name) KVRTB_CONTROL_ROW(name, PropertyType::Colour16, uint(0), false, asColour, toColour)
#define KVRTB_STRING(name) KVRTB_CONTROL_ROW(name, PropertyType::String, QString(), false, asString, toString)

QList<PropertySpec> buildTable()
{
    using T = PropertyType;
    const auto editor = AppliedTo::Editor;
    return {
        KVRTB_BOOL(AllowImages, true, true),
        {"Appearance", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.editor.appearance); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.editor.appearance = v.toInt();
             t.surface.setAppearance(t.editor.appearance);
             return true;
         }},
        {"BackColor", T::Colour32, QVariant(uint(0x80000005u)), editor, false,
         [](const PropertyTarget &t) { return QVariant(uint(t.surface.backColor())); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setBackColor(v.toUInt());
             return true;
         }},
        {"BorderStyle", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.editor.borderStyle); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.editor.borderStyle = v.toInt();
             t.surface.setBorderStyle(t.editor.borderStyle);
             return true;
         }},
        {"BulletIndent", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.editor.bulletIndent); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.editor.bulletIndent = v.toInt();
             return true;
         }},
        {"Enabled", T::Boolean, QVariant(true), editor, false,
         [](const PropertyTarget &t) {
             // The editor's own setting, not whether a disabled window around it greys it.
             const QWidget *editor = t.surface.widget();
             const QWidget *parent = editor ? editor->parentWidget() : nullptr;
             return QVariant(parent ? editor->isEnabledTo(parent) : t.surface.isEnabled());
         },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setEnabled(v.toBool());
             return true;
         }},
        {"Font", T::Font, QVariant(), editor, false,
         [](const PropertyTarget &t) {
             // The editor's own font is the default: it is "no font" to the bag.
             const QFont font = t.surface.font();
             return font == t.editor.editorFont ? QVariant() : QVariant(font);
         },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setFont(v.isValid() ? v.value<QFont>() : t.editor.editorFont);
             return true;
         }},
        {"Locked", T::Boolean, QVariant(false), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.surface.isReadOnly()); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setReadOnly(v.toBool());
             return true;
         }},
        {"MaxLength", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.surface.maxLength()); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setMaxLength(std::max(0, v.toInt()));
             return true;
         }},
        {"MouseIcon", T::Picture, QVariant(), editor, false,
         [](const PropertyTarget &t) {
             return t.editor.mouseIcon.isNull() ? QVariant() : QVariant(t.editor.mouseIcon);
         },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.editor.mouseIcon = v.isValid() ? v.value<QPixmap>() : QPixmap();
             applyMouseIcon(t);
             return true;
         }},
        {"MousePointer", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(int(t.surface.mousePointer())); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setMousePointer(MousePointer(v.toInt()));
             applyMouseIcon(t);
             return true;
         }},
        {"RightMargin", T::Int16, QVariant(0), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.surface.rightMargin()); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setRightMargin(v.toInt());
             return true;
         }},
        {"Text", T::String, QVariant(QString()), editor, false,
         [](const PropertyTarget &t) { return QVariant(t.surface.text()); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.surface.setText(v.toString());
             return true;
         }},
        {"TextRTF", T::String, QVariant(QString()), editor, false,
         [](const PropertyTarget &t) {
             // An empty document has nothing to keep; its RTF envelope is not a setting.
             return QVariant(t.surface.textLength() == 0 ? QString() : t.surface.rtf());
         },
         [](PropertyTarget &t, const QVariant &v, QString *error) {
             const QString rtf = v.toString();
             if (rtf.isEmpty())
                 return true; // no stored document: the plain text stays
             QString reason;
             if (t.surface.setRtf(rtf, &reason))
                 return true;
             if (error)
                 *error = QStringLiteral("The stored TextRTF could not be read (%1); the document keeps the "
                                         "stored Text.").arg(reason);
             return false;
         }},
        KVRTB_BOOL(RemoveUnUsableData, true, true),
        KVRTB_COLOUR(ColorVBNetKeyWord, 0xFF0000),
        KVRTB_COLOUR(ColorVB6KeyWord, 0xC00000),
        KVRTB_COLOUR(ColorVBNetComment, 0x8000),
        KVRTB_COLOUR(ColorVB6Comment, 0x8000),
        KVRTB_COLOUR(ColorVBNetString, 0xC0),
        KVRTB_NARROW_COLOUR(ColorVB6String),
        KVRTB_COLOUR(ColorMyFirstKeyWord, 0xC00000),
        KVRTB_COLOUR(ColorMySecondKeyWord, 0x8000),
        KVRTB_NARROW_COLOUR(ColorMyThirdKeyWord),
        KVRTB_STRING(MyFirstString),
        KVRTB_STRING(MySecondString),
        KVRTB_STRING(MyThirdString),
        {"DetectHyperLinks", T::Boolean, QVariant(true), AppliedTo::Control, true,
         [](const PropertyTarget &t) { return QVariant(t.properties.DetectHyperLinks); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             // Typing and loading consult the per-thread copy.
             t.properties.DetectHyperLinks = v.toBool();
             threadState().detectHyperLinks = t.properties.DetectHyperLinks;
             return true;
         }},
        KVRTB_BOOL(AutoVMenu, true, false),
        KVRTB_COLOUR(MyFontColor, 0),
        KVRTB_COLOUR(MyHLColor, 0xFFFF),
        KVRTB_BOOL(ShowVB6Syntax, false, true),
        KVRTB_BOOL(UseCustomFontDialog, true, false),
        {"PrinterMargin", T::Int32, QVariant(int(Academic)), AppliedTo::Control, false,
         [](const PropertyTarget &t) { return QVariant(t.properties.PrinterMargin); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.properties.PrinterMargin = v.toInt();
             return true;
         }},
        KVRTB_STRING(WhatsThisHelpFile),
        KVRTB_BOOL(TurnOnSound, true, false),
        {"MyWrapStyle", T::Int16, QVariant(int(RulerWrap)), AppliedTo::Control, true,
         [](const PropertyTarget &t) { return QVariant(t.properties.MyWrapStyle); },
         [](PropertyTarget &t, const QVariant &v, QString *) {
             t.properties.MyWrapStyle = v.toInt();
             return true;
         }},
        KVRTB_BOOL(DisplayRuler, true, true),
        KVRTB_BOOL(AllowRTFSave, false, false),
    };
}

QString describe(const QVariant &stored)
{
    const QString text = stored.toString();
    return text.isEmpty() ? QStringLiteral("a value of type %1").arg(QLatin1String(stored.typeName()))
                          : QStringLiteral("\"%1\"").arg(text.left(40));
}

bool isInteger(const QVariant &v)
{
    switch (v.metaType().id()) {
    case QMetaType::Short: case QMetaType::UShort: case QMetaType::Int: case QMetaType::UInt:
    case QMetaType::Long: case QMetaType::ULong: case QMetaType::LongLong: case QMetaType::ULongLong:
    case QMetaType::Char: case QMetaType::SChar: case QMetaType::UChar:
        return true;
    default:
        return false;
    }
}

/// An integer from any integer type or decimal text; false for anything else.
bool integerFrom(const QVariant &stored, qint64 *out)
{
    if (isInteger(stored)) {
        if (stored.metaType().id() == QMetaType::ULongLong) {
            const qulonglong u = stored.toULongLong();
            if (u > qulonglong(std::numeric_limits<qint64>::max()))
                return false;
            *out = qint64(u);
        } else {
            *out = stored.toLongLong();
        }
        return true;
    }
    if (stored.metaType().id() == QMetaType::Bool) {
        *out = stored.toBool() ? -1 : 0; // the interface's True and False
        return true;
    }
    if (stored.metaType().id() == QMetaType::QString || stored.metaType().id() == QMetaType::QByteArray) {
        bool ok = false;
        *out = stored.toString().trimmed().toLongLong(&ok);
        return ok;
    }
    return false;
}

bool fail(QString *error, const PropertySpec &entry, const QVariant &stored, const char *kind)
{
    if (error)
        *error = QStringLiteral("The stored value of %1 (%2) is not %3.")
                     .arg(QLatin1String(entry.key), describe(stored), QLatin1String(kind));
    return false;
}

} // namespace

const QList<PropertySpec> &propertyTable()
{
    static const QList<PropertySpec> table = buildTable();
    return table;
}

const PropertySpec *findProperty(const QString &key)
{
    for (const PropertySpec &entry : propertyTable()) {
        if (key == QLatin1String(entry.key))
            return &entry;
    }
    return nullptr;
}

QVariant storedValue(const PropertySpec &entry, const QVariant &value)
{
    switch (entry.type) {
    case PropertyType::Boolean:
        return QVariant(value.toBool());
    case PropertyType::Int16:
        return QVariant::fromValue(qint16(value.toInt()));
    case PropertyType::Int32:
        return QVariant::fromValue(qint32(value.toInt()));
    case PropertyType::Colour32:
        return QVariant::fromValue(quint32(value.toUInt()));
    case PropertyType::Colour16: {
        const quint32 colour = value.toUInt();
        if (colour <= quint32(std::numeric_limits<qint16>::max()))
            return QVariant::fromValue(qint16(colour));
        return QVariant::fromValue(colour);
    }
    case PropertyType::String:
        return QVariant(value.toString());
    case PropertyType::Font:
    case PropertyType::Picture:
        return value;
    }
    return value;
}

QVariant storedDefault(const PropertySpec &entry)
{
    return entry.defaultValue.isValid() ? storedValue(entry, entry.defaultValue) : QVariant();
}

bool valueFromStored(const PropertySpec &entry, const QVariant &stored, QVariant *value, QString *error)
{
    if (!stored.isValid()) {
        // Only the object properties have "none" as a value.
        if (entry.type == PropertyType::Font || entry.type == PropertyType::Picture) {
            *value = QVariant();
            return true;
        }
        return fail(error, entry, stored, "a value");
    }
    qint64 number = 0;
    switch (entry.type) {
    case PropertyType::Boolean: {
        if (stored.metaType().id() == QMetaType::Bool) {
            *value = stored.toBool();
            return true;
        }
        const QString text = stored.toString().trimmed().toLower();
        if (text == QLatin1String("true") || text == QLatin1String("false")) {
            *value = text == QLatin1String("true");
            return true;
        }
        if (!integerFrom(stored, &number) || (number != 0 && number != -1 && number != 1))
            return fail(error, entry, stored, "a Boolean");
        *value = number != 0;
        return true;
    }
    case PropertyType::Int16:
        if (!integerFrom(stored, &number) || number < std::numeric_limits<qint16>::min() ||
            number > std::numeric_limits<qint16>::max())
            return fail(error, entry, stored, "a 16-bit integer");
        *value = int(number);
        return true;
    case PropertyType::Int32:
        if (!integerFrom(stored, &number) || number < std::numeric_limits<qint32>::min() ||
            number > std::numeric_limits<qint32>::max())
            return fail(error, entry, stored, "a 32-bit integer");
        *value = int(number);
        return true;
    case PropertyType::Colour32:
    case PropertyType::Colour16:
        // Colours written as signed 32-bit numbers (system colours are negative then) are the
        // same bits; a narrow value is sign-extended like the host's 16-bit integers.
        if (!integerFrom(stored, &number) || number < std::numeric_limits<qint32>::min() ||
            number > qint64(std::numeric_limits<quint32>::max()))
            return fail(error, entry, stored, "a colour");
        *value = uint(quint32(number));
        return true;
    case PropertyType::String:
        if (stored.metaType().id() == QMetaType::QStringList) {
            // A text-based settings file reads an unquoted "a,b" as a list.
            *value = stored.toStringList().join(QLatin1Char(','));
            return true;
        }
        if (stored.metaType().id() != QMetaType::QString && stored.metaType().id() != QMetaType::QByteArray)
            return fail(error, entry, stored, "a string");
        *value = stored.toString();
        return true;
    case PropertyType::Font: {
        if (stored.metaType().id() == QMetaType::QFont) {
            *value = stored;
            return true;
        }
        QFont font;
        if (stored.metaType().id() != QMetaType::QString || !font.fromString(stored.toString()))
            return fail(error, entry, stored, "a font");
        *value = font;
        return true;
    }
    case PropertyType::Picture: {
        QPixmap picture;
        if (stored.metaType().id() == QMetaType::QPixmap)
            picture = stored.value<QPixmap>();
        else if (stored.metaType().id() == QMetaType::QImage)
            picture = QPixmap::fromImage(stored.value<QImage>());
        else if (stored.metaType().id() == QMetaType::QByteArray)
            picture.loadFromData(stored.toByteArray());
        if (picture.isNull())
            return fail(error, entry, stored, "a picture");
        *value = picture;
        return true;
    }
    }
    return fail(error, entry, stored, "a value");
}

void initProperties(PropertyTarget &target)
{
    for (const PropertySpec &entry : propertyTable())
        entry.set(target, entry.defaultValue, nullptr);
}

PropertyPassResult readProperties(PropertyTarget &target, PropertyBag &bag)
{
    PropertyPassResult result;
    for (const PropertySpec &entry : propertyTable()) {
        const QString key = QLatin1String(entry.key);
        QVariant stored;
        QString error;
        if (!bag.readProperty(key, storedDefault(entry), &stored, &error))
            return {false, error};
        QVariant value;
        if (!valueFromStored(entry, stored, &value, &error))
            return {false, error};
        if (!entry.set(target, value, &error))
            result = {false, error};
    }
    return result;
}

PropertyPassResult writeProperties(const PropertyTarget &target, PropertyBag &bag)
{
    for (const PropertySpec &entry : propertyTable()) {
        const QVariant value = entry.get(target);
        QString error;
        if (!bag.writeProperty(QLatin1String(entry.key), value.isValid() ? storedValue(entry, value) : QVariant(),
                               storedDefault(entry), &error))
            return {false, error};
    }
    return {};
}

void applyMouseIcon(PropertyTarget &target)
{
    if (int(target.surface.mousePointer()) != kCustomPointer)
        return;
    auto *area = qobject_cast<QAbstractScrollArea *>(target.surface.widget());
    if (!area)
        return;
    if (target.editor.mouseIcon.isNull())
        target.surface.setMousePointer(target.surface.mousePointer()); // the surface's own pointer
    else
        area->viewport()->setCursor(QCursor(target.editor.mouseIcon));
}

} // namespace kvrtb
