#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>

namespace kvrtb {

/// \brief One address found in a text: 0-based start and length in UTF-16 units, as the
/// surface counts positions.
struct AddressMatch {
    int start = 0;
    int length = 0;
    QString text;
};

/// \brief The web and e-mail address patterns that linking, spelling, find and word count share.
///
/// The patterns are compiled once per thread, case-insensitive (so the upper-case classes and
/// the literal WWW match lower case too). `\w` and `\b` are ASCII-only, as the patterns expect.
/// Usage:
/// \code
/// for (const AddressMatch &m : AddressPatterns::matches(AddressPatterns::link(), text))
///     mark(m.start, m.length);
/// \endcode
class AddressPatterns {
public:
    /// The e-mail pattern text, exactly as the control defines it.
    static QString emailPatternText();
    /// The web-address pattern text. Its class fragment "\+-=" is a range from the plus sign to
    /// the equals sign (comma, digits, colon, semicolon, less-than), kept as it stands.
    static QString urlPatternText();
    /// The alternation of the two, e-mail first.
    static QString linkPatternText();

    /// The compiled patterns. Web addresses are matched with the scheme group taken once
    /// instead of repeated, which finds the same addresses at the same offsets but does not
    /// exhaust the engine's stack on long runs of schemes.
    static const QRegularExpression &email();
    static const QRegularExpression &url();
    static const QRegularExpression &link();

    /// True when \a text holds none of "@", ":" (exact) and "www" (any case): no address can
    /// match, so no pattern needs to run.
    static bool quickReject(const QString &text);

    /// Every match of \a pattern in \a text, in text order (non-overlapping, as a global
    /// search gives them). A search the engine abandons (its match limit) ends the list there.
    static QList<AddressMatch> matches(const QRegularExpression &pattern, const QString &text);

    /// The address a link over \a text points at, as written into the document: "mailto:" plus
    /// an e-mail address, "http://" plus a bare "www." address, anything else as it stands.
    static QString linkAddressFor(const QString &text);
};

} // namespace kvrtb
