#include "documentconvert.h"

#include "commandregistry.h"
#include "headlesscontrol.h"

#include "documents/documents.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace kvrtb::cli {

namespace {

/// Tells the terminal how a conversion goes once it has taken more than a second: the
/// percentage of the control's long passes, and each phase as it ends.
class ProgressLine : public ControlEvents {
public:
    void startPhase(const QString &what)
    {
        m_phase = what;
        m_timer.start();
    }
    void endPhase()
    {
        if (m_timer.elapsed() > kQuietMs)
            printErr(QStringLiteral("kvrtb convert: %1 done (%2 s)\n").arg(m_phase).arg(double(m_timer.elapsed()) / 1000.0, 0, 'f', 1));
    }
    void progressChanged(int percent) override
    {
        if (m_timer.elapsed() > kQuietMs && percent > 0)
            printErr(QStringLiteral("kvrtb convert: %1 %2%\n").arg(m_phase).arg(percent));
    }

private:
    static constexpr qint64 kQuietMs = 1000;
    QString m_phase;
    QElapsedTimer m_timer;
};

} // namespace

int controlFileType(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("rtf"))
        return 0;
    if (suffix == QLatin1String("txt"))
        return 1;
    if (suffix == QLatin1String("mbdf"))
        return 2;
    return -1;
}

bool refuseEnciphered(const QString &input)
{
    if (!Documents::IsFileEncrypted(input))
        return false;
    printErr(QStringLiteral("kvrtb convert: \"%1\" is an enciphered document; the application that "
                            "enciphered it must decipher it first\n").arg(input));
    return true;
}

int convertThroughControl(const QString &input, const QString &output, const ConvertOptions &options)
{
    if (refuseEnciphered(input))
        return ExitBadInput;
    ConsoleServices services;
    ProgressLine progress;
    ControlCore core{nullptr, services, progress};
    services.questionAnswer = options.answer;
    core.properties().RemoveUnUsableData = options.cleanUp;
    Documents &documents = core.documents();
    bool opened = false;
    bool links = false;
    progress.startPhase(QStringLiteral("loading \"%1\"").arg(input));
    documents.LoadFile(input, controlFileType(input), &links, &opened);
    if (!opened) {
        printErr(QStringLiteral("kvrtb convert: cannot load \"%1\" (error %2): %3\n")
                     .arg(input)
                     .arg(documents.lastError())
                     .arg(documents.lastErrorReason()));
        return ExitBadInput;
    }
    progress.endPhase();
    progress.startPhase(QStringLiteral("saving \"%1\"").arg(output));
    if (!documents.SaveFile(output, controlFileType(output))) {
        if (documents.lastError() == 0) {
            printErr(QStringLiteral("kvrtb convert: \"%1\" not written (answered No)\n").arg(output));
            return ExitNo;
        }
        printErr(QStringLiteral("kvrtb convert: cannot save \"%1\" (error %2): %3\n")
                     .arg(output)
                     .arg(documents.lastError())
                     .arg(documents.lastErrorReason()));
        return ExitBadOutput;
    }
    progress.endPhase();
    return ExitOk;
}

} // namespace kvrtb::cli
