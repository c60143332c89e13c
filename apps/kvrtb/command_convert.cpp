// kvrtb convert INPUT OUTPUT: converts a document between RTF, plain text, HTML, Markdown and
// OpenDocument text, each chosen by the file's extension.

#include "commandregistry.h"
#include "documentconvert.h"

#include "documents/textfileformat.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextDocument>
#include <QTextDocumentWriter>

namespace {

enum class Format { Rtf, Text, Html, Markdown, Odt, Unknown };

Format formatOf(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("rtf"))
        return Format::Rtf;
    if (suffix == QLatin1String("txt"))
        return Format::Text;
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm"))
        return Format::Html;
    if (suffix == QLatin1String("md"))
        return Format::Markdown;
    if (suffix == QLatin1String("odt"))
        return Format::Odt;
    return Format::Unknown;
}

/// Reads a document file into \a doc; returns an error message, empty on success.
QString loadDocument(const QString &path, QTextDocument &doc)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read \"%1\": %2").arg(path, file.errorString());
    const QByteArray bytes = file.readAll();
    switch (formatOf(path)) {
    case Format::Rtf: {
        const kvrtb::rtf::ReadResult result = kvrtb::rtf::readRtf(doc, bytes);
        return result.ok ? QString() : QStringLiteral("\"%1\" is not a readable RTF file: %2").arg(path, result.error);
    }
    case Format::Text: doc.setPlainText(kvrtb::TextFileFormat::decode(bytes)); return QString();
    case Format::Html: doc.setHtml(QString::fromUtf8(bytes)); return QString();
    case Format::Markdown: doc.setMarkdown(QString::fromUtf8(bytes)); return QString();
    case Format::Odt: return QStringLiteral("cannot read \"%1\": OpenDocument files can be written, not read").arg(path);
    case Format::Unknown: break;
    }
    return QStringLiteral("unknown input format \"%1\" (use .rtf, .txt, .html, .md)").arg(path);
}

/// The document's text with a line feed for each paragraph break (and table frame mark); every
/// other character, no-break spaces and line separators included, as the document holds it.
QString plainText(const QTextDocument &doc)
{
    QString text = doc.toRawText();
    for (QChar &c : text) {
        if (c == QChar::ParagraphSeparator || c == QChar(0xFDD0) || c == QChar(0xFDD1))
            c = QLatin1Char('\n');
    }
    return text;
}

/// Writes \a doc to a file in the format of its extension; returns an error message.
QString saveDocument(const QTextDocument &doc, const QString &path)
{
    const Format format = formatOf(path);
    if (format == Format::Unknown)
        return QStringLiteral("unknown output format \"%1\" (use .rtf, .txt, .html, .md, .odt)").arg(path);
    if (format == Format::Rtf || format == Format::Text) {
        QSaveFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return QStringLiteral("cannot write \"%1\": %2").arg(path, file.errorString());
        if (format == Format::Rtf)
            file.write(kvrtb::rtf::writeRtf(doc));
        else
            file.write(plainText(doc).replace(QLatin1Char('\n'), QLatin1String("\r\n")).toUtf8());
        if (!file.commit())
            return QStringLiteral("cannot write \"%1\": %2").arg(path, file.errorString());
        return QString();
    }
    QTextDocumentWriter writer(path, format == Format::Html ? "html" : format == Format::Markdown ? "markdown" : "odf");
    if (!writer.write(&doc))
        return QStringLiteral("cannot write \"%1\": %2").arg(path, writer.device() ? writer.device()->errorString() : QString());
    return QString();
}

} // namespace

namespace kvrtb::cli {

/// The conversion behind `kvrtb convert`; returns an error message, empty on success.
QString convertDocument(const QString &input, const QString &output)
{
    QTextDocument doc;
    const QString error = loadDocument(input, doc);
    if (!error.isEmpty())
        return error;
    return saveDocument(doc, output);
}

} // namespace kvrtb::cli

namespace {

int runConvert(const QStringList &arguments)
{
    // --yes / --no answer the control's questions (saving formatted text as text); yes by default.
    kvrtb::MessageAnswer answer = kvrtb::MessageAnswer::Yes;
    QStringList args;
    for (const QString &arg : arguments) {
        if (arg == QLatin1String("--yes"))
            answer = kvrtb::MessageAnswer::Yes;
        else if (arg == QLatin1String("--no"))
            answer = kvrtb::MessageAnswer::No;
        else
            args << arg;
    }
    if (args.size() != 2) {
        kvrtb::cli::printErr(QStringLiteral("Usage: kvrtb convert [--yes|--no] INPUT OUTPUT\n"));
        return 2;
    }
    // Whatever the output, an enciphered input cannot be read.
    if (kvrtb::cli::refuseEnciphered(args[0]))
        return 1;
    // Between the control's own types (.rtf, .txt, .mbdf) the control loads and saves, as a
    // host would: encodings and line ends of text files kept, failed saves leave the target.
    if (kvrtb::cli::controlFileType(args[0]) >= 0 && kvrtb::cli::controlFileType(args[1]) >= 0)
        return kvrtb::cli::convertThroughControl(args[0], args[1], answer);
    const QString error = kvrtb::cli::convertDocument(args[0], args[1]);
    if (!error.isEmpty()) {
        kvrtb::cli::printErr(QStringLiteral("kvrtb convert: %1\n").arg(error));
        return 1;
    }
    return 0;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("convert"), QStringLiteral("convert [--yes|--no] INPUT OUTPUT"),
     QStringLiteral("convert a document between .rtf, .txt, .html, .md (and to .odt)"), runConvert}};

} // namespace
