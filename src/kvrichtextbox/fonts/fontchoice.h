#pragma once

#include "core/colour.h"
#include "core/editorsurface.h"
#include "core/kvrtbtypes.h"

#include <QFont>
#include <QString>

#include <optional>

namespace kvrtb {

/// \brief A font as the font dialogs offer it: family, style, size, strike-through, underline
/// and (optionally) a colour.
///
/// Converts between the control's representations: the selection's `CharFormat`, a `QFont`
/// (the desktop's font dialog), and the interface's `DEFUALT_FONT_DATA` record. Style names
/// are "Regular", "Italic", "Bold" and "Bold Italic".
struct FontChoice {
    QString family;
    bool bold = false;
    bool italic = false;
    double size = 10;   ///< points
    bool strikeThrough = false;
    bool underline = false;
    std::optional<Colour> colour; ///< empty: the dialog does not set the colour

    /// The style names, in the order the dialogs list them.
    static QStringList styleNames();
    QString styleName() const;
    /// Sets bold and italic from a style name (case-insensitive); an unknown name is Regular.
    void setStyleName(const QString &name);

    /// The font of a selection; mixed attributes take the value of \a fallback.
    static FontChoice fromCharFormat(const CharFormat &format, const QFont &fallback);
    static FontChoice fromFont(const QFont &font);
    static FontChoice fromDefaultFontData(const DEFUALT_FONT_DATA &data);

    QFont toFont() const;
    /// Every attribute set (the colour only when chosen).
    CharFormat toCharFormat() const;
    DEFUALT_FONT_DATA toDefaultFontData() const;

    /// The attributes that differ from \a before, as a format that changes only those: what a
    /// dialog applies, so that attributes the user left alone keep their mixed values.
    CharFormat changesFrom(const FontChoice &before) const;

    bool operator==(const FontChoice &other) const;
    bool operator!=(const FontChoice &other) const { return !(*this == other); }
};

} // namespace kvrtb
