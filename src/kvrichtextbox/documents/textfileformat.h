#pragma once

#include <QByteArray>
#include <QString>

namespace kvrtb {

/// \brief How a plain-text file is written: its encoding, byte-order mark and line ends.
///
/// A text file is decoded by `decode`, which also tells its format; `encode` writes text back
/// in a format, so that a file loaded and saved unchanged comes out byte for byte the same.
/// The document's paragraphs are separated by "\n"; the file's line ends replace them.
struct TextFileFormat {
    enum class Encoding { Utf8, Utf16LE, Utf16BE, Windows1252 };
    enum class LineEnd { CrLf, Lf, Cr };

    Encoding encoding = Encoding::Utf8;
    bool byteOrderMark = false;
    LineEnd lineEnd = LineEnd::CrLf;

    bool operator==(const TextFileFormat &other) const
    {
        return encoding == other.encoding && byteOrderMark == other.byteOrderMark && lineEnd == other.lineEnd;
    }
    bool operator!=(const TextFileFormat &other) const { return !(*this == other); }

    /// The line-end characters of \a lineEnd.
    static QString lineEndText(LineEnd lineEnd);

    /// Decodes a text file: UTF-16 by its byte-order mark, UTF-8 by its mark or when the bytes
    /// are valid UTF-8, Windows-1252 otherwise. The line-end style is that of the first line
    /// end in the file (CR LF when there is none). \a format receives what was found. The text
    /// keeps the file's line ends; `EditorSurface::setText` turns each into a paragraph break.
    static QString decode(const QByteArray &bytes, TextFileFormat *format = nullptr);

    /// Encodes the document's text ("\n" between paragraphs) in this format. Text that
    /// Windows-1252 cannot hold is written as UTF-8 instead, so nothing is lost; \a used
    /// receives the format actually written.
    QByteArray encode(const QString &text, TextFileFormat *used = nullptr) const;
};

} // namespace kvrtb
