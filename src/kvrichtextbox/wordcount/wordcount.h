#pragma once

#include "wordcount/wordcounter.h"

#include <QString>

namespace kvrtb {

class ControlCore;

/// \brief Counts of a document and, when text is selected, of the selection alone.
struct DocumentStatistics {
    TextStatistics document;
    TextStatistics selection;
    bool hasSelection = false; ///< false: `selection` is all zeros
};

/// \brief The word-count area: counts the control's document and acts on what the count lists.
///
/// Holds no state of its own, so it may be made wherever it is needed; the dialog
/// `CountWordsFrm` works through one. Nothing throws; an empty document counts 0 everywhere.
class WordCount {
public:
    /// \a core must outlive the object.
    explicit WordCount(ControlCore &core) : m_core(core) {}

    /// The document's plain text as the count reads it: manual line breaks are line breaks.
    QString documentText() const;
    /// Counts the whole document in \a mode.
    WordCountResult count(WordCountMode mode) const;
    /// The statistics of the document and of the selection, with the display lines of each.
    DocumentStatistics statistics() const;

    /// Opens a listed address with the desktop: an e-mail address as "mailto:" plus the address
    /// (\a mode EmailAddresses), anything else as it stands. False with the reason in \a error
    /// when nothing could open it.
    bool openAddress(WordCountMode mode, const QString &address, QString *error = nullptr);
    /// Selects a listed token in the document, [documentStart, documentEnd).
    void selectToken(const WordCountResult::Token &token);
    /// Plays the control's click sound when `TurnOnSound` is on.
    void click();

    /// The caption of the link button for an entry selected in \a mode: "Create Email",
    /// "Connect to: " plus the address, or empty in the word modes (no button).
    static QString linkCaption(WordCountMode mode, const QString &address);

private:
    ControlCore &m_core;
};

} // namespace kvrtb
