#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace kvrtb::test {

/// What a run of the command-line tool gave: exit code (-1 when it did not finish), output and
/// error text.
struct CliRun {
    int code = -1;
    QString out;
    QString err;
};

/// Where the tool runs: with the offscreen platform chosen, or as on a terminal, where neither a
/// platform nor a runtime folder is set.
enum class CliEnvironment { Offscreen, Terminal };

/// Runs the command-line tool at \a program with \a args, feeding \a input to its standard input.
inline CliRun runCli(const QString &program, const QStringList &args, const QByteArray &input = QByteArray(),
                     CliEnvironment where = CliEnvironment::Offscreen)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    if (where == CliEnvironment::Offscreen) {
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    } else {
        env.remove(QStringLiteral("QT_QPA_PLATFORM"));
        env.remove(QStringLiteral("XDG_RUNTIME_DIR"));
    }
    process.setProcessEnvironment(env);
    process.start(program, args);
    CliRun result;
    if (!process.waitForStarted(10000))
        return result;
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return result;
    result.code = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

} // namespace kvrtb::test
