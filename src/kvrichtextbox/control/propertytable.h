#pragma once

#include "core/controlproperties.h"
#include "core/editorsurface.h"
#include "control/propertybag.h"

#include <QFont>
#include <QList>
#include <QPixmap>
#include <QString>
#include <QVariant>

namespace kvrtb {

/// How a persisted property is stored in the bag.
enum class PropertyType {
    Boolean,  ///< bool
    Int16,    ///< qint16
    Int32,    ///< qint32
    Colour32, ///< quint32, 0x00BBGGRR or a system colour
    Colour16, ///< a colour whose default is stored as a 16-bit zero: see `storedValue`
    String,   ///< QString
    Font,     ///< QFont; no default (the editor's own font)
    Picture   ///< QPixmap; no default (no picture)
};

/// Whether the control keeps the value or passes it on to the editing surface.
enum class AppliedTo { Control, Editor };

/// \brief Editor settings that the surface applies but cannot report back, so the control
/// remembers what it last gave it; and the editor's own font, which is the `Font` default.
struct EditorSettings {
    int appearance = 0;    ///< `AppearEnum`
    int borderStyle = 0;   ///< `BorderEnum`
    int bulletIndent = 0;  ///< twips between a bullet and its text; the list commands use it
    QPixmap mouseIcon;     ///< shown as the editor's pointer while `MousePointer` is 99
    QFont editorFont;      ///< the editor's font when the control was created
};

/// What the property passes work on: the control's own settings and its editing surface.
struct PropertyTarget {
    ControlProperties &properties;
    EditorSurface &surface;
    EditorSettings &editor;
};

/// \brief One row of the persisted property set.
///
/// Values cross `get` and `set` in the property's own type: bool for Boolean, int for the
/// integers, uint for colours, QString, QFont (invalid QVariant = the editor's own font) and
/// QPixmap (invalid = none). `set` applies the value without telling the host; it fails only
/// when the editor cannot take the value (an unreadable `TextRTF`).
struct PropertySpec {
    const char *key;
    PropertyType type;
    QVariant defaultValue;     ///< in the property's own type; invalid for "none"
    AppliedTo appliedTo;
    bool updatesParentMenu;    ///< its setter raises `UpdateParentMenu`
    QVariant (*get)(const PropertyTarget &target);
    bool (*set)(PropertyTarget &target, const QVariant &value, QString *error);
};

/// The 39 persisted properties in the order in which they are read and written.
const QList<PropertySpec> &propertyTable();
/// The row of \a key (exact spelling), or nullptr.
const PropertySpec *findProperty(const QString &key);

/// \brief A value in the form the bag keeps: the stored type of the row.
///
/// The two colours whose default is a 16-bit zero (`ColorVB6String`, `ColorMyThirdKeyWord`)
/// keep that narrow type whenever the value fits in it (0 to 0x7FFF); a colour beyond that is
/// stored as 32 bits, since a narrower store would lose it. The other colours are always 32-bit.
QVariant storedValue(const PropertySpec &entry, const QVariant &value);
/// The default in the form the bag keeps (a 16-bit zero for the two narrow colours).
QVariant storedDefault(const PropertySpec &entry);
/// Converts what a bag gave back to the property's own type. Numbers may come as any integer
/// type or as text (text-based settings files); a value that is not of the row's kind, or does
/// not fit, fails with a reason naming the key.
bool valueFromStored(const PropertySpec &entry, const QVariant &stored, QVariant *value, QString *error);

/// Result of a read or write pass: on failure, the reason; keys handled before it stay handled.
struct PropertyPassResult {
    bool ok = true;
    QString error;
};

/// Gives every property its default (a control placed on a form for the first time).
void initProperties(PropertyTarget &target);
/// Reads every key in table order with its default and applies it. A bag failure or a value of
/// the wrong kind stops the pass. A `TextRTF` the editor cannot read leaves the document of
/// `Text` in place; the pass goes on and reports it at the end.
PropertyPassResult readProperties(PropertyTarget &target, PropertyBag &bag);
/// Writes every key in table order with its default, editor values taken from the surface.
PropertyPassResult writeProperties(const PropertyTarget &target, PropertyBag &bag);

/// Shows the mouse icon as the editor's pointer when `MousePointer` is 99 and there is an icon.
void applyMouseIcon(PropertyTarget &target);

} // namespace kvrtb
