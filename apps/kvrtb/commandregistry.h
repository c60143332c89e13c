#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace kvrtb::cli {

/// \brief One subcommand of the kvrtb tool.
///
/// `run` receives the arguments after the subcommand's name and returns the process exit
/// status (0 on success). It writes results to standard output and messages to standard error.
struct Command {
    QString name;
    QString usage;    ///< e.g. "convert INPUT OUTPUT"
    QString summary;  ///< one line for the help listing
    std::function<int(const QStringList &args)> run;
};

/// All registered subcommands, in registration order.
std::vector<Command> &commands();

/// Registers a subcommand at static-initialisation time; each command_*.cpp holds one:
/// \code
/// static const kvrtb::cli::Registration reg{{"random", "random", "print a random word", runRandom}};
/// \endcode
struct Registration {
    explicit Registration(Command command) { commands().push_back(std::move(command)); }
};

/// Writes text to standard output / standard error in UTF-8.
void printOut(const QString &text);
void printErr(const QString &text);

} // namespace kvrtb::cli
