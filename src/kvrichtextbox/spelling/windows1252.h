#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace kvrtb {

/// \brief The Windows-1252 character set, both ways, from a table of our own.
///
/// The dictionary resources are stored in this code page. Bytes 0x80-0x9F map to the
/// typographic characters of the code page (0x92 is U+2019); the five bytes the code page
/// leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1 control of the same value,
/// so every byte sequence decodes and encodes back unchanged.
class Windows1252
{
public:
    /// Converts bytes to text; never fails.
    static QString decode(QByteArrayView bytes);

    /// Converts text to bytes. A character the code page lacks becomes "?" and clears `*ok`.
    static QByteArray encode(QStringView text, bool *ok = nullptr);

    /// The character that byte `b` stands for.
    static char16_t toUnicode(unsigned char b);
};

} // namespace kvrtb
