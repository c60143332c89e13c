// kvrtb: command-line access to the control's document, dictionary and link services.

#include "commandregistry.h"

#include <QApplication>
#include <QFile>

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

void printUsage()
{
    using namespace kvrtb::cli;
    QString text = QStringLiteral("Usage: kvrtb COMMAND [ARGUMENTS]\n\nCommands:\n");
    std::vector<Command> sorted = commands();
    std::sort(sorted.begin(), sorted.end(),
              [](const Command &a, const Command &b) { return a.name < b.name; });
    for (const Command &command : sorted)
        text += QStringLiteral("  kvrtb %1\n      %2\n").arg(command.usage, command.summary);
    printErr(text);
}

} // namespace

int main(int argc, char *argv[])
{
    // The document engine needs a GUI application (fonts, images); the tool never opens a
    // window, so it runs on the offscreen platform unless the caller chose another.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty() || args.first() == QLatin1String("--help") || args.first() == QLatin1String("-h")) {
        printUsage();
        return args.isEmpty() ? 2 : 0;
    }
    const QString name = args.takeFirst();
    for (const kvrtb::cli::Command &command : kvrtb::cli::commands()) {
        if (command.name == name)
            return command.run(args);
    }
    kvrtb::cli::printErr(QStringLiteral("kvrtb: unknown command \"%1\"\n").arg(name));
    printUsage();
    return 2;
}
