#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace kvrtb::cli {

/// The tool's exit statuses, the same for every subcommand (listed by `kvrtb --help`).
enum ExitStatus {
    ExitOk = 0,          ///< done; for a question (check, links, ...) the answer is "yes"/"found"
    ExitNo = 1,          ///< a question answered "no"/"nothing found" (unknown word, no links, ...)
    ExitUsage = 2,       ///< bad usage: unknown command, missing or unknown arguments
    ExitBadInput = 3,    ///< the input file or standard input could not be read or understood
    ExitBadOutput = 4,   ///< the output could not be written
};

/// \brief One subcommand of the kvrtb tool.
///
/// `run` receives the arguments after the subcommand's name and returns an `ExitStatus`. It
/// writes results to standard output and messages to standard error. `kvrtb help NAME` and
/// `kvrtb NAME --help` print `usage` and `summary` (and `details`, when given) without running it.
struct Command {
    QString name;
    QString usage;    ///< e.g. "convert INPUT OUTPUT"
    QString summary;  ///< one line for the help listing
    std::function<int(const QStringList &args)> run;
    QString details = QString(); ///< more help: options, input and output, examples
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
