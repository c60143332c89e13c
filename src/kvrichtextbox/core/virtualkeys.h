#pragma once

#include <QString>
#include <Qt>

namespace kvrtb {

/// \brief The platform's virtual-key codes that the control's logic names.
///
/// Key events reach the host (`KeyDown`, `KeyUp`) with these numbers; `KeyTable` converts
/// between them and Qt's keys in both directions from one table.
enum VirtualKey : int {
    VkBack = 8,
    VkTab = 9,
    VkClear = 12,
    VkReturn = 13,
    VkShift = 16,
    VkControl = 17,
    VkAlt = 18,
    VkPause = 19,
    VkCapsLock = 20,
    VkEscape = 27,
    VkSpace = 32,
    VkPageUp = 33,
    VkPageDown = 34,
    VkEnd = 35,
    VkHome = 36,
    VkLeft = 37,
    VkUp = 38,
    VkRight = 39,
    VkDown = 40,
    VkInsert = 45,
    VkDelete = 46,
    Vk0 = 48,
    Vk2 = 50,
    Vk9 = 57,
    VkA = 65,
    VkB = 66,
    VkF = 70,
    VkI = 73,
    VkU = 85,
    VkV = 86,
    VkW = 87,
    VkY = 89,
    VkZ = 90,
    VkLeftWindows = 91,
    VkRightWindows = 92,
    VkApps = 93,          ///< the context-menu key
    VkNumpad0 = 96,
    VkNumpad9 = 105,
    VkMultiply = 106,
    VkAdd = 107,
    VkSubtract = 109,
    VkDecimal = 110,      ///< the keypad's full stop
    VkDivide = 111,
    VkF1 = 112,
    VkF24 = 135,
    VkNumLock = 144,
    VkScrollLock = 145,
    VkSemicolon = 186,    ///< ";" and ":"
    VkPeriod = 190,       ///< "." and ">"
    VkPacket = 231        ///< a character that has no key of its own in this table (é, ß, ж, ...)
};

/// Shift states of the key and mouse events: bit 1 Shift, bit 2 Ctrl, bit 4 Alt.
enum ShiftState : int { ShiftNone = 0, ShiftShift = 1, ShiftCtrl = 2, ShiftAlt = 4 };

/// \brief The one table between Qt's keys and the platform's virtual-key codes.
///
/// `fromQt` gives the code a key event reports to the host; `toQt` turns a code that a host's
/// `KeyDown` handler put in its place back into the key the editor acts on. Both read the same
/// table, so a code survives the round trip: `toQt(fromQt(k))` is the key (or the key that
/// types the same character on the main keyboard).
class KeyTable {
public:
    /// A key the editor can act on: Qt key, modifiers and the text it types ("" for none).
    struct QtKey {
        int key = 0;
        Qt::KeyboardModifiers modifiers;
        QString text;
    };

    /// The virtual-key code of a Qt key event. Keypad keys (`Qt::KeypadModifier`) report the
    /// keypad's own codes (96..111); a printable character with no entry in the table (a
    /// letter outside A..Z) reports `VkPacket`; other keys without an entry give 0.
    static int fromQt(int qtKey, Qt::KeyboardModifiers modifiers, const QString &text);

    /// The Qt key for a virtual-key code with the given shift state (`ShiftState` bits), with
    /// the text it types: letters in upper case with Shift, symbols of the US layout for the
    /// punctuation codes. A code with no key in the table (or `VkPacket`, which stands for no
    /// key in particular) gives key 0.
    static QtKey toQt(int code, int shift);

    /// The shift state of Qt modifiers.
    static int shiftState(Qt::KeyboardModifiers modifiers);
    /// The Qt modifiers of a shift state.
    static Qt::KeyboardModifiers modifiers(int shift);
};

} // namespace kvrtb
