#include "documentconvert.h"

#include "commandregistry.h"
#include "headlesscontrol.h"

#include "documents/documents.h"

#include <QFileInfo>

namespace kvrtb::cli {

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

int convertThroughControl(const QString &input, const QString &output, MessageAnswer answer)
{
    if (refuseEnciphered(input))
        return 1;
    HeadlessControl control;
    control.services.questionAnswer = answer;
    Documents &documents = control.core.documents();
    bool opened = false;
    bool links = false;
    documents.LoadFile(input, controlFileType(input), &links, &opened);
    if (!opened) {
        printErr(QStringLiteral("kvrtb convert: cannot load \"%1\" (error %2): %3\n")
                     .arg(input)
                     .arg(documents.lastError())
                     .arg(documents.lastErrorReason()));
        return 1;
    }
    if (!documents.SaveFile(output, controlFileType(output))) {
        if (documents.lastError() == 0)
            printErr(QStringLiteral("kvrtb convert: \"%1\" not written (answered No)\n").arg(output));
        else
            printErr(QStringLiteral("kvrtb convert: cannot save \"%1\" (error %2): %3\n")
                         .arg(output)
                         .arg(documents.lastError())
                         .arg(documents.lastErrorReason()));
        return 1;
    }
    return 0;
}

} // namespace kvrtb::cli
