#pragma once

#include <QByteArray>
#include <QString>

class QTextCursor;
class QTextDocument;

namespace kvrtb::rtf {

/// Outcome of reading RTF: `ok` false means nothing was changed and `error` says why.
struct ReadResult {
    bool ok = false;
    QString error;
};

/// True when the bytes start (after white space) with "{\rtf".
bool looksLikeRtf(const QByteArray &bytes);

/// Replaces the whole content of \a document with the RTF text \a rtf.
ReadResult readRtf(QTextDocument &document, const QByteArray &rtf);

/// Inserts the RTF text at \a cursor, replacing its selection; the cursor ends after it.
ReadResult insertRtf(QTextCursor &cursor, const QByteArray &rtf);

} // namespace kvrtb::rtf
