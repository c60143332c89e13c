#pragma once

// How the surface's character and paragraph attributes are held in a QTextDocument. The Qt
// surface and the RTF reader and writer all go through these functions, so that an attribute
// set by a command, read from a file or written to one means the same everywhere.
//
// Attributes that Qt cannot hold exactly in its own properties (twips, the link effect, the
// character locale, the protected flag, the line-spacing rule) are kept in user properties next
// to the Qt property that shows them; reads prefer the exact value.

#include "core/editorsurface.h"

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>

class QTextBlock;
class QTextCursor;
class QTextDocument;

namespace kvrtb::format {

/// User property ids in QTextFormat.
enum Property {
    LinkEffect = QTextFormat::UserProperty + 1,    ///< bool
    Locale = QTextFormat::UserProperty + 2,        ///< int
    Protected = QTextFormat::UserProperty + 3,     ///< bool
    CharOffset = QTextFormat::UserProperty + 4,    ///< int, twips
    UserUnderline = QTextFormat::UserProperty + 5, ///< int, QTextCharFormat::UnderlineStyle chosen by the user
    LeftIndent = QTextFormat::UserProperty + 10,   ///< int, twips (first line)
    RightIndent = QTextFormat::UserProperty + 11,  ///< int, twips
    HangingIndent = QTextFormat::UserProperty + 12,///< int, twips
    LineRule = QTextFormat::UserProperty + 13,     ///< int, LineSpacingRule
    LineAmount = QTextFormat::UserProperty + 14,   ///< int
    TabStops = QTextFormat::UserProperty + 15,     ///< QList<int>, twips
    BulletIndent = QTextFormat::UserProperty + 16, ///< int, twips
    SpaceBefore = QTextFormat::UserProperty + 17,  ///< int, twips
    SpaceAfter = QTextFormat::UserProperty + 18,   ///< int, twips
    NumberingStart = QTextFormat::UserProperty + 19, ///< int, on the list format
    NumberingStyleProp = QTextFormat::UserProperty + 20, ///< int, NumberingStyle, on the list format
};

/// The underline style that shows the link effect; the user's underline never uses it.
inline constexpr QTextCharFormat::UnderlineStyle kLinkUnderline = QTextCharFormat::DashUnderline;

/// Values a character shows when its format does not say (the document's default font and the
/// editor's text colour).
struct CharDefaults {
    QString fontName;
    double fontSize = 10.0;
    Colour color = 0;
};
CharDefaults defaultsOf(const QTextDocument &document, Colour textColour = 0);

/// Every attribute of one QTextCharFormat, all fields set.
CharFormat readChar(const QTextCharFormat &qt, const CharDefaults &defaults);

/// The QTextCharFormat changes that apply the set fields of \a change, to be merged into the
/// characters' own formats. Underline and the link effect depend on each character's other
/// one; `applyCharFormat` handles them.
QTextCharFormat charDelta(const CharFormat &change);

/// Applies \a change to the cursor's selection (its typing format when there is none).
void applyCharFormat(QTextCursor &cursor, const CharFormat &change);

/// The user's underline style of a character (NoUnderline when none).
QTextCharFormat::UnderlineStyle userUnderline(const QTextCharFormat &qt);

/// Sets the user's underline style and the visible underline that goes with the link effect.
void setUserUnderline(QTextCharFormat &qt, QTextCharFormat::UnderlineStyle style);

/// Merges one character's attributes into an accumulated read: a field that differs becomes
/// empty (mixed) and stays so.
class CharFormatMerger {
public:
    void add(const CharFormat &format);
    bool isEmpty() const { return m_count == 0; }
    CharFormat result() const { return m_result; }

private:
    CharFormat m_result;
    int m_count = 0;
    quint32 m_mixed = 0;
};

/// Every attribute of one paragraph, all fields set.
ParaFormat readPara(const QTextBlock &block);

/// Writes the set fields of \a change (other than numbering) into a block format.
void applyParaFields(QTextBlockFormat &qt, const ParaFormat &change);

/// Applies \a change to the paragraphs of the cursor's selection, numbering included.
void applyParaFormat(QTextCursor &cursor, const ParaFormat &change);

/// The list format that shows a numbering with its start and style.
QTextListFormat listFormatFor(Numbering numbering, int start, NumberingStyle style);

/// Merges paragraph reads like `CharFormatMerger`.
class ParaFormatMerger {
public:
    void add(const ParaFormat &format);
    bool isEmpty() const { return m_count == 0; }
    ParaFormat result() const { return m_result; }

private:
    ParaFormat m_result;
    int m_count = 0;
    quint32 m_mixed = 0;
};

/// Twips to layout pixels and back.
inline double twipsToPixels(int twips) { return double(twips) / kTwipsPerPixel; }
inline int pixelsToTwips(double pixels) { return int(pixels * kTwipsPerPixel + (pixels < 0 ? -0.5 : 0.5)); }

} // namespace kvrtb::format
