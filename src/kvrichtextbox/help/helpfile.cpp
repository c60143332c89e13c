#include "help/helpfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

#ifndef KVRTB_HELP_INSTALL_DIR
#define KVRTB_HELP_INSTALL_DIR ""
#endif

namespace kvrtb {

namespace {

const char *const kResource = ":/kvrtb/help/KvRTBHelp.html";

} // namespace

QString HelpFile::fileName()
{
    return QStringLiteral("KvRTBHelp.html");
}

QByteArray HelpFile::contents()
{
    QFile file(QString::fromLatin1(kResource));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString HelpFile::installedPath()
{
    const QString folder = QString::fromUtf8(KVRTB_HELP_INSTALL_DIR);
    return folder.isEmpty() ? QString() : QDir(folder).filePath(fileName());
}

QString HelpFile::localPath(QString *error)
{
    const QString installed = installedPath();
    if (!installed.isEmpty() && QFileInfo(installed).isFile())
        return installed;

    const QByteArray text = contents();
    if (text.isEmpty()) {
        if (error)
            *error = QStringLiteral("The help document is missing from the control's resources.");
        return QString();
    }
    QStringList folders{QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation),
                        QDir::tempPath()};
    QString lastError;
    for (const QString &base : folders) {
        if (base.isEmpty())
            continue;
        const QString folder = QDir(base).filePath(QStringLiteral("kvrichtextbox"));
        const QString path = QDir(folder).filePath(fileName());
        QFile existing(path);
        if (existing.open(QIODevice::ReadOnly) && existing.readAll() == text)
            return path;
        QSaveFile out(path);
        if (QDir().mkpath(folder) && out.open(QIODevice::WriteOnly) && out.write(text) == text.size()
            && out.commit())
            return path;
        lastError = QStringLiteral("Cannot write the help document to \"%1\": %2").arg(path, out.errorString());
    }
    if (error)
        *error = lastError;
    return QString();
}

QString HelpFile::GetHelpFile(bool NoColonFilePath)
{
    const QString path = localPath();
    if (path.isEmpty() || NoColonFilePath)
        return path;
    return QUrl::fromLocalFile(path).toString();
}

} // namespace kvrtb
