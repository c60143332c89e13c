#include "core/virtualkeys.h"

#include <array>

namespace kvrtb {

namespace {

/// One key of the table: its code, the Qt key without and with Shift, the text each types,
/// and whether it is a keypad key (reported only for events that carry `Qt::KeypadModifier`).
struct KeyEntry {
    int code;
    int key;
    int shiftedKey;
    const char *text;
    const char *shiftedText;
    bool keypad;
};

// Letters (65..90), the main keyboard's digits (48..57) and F1..F24 (112..135) follow from
// ranges in `fromQt` and `toQt`; the shifted digits are listed here with their US symbols.
constexpr std::array kKeys{
    KeyEntry{VkBack, Qt::Key_Backspace, 0, "", "", false},
    KeyEntry{VkTab, Qt::Key_Tab, Qt::Key_Backtab, "\t", "", false},
    KeyEntry{VkClear, Qt::Key_Clear, 0, "", "", false},
    KeyEntry{VkReturn, Qt::Key_Return, 0, "\r", "\r", false},
    KeyEntry{VkShift, Qt::Key_Shift, 0, "", "", false},
    KeyEntry{VkControl, Qt::Key_Control, 0, "", "", false},
    KeyEntry{VkAlt, Qt::Key_Alt, 0, "", "", false},
    KeyEntry{VkPause, Qt::Key_Pause, 0, "", "", false},
    KeyEntry{VkCapsLock, Qt::Key_CapsLock, 0, "", "", false},
    KeyEntry{VkEscape, Qt::Key_Escape, 0, "", "", false},
    KeyEntry{VkSpace, Qt::Key_Space, 0, " ", " ", false},
    KeyEntry{VkPageUp, Qt::Key_PageUp, 0, "", "", false},
    KeyEntry{VkPageDown, Qt::Key_PageDown, 0, "", "", false},
    KeyEntry{VkEnd, Qt::Key_End, 0, "", "", false},
    KeyEntry{VkHome, Qt::Key_Home, 0, "", "", false},
    KeyEntry{VkLeft, Qt::Key_Left, 0, "", "", false},
    KeyEntry{VkUp, Qt::Key_Up, 0, "", "", false},
    KeyEntry{VkRight, Qt::Key_Right, 0, "", "", false},
    KeyEntry{VkDown, Qt::Key_Down, 0, "", "", false},
    KeyEntry{VkInsert, Qt::Key_Insert, 0, "", "", false},
    KeyEntry{VkDelete, Qt::Key_Delete, 0, "", "", false},
    KeyEntry{48, Qt::Key_0, Qt::Key_ParenRight, "0", ")", false},
    KeyEntry{49, Qt::Key_1, Qt::Key_Exclam, "1", "!", false},
    KeyEntry{50, Qt::Key_2, Qt::Key_At, "2", "@", false},
    KeyEntry{51, Qt::Key_3, Qt::Key_NumberSign, "3", "#", false},
    KeyEntry{52, Qt::Key_4, Qt::Key_Dollar, "4", "$", false},
    KeyEntry{53, Qt::Key_5, Qt::Key_Percent, "5", "%", false},
    KeyEntry{54, Qt::Key_6, Qt::Key_AsciiCircum, "6", "^", false},
    KeyEntry{55, Qt::Key_7, Qt::Key_Ampersand, "7", "&", false},
    KeyEntry{56, Qt::Key_8, Qt::Key_Asterisk, "8", "*", false},
    KeyEntry{57, Qt::Key_9, Qt::Key_ParenLeft, "9", "(", false},
    KeyEntry{VkLeftWindows, Qt::Key_Meta, 0, "", "", false},
    KeyEntry{VkApps, Qt::Key_Menu, 0, "", "", false},
    KeyEntry{VkNumLock, Qt::Key_NumLock, 0, "", "", false},
    KeyEntry{VkScrollLock, Qt::Key_ScrollLock, 0, "", "", false},
    KeyEntry{VkSemicolon, Qt::Key_Semicolon, Qt::Key_Colon, ";", ":", false},
    KeyEntry{187, Qt::Key_Equal, Qt::Key_Plus, "=", "+", false},
    KeyEntry{188, Qt::Key_Comma, Qt::Key_Less, ",", "<", false},
    KeyEntry{189, Qt::Key_Minus, Qt::Key_Underscore, "-", "_", false},
    KeyEntry{VkPeriod, Qt::Key_Period, Qt::Key_Greater, ".", ">", false},
    KeyEntry{191, Qt::Key_Slash, Qt::Key_Question, "/", "?", false},
    KeyEntry{192, Qt::Key_QuoteLeft, Qt::Key_AsciiTilde, "`", "~", false},
    KeyEntry{219, Qt::Key_BracketLeft, Qt::Key_BraceLeft, "[", "{", false},
    KeyEntry{220, Qt::Key_Backslash, Qt::Key_Bar, "\\", "|", false},
    KeyEntry{221, Qt::Key_BracketRight, Qt::Key_BraceRight, "]", "}", false},
    KeyEntry{222, Qt::Key_Apostrophe, Qt::Key_QuoteDbl, "'", "\"", false},
    // The keypad. With Num Lock off its keys arrive as Home, End, ... and take those codes.
    KeyEntry{96, Qt::Key_0, 0, "0", "0", true},
    KeyEntry{97, Qt::Key_1, 0, "1", "1", true},
    KeyEntry{98, Qt::Key_2, 0, "2", "2", true},
    KeyEntry{99, Qt::Key_3, 0, "3", "3", true},
    KeyEntry{100, Qt::Key_4, 0, "4", "4", true},
    KeyEntry{101, Qt::Key_5, 0, "5", "5", true},
    KeyEntry{102, Qt::Key_6, 0, "6", "6", true},
    KeyEntry{103, Qt::Key_7, 0, "7", "7", true},
    KeyEntry{104, Qt::Key_8, 0, "8", "8", true},
    KeyEntry{105, Qt::Key_9, 0, "9", "9", true},
    KeyEntry{VkMultiply, Qt::Key_Asterisk, 0, "*", "*", true},
    KeyEntry{VkAdd, Qt::Key_Plus, 0, "+", "+", true},
    KeyEntry{VkSubtract, Qt::Key_Minus, 0, "-", "-", true},
    KeyEntry{VkDecimal, Qt::Key_Period, Qt::Key_Comma, ".", ".", true},
    KeyEntry{VkDivide, Qt::Key_Slash, 0, "/", "/", true},
};

/// Keys that report a code whose table entry names another key.
struct KeyAlias {
    int key;
    int code;
};
constexpr std::array kAliases{
    KeyAlias{Qt::Key_Enter, VkReturn},
    KeyAlias{Qt::Key_Super_L, VkLeftWindows},
    KeyAlias{Qt::Key_Super_R, VkRightWindows},
};

const KeyEntry *entryOfKey(int key, bool keypad)
{
    for (const KeyEntry &entry : kKeys) {
        if (entry.keypad == keypad && (entry.key == key || (entry.shiftedKey != 0 && entry.shiftedKey == key)))
            return &entry;
    }
    return nullptr;
}

const KeyEntry *entryOfCode(int code)
{
    for (const KeyEntry &entry : kKeys) {
        if (entry.code == code)
            return &entry;
    }
    return nullptr;
}

} // namespace

int KeyTable::fromQt(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text)
{
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)
        return qtKey; // the same numbers, 65..90
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24)
        return VkF1 + (qtKey - Qt::Key_F1);
    if (modifiers & Qt::KeypadModifier) {
        if (const KeyEntry *entry = entryOfKey(qtKey, true))
            return entry->code;
    }
    if (const KeyEntry *entry = entryOfKey(qtKey, false))
        return entry->code;
    for (const KeyAlias &alias : kAliases) {
        if (alias.key == qtKey)
            return alias.code;
    }
    if (!text.isEmpty() && text.at(0).isPrint())
        return VkPacket;
    return 0;
}

KeyTable::QtKey KeyTable::toQt(int code, int shift)
{
    QtKey result;
    result.modifiers = modifiers(shift);
    const bool shifted = (shift & ShiftShift) != 0;
    // Shortcuts with Ctrl or Alt type nothing.
    const bool types = (shift & (ShiftCtrl | ShiftAlt)) == 0;
    if (code >= VkA && code <= VkZ) {
        result.key = code;
        const QChar letter = QChar(char16_t(code));
        if (types)
            result.text = shifted ? QString(letter) : QString(letter.toLower());
        return result;
    }
    if (code >= VkF1 && code <= VkF24) {
        result.key = Qt::Key_F1 + (code - VkF1);
        return result;
    }
    const KeyEntry *entry = entryOfCode(code);
    if (!entry)
        return result;
    result.key = shifted && entry->shiftedKey != 0 ? entry->shiftedKey : entry->key;
    if (entry->keypad)
        result.modifiers |= Qt::KeypadModifier;
    if (types)
        result.text = QString::fromLatin1(shifted ? entry->shiftedText : entry->text);
    return result;
}

int KeyTable::shiftState(Qt::KeyboardModifiers modifiers)
{
    int state = ShiftNone;
    if (modifiers & Qt::ShiftModifier)
        state |= ShiftShift;
    if (modifiers & Qt::ControlModifier)
        state |= ShiftCtrl;
    if (modifiers & Qt::AltModifier)
        state |= ShiftAlt;
    return state;
}

Qt::KeyboardModifiers KeyTable::modifiers(int shift)
{
    Qt::KeyboardModifiers result;
    if (shift & ShiftShift)
        result |= Qt::ShiftModifier;
    if (shift & ShiftCtrl)
        result |= Qt::ControlModifier;
    if (shift & ShiftAlt)
        result |= Qt::AltModifier;
    return result;
}

} // namespace kvrtb
