#include "spelling/windows1252.h"

namespace kvrtb {

namespace {

// Bytes 0x80-0x9F; the rest of the code page equals Latin-1.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

char16_t Windows1252::toUnicode(unsigned char b)
{
    return (b >= 0x80 && b <= 0x9F) ? kHighControls[b - 0x80] : char16_t(b);
}

QString Windows1252::decode(QByteArrayView bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    for (qsizetype i = 0; i < bytes.size(); ++i)
        out[i] = toUnicode(static_cast<unsigned char>(bytes[i]));
    return text;
}

QByteArray Windows1252::encode(QStringView text, bool *ok)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    bool allMapped = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        char byte = '?';
        if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
            byte = static_cast<char>(c);
        } else {
            bool found = false;
            for (int k = 0; k < 32; ++k) {
                if (kHighControls[k] == c) {
                    byte = static_cast<char>(0x80 + k);
                    found = true;
                    break;
                }
            }
            allMapped = allMapped && found;
        }
        bytes[i] = byte;
    }
    if (ok)
        *ok = allMapped;
    return bytes;
}

} // namespace kvrtb
