// kvrtb: command-line access to the control's document, dictionary and link services.

#include "commandregistry.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>

namespace kvrtb::cli {

std::vector<Command> &commands()
{
    static std::vector<Command> all;
    return all;
}

void printOut(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
}

void printErr(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stderr);
}

} // namespace kvrtb::cli

namespace {

using kvrtb::cli::Command;

const char kExitStatuses[] =
    "Exit status:\n"
    "  0  done (for a question: yes, found)\n"
    "  1  a question answered no (unknown word, nothing found)\n"
    "  2  bad usage (unknown command, missing or unknown arguments)\n"
    "  3  the input could not be read or understood\n"
    "  4  the output could not be written\n";

std::vector<Command> sortedCommands()
{
    std::vector<Command> sorted = kvrtb::cli::commands();
    std::sort(sorted.begin(), sorted.end(), [](const Command &a, const Command &b) { return a.name < b.name; });
    return sorted;
}

const Command *findCommand(const QString &name)
{
    for (const Command &command : kvrtb::cli::commands()) {
        if (command.name == name)
            return &command;
    }
    return nullptr;
}

QString usageText()
{
    QString text = QStringLiteral("Usage: kvrtb COMMAND [ARGUMENTS]\n"
                                  "       kvrtb help COMMAND    (or: kvrtb COMMAND --help)\n\n"
                                  "A FILE argument of \"-\" reads standard input where a command says so.\n\n"
                                  "Commands:\n");
    for (const Command &command : sortedCommands())
        text += QStringLiteral("  kvrtb %1\n      %2\n").arg(command.usage, command.summary);
    return text + QLatin1Char('\n') + QLatin1String(kExitStatuses);
}

QString commandHelp(const Command &command)
{
    QString text = QStringLiteral("Usage: kvrtb %1\n\n%2\n").arg(command.usage, command.summary);
    if (!command.details.isEmpty())
        text += QLatin1Char('\n') + command.details + QLatin1Char('\n');
    return text + QLatin1Char('\n') + QLatin1String(kExitStatuses);
}

// The tool is a terminal program: Qt's own start-up chatter (the runtime folder it defaulted, the
// platform plugin it chose) is noise there. Messages of the library and of the tool still show.
QtMessageHandler g_defaultHandler = nullptr;
void quietStartupMessages(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const bool qtChatter = (type == QtWarningMsg || type == QtInfoMsg || type == QtDebugMsg)
        && (message.startsWith(QLatin1String("QStandardPaths:"))
            || (context.category && qstrncmp(context.category, "qt.", 3) == 0));
    if (!qtChatter && g_defaultHandler)
        g_defaultHandler(type, context, message);
}

} // namespace

int main(int argc, char *argv[])
{
    g_defaultHandler = qInstallMessageHandler(quietStartupMessages);
    // The document engine needs a GUI application (fonts, images); the tool never opens a
    // window, so it runs on the offscreen platform unless the caller chose another.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    using kvrtb::cli::printErr;
    using kvrtb::cli::printOut;
    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty()) {
        printErr(usageText());
        return kvrtb::cli::ExitUsage;
    }
    const QString name = args.takeFirst();
    if (name == QLatin1String("--help") || name == QLatin1String("-h")
        || (name == QLatin1String("help") && args.isEmpty())) {
        printOut(usageText());
        return kvrtb::cli::ExitOk;
    }
    if (name == QLatin1String("help")) {
        if (const Command *command = findCommand(args.first())) {
            printOut(commandHelp(*command));
            return kvrtb::cli::ExitOk;
        }
        printErr(QStringLiteral("kvrtb help: unknown command \"%1\"\n\n").arg(args.first()) + usageText());
        return kvrtb::cli::ExitUsage;
    }
    const Command *command = findCommand(name);
    if (!command) {
        printErr(QStringLiteral("kvrtb: unknown command \"%1\"\n\n").arg(name) + usageText());
        return kvrtb::cli::ExitUsage;
    }
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        printOut(commandHelp(*command));
        return kvrtb::cli::ExitOk;
    }
    return command->run(args);
}
