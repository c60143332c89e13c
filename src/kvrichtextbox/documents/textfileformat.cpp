#include "documents/textfileformat.h"

#include "spelling/windows1252.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace kvrtb {

namespace {

bool startsWith(const QByteArray &bytes, const char *prefix, int length)
{
    return bytes.size() >= length && memcmp(bytes.constData(), prefix, size_t(length)) == 0;
}

QString decodeWith(QStringConverter::Encoding encoding, QByteArrayView bytes, bool *ok)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (ok)
        *ok = !decoder.hasError();
    return text;
}

} // namespace

QString TextFileFormat::lineEndText(LineEnd lineEnd)
{
    switch (lineEnd) {
    case LineEnd::Lf: return QStringLiteral("\n");
    case LineEnd::Cr: return QStringLiteral("\r");
    case LineEnd::CrLf: break;
    }
    return QStringLiteral("\r\n");
}

QString TextFileFormat::decode(const QByteArray &bytes, TextFileFormat *format)
{
    TextFileFormat found;
    QString text;
    if (startsWith(bytes, "\xEF\xBB\xBF", 3)) {
        found.byteOrderMark = true;
        text = decodeWith(QStringConverter::Utf8, QByteArrayView(bytes).sliced(3), nullptr);
    } else if (startsWith(bytes, "\xFF\xFE", 2)) {
        found.encoding = Encoding::Utf16LE;
        found.byteOrderMark = true;
        text = decodeWith(QStringConverter::Utf16LE, QByteArrayView(bytes).sliced(2), nullptr);
    } else if (startsWith(bytes, "\xFE\xFF", 2)) {
        found.encoding = Encoding::Utf16BE;
        found.byteOrderMark = true;
        text = decodeWith(QStringConverter::Utf16BE, QByteArrayView(bytes).sliced(2), nullptr);
    } else {
        bool valid = false;
        text = decodeWith(QStringConverter::Utf8, bytes, &valid);
        if (!valid) {
            found.encoding = Encoding::Windows1252;
            text = Windows1252::decode(bytes);
        }
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\n')) {
            found.lineEnd = LineEnd::Lf;
            break;
        }
        if (text[i] == QLatin1Char('\r')) {
            found.lineEnd = i + 1 < text.size() && text[i + 1] == QLatin1Char('\n') ? LineEnd::CrLf : LineEnd::Cr;
            break;
        }
    }
    if (format)
        *format = found;
    return text;
}

QByteArray TextFileFormat::encode(const QString &text, TextFileFormat *used) const
{
    QString withEnds = text;
    if (lineEnd != LineEnd::Lf)
        withEnds.replace(QLatin1Char('\n'), lineEndText(lineEnd));

    TextFileFormat written = *this;
    QByteArray bytes;
    switch (encoding) {
    case Encoding::Windows1252: {
        bool ok = true;
        bytes = Windows1252::encode(withEnds, &ok);
        if (ok)
            break;
        // A character outside the code page would become "?": write UTF-8 instead.
        written.encoding = Encoding::Utf8;
        written.byteOrderMark = false;
        bytes = withEnds.toUtf8();
        break;
    }
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
        QStringEncoder encoder(encoding == Encoding::Utf16LE ? QStringConverter::Utf16LE : QStringConverter::Utf16BE);
        if (byteOrderMark)
            bytes = encoding == Encoding::Utf16LE ? QByteArray("\xFF\xFE", 2) : QByteArray("\xFE\xFF", 2);
        bytes += QByteArray(encoder.encode(withEnds));
        break;
    }
    case Encoding::Utf8:
        if (byteOrderMark)
            bytes = QByteArray("\xEF\xBB\xBF", 3);
        bytes += withEnds.toUtf8();
        break;
    }
    if (used)
        *used = written;
    return bytes;
}

} // namespace kvrtb
