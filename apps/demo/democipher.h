#pragma once

#include <QByteArray>
#include <QString>

/// \brief The demonstration host's cipher for enciphered control documents (.mbdf).
///
/// The control never enciphers: it only recognises an enciphered file by its four-byte
/// signature "kveS" and leaves the rest to the host. This demo host shows that hand-off with a
/// deliberately simple scheme: the signature, then the document's RTF XOR-ed with a keystream
/// from a fixed demonstration key. IT IS NOT SECURE and exists only to show the round trip; a
/// real host brings its own cipher (and key management) here.
namespace democipher {

/// The enciphered form of \a plain: the signature followed by the scrambled bytes.
QByteArray encipher(const QByteArray &plain);
/// The plain bytes of \a enciphered (which starts with the signature); empty when it does not.
QByteArray decipher(const QByteArray &enciphered);

/// Writes \a plain enciphered to \a path; false with \a error set when it cannot.
bool writeEnciphered(const QString &path, const QByteArray &plain, QString *error);
/// Reads and deciphers \a path; false with \a error set when it cannot.
bool readEnciphered(const QString &path, QByteArray *plain, QString *error);

} // namespace democipher
