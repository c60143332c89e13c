#include "wordcount/wordcount.h"

#include "core/controlcore.h"
#include "hyperlinks/hyperlinks.h"

namespace kvrtb {

QString WordCount::documentText() const
{
    QString text = m_core.surface().text();
    text.replace(QChar(0x2028), QLatin1Char('\n'));
    return text;
}

WordCountResult WordCount::count(WordCountMode mode) const
{
    BusyGuard busy(m_core.services());
    return WordCounter::count(documentText(), mode);
}

DocumentStatistics WordCount::statistics() const
{
    BusyGuard busy(m_core.services());
    EditorSurface &surface = m_core.surface();
    DocumentStatistics stats;
    stats.document = WordCounter::statistics(documentText());
    stats.document.lines = surface.textLength() == 0 ? 0 : surface.lineCount();
    const int start = surface.selStart();
    const int length = surface.selLength();
    if (length > 0) {
        QString selected = surface.textRange(start, length);
        selected.replace(QChar(0x2028), QLatin1Char('\n'));
        stats.hasSelection = true;
        stats.selection = WordCounter::statistics(selected);
        stats.selection.lines = surface.lineFromChar(start + length - 1) - surface.lineFromChar(start) + 1;
    }
    return stats;
}

bool WordCount::openAddress(WordCountMode mode, const QString &address, QString *error)
{
    if (address.isEmpty())
        return false;
    QString failure;
    if (mode == WordCountMode::EmailAddresses)
        m_core.hyperlinks().GoToEmailClient(address, &failure);
    else
        m_core.hyperlinks().GoToWebsite(address, &failure);
    if (error)
        *error = failure;
    if (!failure.isEmpty())
        m_core.services().messageBox(failure, MessageButtons::OK, MessageIcon::Exclamation,
                                     QStringLiteral("Word Count"));
    return failure.isEmpty();
}

void WordCount::selectToken(const WordCountResult::Token &token)
{
    m_core.surface().setSelection(token.documentStart, token.documentEnd - token.documentStart);
}

void WordCount::click()
{
    if (m_core.properties().TurnOnSound)
        m_core.services().playClickSound();
}

QString WordCount::linkCaption(WordCountMode mode, const QString &address)
{
    if (mode == WordCountMode::EmailAddresses)
        return QStringLiteral("Create Email");
    if (mode == WordCountMode::WebAddresses)
        return QStringLiteral("Connect to: ") + address;
    return QString();
}

} // namespace kvrtb
