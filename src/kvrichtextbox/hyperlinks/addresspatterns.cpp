#include "hyperlinks/addresspatterns.h"

#include "core/threadstate.h"

namespace kvrtb {

namespace {

/// The web-address patterns as the engine runs them: the scheme group "(...)+" taken once.
///
/// Every character a scheme or "www." can consist of is also a character of the address body,
/// and at any one position at most one scheme (or "www.") matches. So the greedy body always
/// runs to the end of the same run of body characters whatever the number of scheme
/// repetitions, and a match exists exactly when one repetition leaves three body characters:
/// both forms find the same addresses at the same offsets. The repeated group, though, costs
/// the engine stack per repetition, and on a run such as "www.www.www..." of some 100 KB it
/// gives up, reporting no match, which would end the search and lose every later address.
QString engineForm(const QString &pattern)
{
    QString form = pattern;
    form.replace(QLatin1String("|(WWW)\\.)+["), QLatin1String("|(WWW)\\.)["));
    return form;
}

struct CompiledPatterns {
    QRegularExpression email{AddressPatterns::emailPatternText(), QRegularExpression::CaseInsensitiveOption};
    QRegularExpression url{engineForm(AddressPatterns::urlPatternText()), QRegularExpression::CaseInsensitiveOption};
    QRegularExpression link{engineForm(AddressPatterns::linkPatternText()), QRegularExpression::CaseInsensitiveOption};
};

// Compiled once per thread: a pattern object is cheap to share within a thread, and threads
// never touch each other's.
CompiledPatterns &compiled()
{
    return perThread<CompiledPatterns>();
}

} // namespace

QString AddressPatterns::emailPatternText()
{
    return QStringLiteral(R"re(\b[A-Z0-9._%-]+@[A-Z0-9.-]+\.[A-Z]{2,4}\b)re");
}

QString AddressPatterns::urlPatternText()
{
    return QStringLiteral(
        R"re(\b(((https?|ftp|gopher|telnet|file|notes|ms-help):((//)|(\\\\))|(WWW)\.)+[\w\d:#@%/;$()~_?\+-=\\\.&]{3,}))re");
}

QString AddressPatterns::linkPatternText()
{
    return QStringLiteral(
        R"re((\b[A-Z0-9._%-]+@[A-Z0-9.-]+\.[A-Z]{2,4}\b|\b(((https?|ftp|gopher|telnet|file|notes|ms-help):((//)|(\\\\))|(WWW)\.)+[\w\d:#@%/;$()~_?\+-=\\\.&]{3,})))re");
}

const QRegularExpression &AddressPatterns::email()
{
    return compiled().email;
}

const QRegularExpression &AddressPatterns::url()
{
    return compiled().url;
}

const QRegularExpression &AddressPatterns::link()
{
    return compiled().link;
}

bool AddressPatterns::quickReject(const QString &text)
{
    return !text.contains(QLatin1Char('@')) && !text.contains(QLatin1Char(':'))
        && !text.contains(QLatin1String("www"), Qt::CaseInsensitive);
}

QList<AddressMatch> AddressPatterns::matches(const QRegularExpression &pattern, const QString &text)
{
    QList<AddressMatch> found;
    if (!pattern.isValid() || text.isEmpty())
        return found;
    QRegularExpressionMatchIterator it = pattern.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        if (!match.hasMatch())
            break;
        const int length = int(match.capturedLength());
        if (length == 0)
            continue;
        found.append({int(match.capturedStart()), length, match.captured()});
    }
    return found;
}

QString AddressPatterns::linkAddressFor(const QString &text)
{
    const QRegularExpressionMatch match = email().match(text);
    if (match.hasMatch() && match.capturedStart() == 0 && match.capturedLength() == text.size()
        && !text.contains(QLatin1Char(':')))
        return QStringLiteral("mailto:") + text;
    // A bare "www." address has no scheme; other programs reading the link need one.
    if (text.startsWith(QLatin1String("www."), Qt::CaseInsensitive))
        return QStringLiteral("http://") + text;
    return text;
}

} // namespace kvrtb
