#include "surface/rtf/rtfreader.h"

#include <QTextCursor>
#include <QTextDocument>

// The RTF reader is being written; until it lands every read is refused with a clear reason.

namespace kvrtb::rtf {

bool looksLikeRtf(const QByteArray &bytes)
{
    return bytes.trimmed().startsWith("{\\rtf");
}

ReadResult readRtf(QTextDocument &, const QByteArray &)
{
    return {false, QStringLiteral("Reading RTF is not available in this build yet.")};
}

ReadResult insertRtf(QTextCursor &, const QByteArray &)
{
    return {false, QStringLiteral("Reading RTF is not available in this build yet.")};
}

} // namespace kvrtb::rtf
