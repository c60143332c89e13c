#pragma once

// The enumerations and records of the control's public interface. Names and values are part of
// the interface (including the odd spellings) and must not change.

#include <QObject>
#include <QString>
#include <QStringList>

namespace kvrtb {
Q_NAMESPACE

enum Align_RTF { mLeft = 0, mRight = 1, mCenter = 2 };
Q_ENUM_NS(Align_RTF)

enum AppearEnum { rtfFlat = 0, rtfThreeD = 1 };
Q_ENUM_NS(AppearEnum)

enum BorderEnum { rtfNoBorder = 0, rtfFixedSingle = 1 };
Q_ENUM_NS(BorderEnum)

enum FindOptionsQ { AllMatches = 0, WholeWord = 2, MatchCase = 4, WholeWord_MatchCase = 6 };
Q_ENUM_NS(FindOptionsQ)

enum FindDirectionQ { FindNext = 1, FindPrevious = -1 };
Q_ENUM_NS(FindDirectionQ)

enum Formatting_Options {
    Remove_All_Formatting = 1,
    Remove_Bold = 2,
    Remove_Bullets = 3,
    Remove_Italics = 4,
    Remove_StrikeThru = 5,
    Remove_UnderLine = 6,
    Retain_All_Formatting = 7
};
Q_ENUM_NS(Formatting_Options)

enum LineSpc {
    LineSpaceSingleQ = 0,
    LineSpace1pt5Q = 1,
    LineSpaceDoubleQ = 2,
    LineSpaceExactlyQ = 4,
    LineSpaceMultipleQ = 5
};
Q_ENUM_NS(LineSpc)

enum ListNN {
    ListNoneQ = 0,
    ListBulletQ = 1,
    ListNumberQ = 2,
    ListNumberAsLCLetterQ = 3,
    ListNumberAsUCLetterQ = 4,
    ListNumberAsLCRomanQ = 5,
    ListNumberAsUCRomanQ = 6
};
Q_ENUM_NS(ListNN)

enum MarginJustify { LeftMarginQ = 1, RightMarginQ = 2 };
Q_ENUM_NS(MarginJustify)

enum PageHeadingAlign {
    CenterAlignHeading = 1,
    RightAlignHeading = 2,
    LeftAlignHeading = 3,
    CenterAlignHeadingBottom = 4,
    RightAlignHeadingBottom = 5,
    LeftAlignHeadingBottom = 6
};
Q_ENUM_NS(PageHeadingAlign)

enum PageNumAndNow {
    PrintNiether = 0,
    PrintBoth = 1,
    PrintPageOnly = 2,
    PrintNowOnly = 3,
    PrintCustom = 4,
    PrintCustomWNum = 5
};
Q_ENUM_NS(PageNumAndNow)

enum PrinterMarginSetting { TenEighty = 1080, Academic = 1440 };
Q_ENUM_NS(PrinterMarginSetting)

enum QFileType { rtfRTF = 0, rtfText = 1, rtfMBF = 2 };
Q_ENUM_NS(QFileType)

enum ReplaceOptionsQ { ReplaceAll = 1, ReplaceNext = 2 };
Q_ENUM_NS(ReplaceOptionsQ)

enum ScripTT { NoScriptQ = 0, SubScriptQ = 1, SuperScriptQ = 2 };
Q_ENUM_NS(ScripTT)

enum sepType {
    specialSep = 0,
    spacesOnly = 1,
    spacesAndSymbols = 3,
    spacesSymbolsAndCtrl = 7,
    spacesSymbolsCtrlAndDigits = 15
};
Q_ENUM_NS(sepType)

enum Syntax_Behavior { Syntax_All_Text = 1, Syntax_Selected_Text = 2 };
Q_ENUM_NS(Syntax_Behavior)

enum UndoTypePE { HyperLinkUD = 1, ReplaceTextUD = 2 };
Q_ENUM_NS(UndoTypePE)

enum Unhighlight_Behavior { Unhighlight_All_Text = 1, Unhighlight_Selected_Text = 2 };
Q_ENUM_NS(Unhighlight_Behavior)

enum WrapStyle { NoWrap = 0, RulerWrap = 1, WindowWrap = 2 };
Q_ENUM_NS(WrapStyle)

/// The platform character-format record, field for field (the extended character format layout,
/// `cbSize` 84). The control fills it from the surface's character format where a member needs
/// the record itself.
struct RTFFORMATQ {
    quint16 cbSize = 84;
    quint16 wPad1 = 0;
    quint32 dwMask = 0;
    quint32 dwEffects = 0;
    qint32 yHeight = 0;
    qint32 yOffset = 0;
    quint32 crTextColor = 0;
    quint8 bCharSet = 0;
    quint8 bPitchAndFamily = 0;
    QString szFaceName; ///< at most 32 characters
    quint16 wPad2 = 0;
    quint16 wWeight = 0;
    qint16 sSpacing = 0;
    quint32 crBackColor = 0;
    quint32 lLCID = 0;
    quint32 dwReserved = 0;
    qint16 sStyle = 0;
    quint16 wKerning = 0;
    quint8 bUnderlineType = 0;
    quint8 bAnimation = 0;
    quint8 bRevAuthor = 0;
    quint8 bReserved1 = 0;
};

/// Result of a suggestion search.
struct SPELL_CHECK_TYPE {
    QString IncorrectWord;
    QStringList Suggestions;
    bool SuggestionsFound = false;
    qint16 QAccuracy = 0;
};

/// The default font of the font-selection subsystem (the misspelling is the interface's own).
struct DEFUALT_FONT_DATA {
    QString tFONTNAME;
    QString tFONTSTYLE;
    qint16 tFONTSIZE = 0;
    bool tFONTSTRIKETHROUGH = false;
    bool tFONTUNDERLINE = false;
};

/// A pair of positions.
struct BIGEEUMA {
    qint32 FirstNum = 0;
    qint32 SecondNum = 0;
};

/// The interface's Booleans: True is -1 and False is 0. Members that take a boolean switch act
/// only on exactly one of these; the by-name interface also accepts C++ true/false.
inline constexpr int kVbTrue = -1;
inline constexpr int kVbFalse = 0;

} // namespace kvrtb
