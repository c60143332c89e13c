// kvrtb convert INPUT OUTPUT: converts a document between RTF, plain text, HTML, Markdown and
// OpenDocument text, each chosen by the file's extension.

#include "commandregistry.h"
#include "documentconvert.h"

#include "documents/textfileformat.h"
#include "surface/paragraphborders.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextDocument>
#include <QTemporaryDir>
#include <QTextDocumentWriter>

#include <memory>

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
    // The room the control's display gives paragraph borders is not the paragraphs' spacing:
    // other formats get the document without it.
    std::unique_ptr<QTextDocument> withoutRoom;
    if (kvrtb::paragraphborders::hasRoom(doc)) {
        withoutRoom.reset(doc.clone());
        kvrtb::paragraphborders::takeRoom(*withoutRoom);
    }
    QTextDocumentWriter writer(path, format == Format::Html ? "html" : format == Format::Markdown ? "markdown" : "odf");
    if (!writer.write(withoutRoom ? withoutRoom.get() : &doc))
        return QStringLiteral("cannot write \"%1\": %2").arg(path, writer.device() ? writer.device()->errorString() : QString());
    return QString();
}

} // namespace

namespace {

using namespace kvrtb::cli;

const char kUsage[] = "convert [--clean-up] [--yes|--no] [--from TYPE] [--to TYPE] INPUT OUTPUT";

/// A file that stands for standard input or output ("-") for the length of a conversion.
class StandardStream {
public:
    /// The extension the temporary file gets, so that the format is known by name.
    explicit StandardStream(const QString &extension) : m_path(m_dir.filePath(QStringLiteral("stream.") + extension)) {}
    const QString &path() const { return m_path; }

    bool fillFromStandardInput()
    {
        QFile in;
        QFile out(m_path);
        return in.open(stdin, QIODevice::ReadOnly) && out.open(QIODevice::WriteOnly) && out.write(in.readAll()) >= 0;
    }
    bool copyToStandardOutput() const
    {
        QFile in(m_path);
        QFile out;
        if (!in.open(QIODevice::ReadOnly) || !out.open(stdout, QIODevice::WriteOnly))
            return false;
        return out.write(in.readAll()) >= 0 && out.flush();
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
};

const QStringList kStreamFormats{QStringLiteral("rtf"), QStringLiteral("txt"), QStringLiteral("html"),
                                 QStringLiteral("md")};

int convert(const QString &input, const QString &output, const ConvertOptions &options)
{
    // Whatever the output, an enciphered input cannot be read.
    if (refuseEnciphered(input))
        return ExitBadInput;
    // Between the control's own types (.rtf, .txt, .mbdf) the control loads and saves, as a
    // host would: encodings and line ends of text files kept, failed saves leave the target.
    if (controlFileType(input) >= 0 && controlFileType(output) >= 0)
        return convertThroughControl(input, output, options);
    if (formatOf(input) == Format::Unknown || formatOf(output) == Format::Unknown) {
        printErr(QStringLiteral("kvrtb convert: unknown format of \"%1\" (use .rtf, .txt, .html, .md; .odt as output)\n")
                     .arg(formatOf(input) == Format::Unknown ? input : output));
        return ExitUsage;
    }
    QTextDocument doc;
    QString error = loadDocument(input, doc);
    if (!error.isEmpty()) {
        printErr(QStringLiteral("kvrtb convert: %1\n").arg(error));
        return ExitBadInput;
    }
    error = saveDocument(doc, output);
    if (!error.isEmpty()) {
        printErr(QStringLiteral("kvrtb convert: %1\n").arg(error));
        return ExitBadOutput;
    }
    return ExitOk;
}

int runConvert(const QStringList &arguments)
{
    ConvertOptions options;
    QString from;
    QString to = QStringLiteral("txt");
    QStringList args;
    for (int i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        if (arg == QLatin1String("--yes"))
            options.answer = kvrtb::MessageAnswer::Yes;
        else if (arg == QLatin1String("--no"))
            options.answer = kvrtb::MessageAnswer::No;
        else if (arg == QLatin1String("--clean-up"))
            options.cleanUp = true;
        else if ((arg == QLatin1String("--from") || arg == QLatin1String("--to")) && i + 1 < arguments.size())
            (arg == QLatin1String("--from") ? from : to) = arguments.at(++i).toLower();
        else if (arg.startsWith(QLatin1String("--"))) {
            printErr(QStringLiteral("kvrtb convert: unknown option \"%1\"\n").arg(arg));
            return ExitUsage;
        } else
            args << arg;
    }
    if (args.size() != 2 || (!from.isEmpty() && !kStreamFormats.contains(from)) || !kStreamFormats.contains(to)) {
        printErr(QStringLiteral("Usage: kvrtb %1\n").arg(QLatin1String(kUsage)));
        return ExitUsage;
    }
    QString input = args[0];
    QString output = args[1];
    std::unique_ptr<StandardStream> standardIn;
    std::unique_ptr<StandardStream> standardOut;
    if (input == QLatin1String("-")) {
        if (from.isEmpty()) // RTF when it starts as RTF, text otherwise
            from = QStringLiteral("auto");
        standardIn = std::make_unique<StandardStream>(from == QLatin1String("auto") ? QStringLiteral("in") : from);
        if (!standardIn->fillFromStandardInput()) {
            printErr(QStringLiteral("kvrtb convert: cannot read standard input\n"));
            return ExitBadInput;
        }
        if (from == QLatin1String("auto")) {
            QFile peek(standardIn->path());
            const bool rtf = peek.open(QIODevice::ReadOnly) && peek.read(5) == "{\\rtf";
            peek.close();
            auto typed = std::make_unique<StandardStream>(rtf ? QStringLiteral("rtf") : QStringLiteral("txt"));
            QFile::copy(standardIn->path(), typed->path());
            standardIn = std::move(typed);
        }
        input = standardIn->path();
    }
    if (output == QLatin1String("-")) {
        standardOut = std::make_unique<StandardStream>(to);
        output = standardOut->path();
    }
    const int status = convert(input, output, options);
    if (status == ExitOk && standardOut && !standardOut->copyToStandardOutput()) {
        printErr(QStringLiteral("kvrtb convert: cannot write standard output\n"));
        return ExitBadOutput;
    }
    return status;
}

const kvrtb::cli::Registration registration{
    {QStringLiteral("convert"), QLatin1String(kUsage),
     QStringLiteral("convert a document between .rtf, .txt, .mbdf, .html, .md (and to .odt), keeping every character"),
     runConvert,
     QStringLiteral(
         "Between .rtf, .txt and .mbdf the control itself loads and saves the document, as a host\n"
         "application would: text files keep their encoding and line ends, and a failed save leaves\n"
         "the target as it was.\n\n"
         "Options:\n"
         "  --clean-up   run the control's clean-up passes on the loaded document (removes pictures\n"
         "               and text between \"<\" and \">\"); off by default, so nothing is lost\n"
         "  --yes, --no  answer the control's question before formatting is lost in a .txt (yes)\n"
         "  --from TYPE  the format of standard input (rtf, txt, html, md; default: RTF when it\n"
         "               starts as RTF, text otherwise)\n"
         "  --to TYPE    the format written to standard output (default txt)\n\n"
         "INPUT and OUTPUT may be \"-\" for standard input and output. A conversion that takes more\n"
         "than a second reports its progress on standard error.")}};

} // namespace
