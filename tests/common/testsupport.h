#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// Small helpers shared by the test executables.
namespace kvrtb::test {

/// Path of a file in the shared corpora folder, e.g. corpusPath("rtf/striprtf__libre.rtf").
inline QString corpusPath(const QString &relative)
{
    return QStringLiteral(KVRTB_CORPORA_DIR "/") + relative;
}

/// The bytes of a file, or an empty array when it cannot be read.
inline QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Writes \a bytes as the whole content of a file; true when all were written.
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

} // namespace kvrtb::test
