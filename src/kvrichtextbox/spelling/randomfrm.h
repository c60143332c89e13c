#pragma once

#include "spelling/randomword.h"

#include <QDialog>

#include <functional>

class QLabel;
class QListWidget;
class QPushButton;

namespace kvrtb {

/// \brief The "Random Word" dialog: a random dictionary word, its synonyms, a button for
/// another word and one that copies the selected synonym to the clipboard.
///
/// Children a test can find: `WordLB`, `SynoList`, `NewWordButton`, `CopyButton`
/// ("Copy Selected Synonym"), `CloseButton`.
class RandomFrm : public QDialog {
    Q_OBJECT
public:
    /// Draws words with \a pick (the dictionary's random words when empty) and shows one.
    /// \a onClick runs when a button is pressed (the control's click sound); may be empty.
    explicit RandomFrm(std::function<RandomWordEntry()> pick = {}, std::function<void()> onClick = {},
                       QWidget *parent = nullptr);
    ~RandomFrm() override;

    /// The entry shown.
    const RandomWordEntry &entry() const { return m_entry; }
    /// Shows another word.
    void newWord();

private:
    void copySelected();

    std::function<RandomWordEntry()> m_pick;
    std::function<void()> m_onClick;
    RandomWordEntry m_entry;
    QLabel *m_word = nullptr;
    QListWidget *m_synonyms = nullptr;
    QPushButton *m_copy = nullptr;
};

} // namespace kvrtb
