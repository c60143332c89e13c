#pragma once

#include <QByteArray>

class QTextDocument;

namespace kvrtb::rtf {

/// The whole document as RTF.
QByteArray writeRtf(const QTextDocument &document);

/// The range [start, end) of the document as RTF (a document of its own).
QByteArray writeRtf(const QTextDocument &document, int start, int end);

} // namespace kvrtb::rtf
