#pragma once

#include <QString>

namespace kvrtb {

class ControlCore;

/// \brief Tells assistive technology what the caret stands on: a word that spelling as you type
/// has marked as misspelt, or a link the control made.
///
/// The editor's accessible description becomes "Misspelt word: <word>" or "Link: <address>"
/// ("Link" for a link without an address) while the character after the caret (with nothing
/// selected) belongs to such a word or link, and is empty otherwise. Setting it raises the accessibility event for a changed description,
/// which screen readers receive as a property change of the focused editor; the description
/// is also there to read at any time. Moving through a word to its end, as typing does, leaves
/// the word, so typing is not talked over.
class CaretDescription {
public:
    explicit CaretDescription(ControlCore &core);

    /// Describes the caret where it is now; unchanged descriptions raise no event.
    void update();
    /// The description for the caret at \a position with nothing selected.
    QString describe(int position) const;
    /// The description shown now.
    const QString &current() const { return m_current; }

    static QString misspeltWord(const QString &word) { return QStringLiteral("Misspelt word: %1").arg(word); }
    static QString link(const QString &address)
    {
        return address.isEmpty() ? QStringLiteral("Link") : QStringLiteral("Link: %1").arg(address);
    }

private:
    ControlCore &m_core;
    QString m_current;
};

} // namespace kvrtb
