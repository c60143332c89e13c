#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <unordered_map>

namespace kvrtb::rtf {

/// \brief Decodes the 8-bit text of an RTF file (\'hh escapes and raw bytes) in a code page.
///
/// Windows-1252 is decoded with a table of our own; every other code page an RTF file can name
/// goes through iconv. Multi-byte code pages (932, 936, 949, 950, 1361) take their byte pairs
/// together, so callers hand over whole runs of bytes.
class CodePageDecoder {
public:
    CodePageDecoder();
    ~CodePageDecoder();
    CodePageDecoder(const CodePageDecoder &) = delete;
    CodePageDecoder &operator=(const CodePageDecoder &) = delete;

    /// Appends the decoding of \a bytes in \a codePage to \a out. Bytes the code page does not
    /// define become U+FFFD; an unknown code page falls back to Windows-1252.
    void decode(int codePage, const char *bytes, int length, QString &out);

    /// True when \a codePage uses lead and trail bytes.
    static bool isDoubleByte(int codePage);
    /// True when \a byte starts a two-byte character in the double-byte \a codePage.
    static bool isLeadByte(int codePage, unsigned char byte);

    /// The code page of an RTF font character set (\fcharset), or 0 for "the document's".
    static int codePageOfCharset(int charset);

    /// The Windows-1252 byte of \a c, or -1 when the code page does not have it.
    static int windows1252Byte(char16_t c);
    /// The character of a Windows-1252 byte (U+FFFD for the five undefined ones).
    static char16_t windows1252Char(unsigned char byte);

private:
    struct Converter;
    Converter *converterFor(int codePage);
    std::unordered_map<int, std::unique_ptr<Converter>> m_converters;
};

} // namespace kvrtb::rtf
