#include "democipher.h"

#include <QCryptographicHash>
#include <QFile>
#include <QSaveFile>

namespace democipher {

namespace {

const QByteArray kSignature("kveS");
const QByteArray kDemoKey("KvRichTextBox demonstration key - not a secret");

// A keystream of SHA-256 blocks of the key and a block counter.
QByteArray scramble(const QByteArray &data)
{
    QByteArray out(data);
    QByteArray block;
    for (qsizetype i = 0; i < out.size(); ++i) {
        if (i % 32 == 0)
            block = QCryptographicHash::hash(kDemoKey + QByteArray::number(i / 32), QCryptographicHash::Sha256);
        out[i] = char(out[i] ^ block[i % 32]);
    }
    return out;
}

} // namespace

QByteArray encipher(const QByteArray &plain) { return kSignature + scramble(plain); }

QByteArray decipher(const QByteArray &enciphered)
{
    if (!enciphered.startsWith(kSignature))
        return QByteArray();
    return scramble(enciphered.mid(kSignature.size()));
}

bool writeEnciphered(const QString &path, const QByteArray &plain, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(encipher(plain)) < 0 || !file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

bool readEnciphered(const QString &path, QByteArray *plain, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (!bytes.startsWith(kSignature)) {
        *error = QStringLiteral("the file is not an enciphered document");
        return false;
    }
    *plain = decipher(bytes);
    return true;
}

} // namespace democipher
