#include "surface/rtf/codepage.h"

#include <iconv.h>

#include <array>
#include <cerrno>

namespace kvrtb::rtf {

namespace {

// Windows-1252 differs from Latin-1 only in 0x80..0x9F.
constexpr std::array<char16_t, 32> kHigh1252 = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

const char *iconvNameOf(int codePage)
{
    switch (codePage) {
    case 437: return "CP437";
    case 708: return "ISO-8859-6";
    case 737: return "CP737";
    case 775: return "CP775";
    case 850: return "CP850";
    case 852: return "CP852";
    case 855: return "CP855";
    case 857: return "CP857";
    case 860: return "CP860";
    case 861: return "CP861";
    case 862: return "CP862";
    case 863: return "CP863";
    case 864: return "CP864";
    case 865: return "CP865";
    case 866: return "CP866";
    case 869: return "CP869";
    case 874: return "CP874";
    case 932: return "CP932";
    case 936: return "CP936";
    case 949: return "CP949";
    case 950: return "CP950";
    case 1250: return "CP1250";
    case 1251: return "CP1251";
    case 1253: return "CP1253";
    case 1254: return "CP1254";
    case 1255: return "CP1255";
    case 1256: return "CP1256";
    case 1257: return "CP1257";
    case 1258: return "CP1258";
    case 1361: return "JOHAB";
    case 10000: return "MACINTOSH";
    case 10001: return "CP932"; // Mac Japanese, read as the Windows table like other readers do
    case 10004: return "MAC-ARABIC";
    case 10006: return "MAC-GREEK";
    case 10007: return "MAC-CYRILLIC";
    case 10029: return "MAC-CENTRALEUROPE";
    case 10079: return "MAC-IS";
    case 10081: return "MAC-TURKISH";
    case 20866: return "KOI8-R";
    case 21866: return "KOI8-U";
    case 28591: return "ISO-8859-1";
    case 28592: return "ISO-8859-2";
    case 28595: return "ISO-8859-5";
    case 28597: return "ISO-8859-7";
    case 65001: return "UTF-8";
    default: return nullptr;
    }
}

} // namespace

struct CodePageDecoder::Converter {
    iconv_t handle = reinterpret_cast<iconv_t>(-1);
    ~Converter()
    {
        if (handle != reinterpret_cast<iconv_t>(-1))
            iconv_close(handle);
    }
};

CodePageDecoder::CodePageDecoder() = default;
CodePageDecoder::~CodePageDecoder() = default;

char16_t CodePageDecoder::windows1252Char(unsigned char byte)
{
    if (byte >= 0x80 && byte < 0xA0)
        return kHigh1252[byte - 0x80];
    return byte;
}

int CodePageDecoder::windows1252Byte(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return c;
    for (int i = 0; i < int(kHigh1252.size()); ++i) {
        if (kHigh1252[size_t(i)] == c && c != 0xFFFD)
            return 0x80 + i;
    }
    return -1;
}

bool CodePageDecoder::isDoubleByte(int codePage)
{
    return codePage == 932 || codePage == 936 || codePage == 949 || codePage == 950 || codePage == 1361
           || codePage == 10001;
}

bool CodePageDecoder::isLeadByte(int codePage, unsigned char byte)
{
    switch (codePage) {
    case 932:
    case 10001: return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 936:
    case 949:
    case 950: return byte >= 0x81 && byte <= 0xFE;
    case 1361: return (byte >= 0x84 && byte <= 0xD3) || (byte >= 0xD8 && byte <= 0xF9);
    default: return false;
    }
}

int CodePageDecoder::codePageOfCharset(int charset)
{
    switch (charset) {
    case 77: return 10000;
    case 78: return 10001;
    case 79: return 10003;
    case 80: return 10008;
    case 81: return 10002;
    case 83: return 10005;
    case 84: return 10004;
    case 85: return 10006;
    case 86: return 10081;
    case 87: return 10021;
    case 88: return 10029;
    case 89: return 10007;
    case 128: return 932;
    case 129: return 949;
    case 130: return 1361;
    case 134: return 936;
    case 136: return 950;
    case 161: return 1253;
    case 162: return 1254;
    case 163: return 1258;
    case 177: return 1255;
    case 178: return 1256;
    case 186: return 1257;
    case 204: return 1251;
    case 222: return 874;
    case 238: return 1250;
    case 254: return 437;
    case 255: return 850;
    case 0: return 1252; // ANSI: Western, whatever the document's code page
    default: return 0;   // 1 default, 2 symbol and the rest: the document's code page
    }
}

CodePageDecoder::Converter *CodePageDecoder::converterFor(int codePage)
{
    auto found = m_converters.find(codePage);
    if (found != m_converters.end())
        return found->second.get();
    auto converter = std::make_unique<Converter>();
    if (const char *name = iconvNameOf(codePage))
        converter->handle = iconv_open("UTF-16LE", name);
    Converter *result = converter.get();
    m_converters.emplace(codePage, std::move(converter));
    return result;
}

void CodePageDecoder::decode(int codePage, const char *bytes, int length, QString &out)
{
    if (length <= 0)
        return;
    Converter *converter = codePage == 1252 || codePage == 0 ? nullptr : converterFor(codePage);
    if (!converter || converter->handle == reinterpret_cast<iconv_t>(-1)) {
        const int base = int(out.size());
        out.resize(base + length);
        QChar *dest = out.data() + base;
        for (int i = 0; i < length; ++i)
            dest[i] = QChar(windows1252Char(static_cast<unsigned char>(bytes[i])));
        return;
    }
    iconv(converter->handle, nullptr, nullptr, nullptr, nullptr);
    char *in = const_cast<char *>(bytes);
    size_t inLeft = size_t(length);
    QByteArray buffer(length * 4 + 8, Qt::Uninitialized);
    // Some converters (Hebrew, Vietnamese) hold back a base letter in case a combining mark
    // follows; at the end of the run or before an invalid byte, what is held is emitted.
    auto emitHeld = [&] {
        char *outPtr = buffer.data();
        size_t outLeft = size_t(buffer.size());
        iconv(converter->handle, nullptr, nullptr, &outPtr, &outLeft);
        out.append(reinterpret_cast<const QChar *>(buffer.constData()), int(size_t(buffer.size()) - outLeft) / 2);
    };
    while (inLeft > 0) {
        char *outPtr = buffer.data();
        size_t outLeft = size_t(buffer.size());
        const size_t result = iconv(converter->handle, &in, &inLeft, &outPtr, &outLeft);
        const int produced = int(size_t(buffer.size()) - outLeft) / 2;
        out.append(reinterpret_cast<const QChar *>(buffer.constData()), produced);
        if (result == size_t(-1)) {
            if (errno == E2BIG)
                continue;
            // An invalid or incomplete sequence: one replacement character, then go on.
            emitHeld();
            out.append(QChar(0xFFFD));
            ++in;
            --inLeft;
        }
    }
    emitHeld();
}

} // namespace kvrtb::rtf
