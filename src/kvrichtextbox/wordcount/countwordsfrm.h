#pragma once

#include "wordcount/wordcount.h"

#include <QDialog>

class QButtonGroup;
class QGridLayout;
class QLabel;
class QLineEdit;
class QListView;
class QPushButton;
class QRadioButton;

namespace kvrtb {

class WordCountListModel;

/// \brief The "Word Count" dialog: counts the document in the mode of its option buttons,
/// lists every counted token in document order, shows the document's statistics (and the
/// selection's, when text is selected), and opens a listed address.
///
/// A thin view over `WordCount`; the children carry the names of the dialog's interface
/// (`WordsOnlyOpt`, `WordsNumsOpt`, `NumsOpt`, `EmailOpt`, `URLOpt`, `WCList`, `WordCountLabel`,
/// `LinkCmd`, `Reg1`, `CloseButton`), so a test can find and drive them. Double-clicking an
/// entry selects that token in the document.
class CountWordsFrm : public QDialog {
    Q_OBJECT
public:
    /// Counts at once in the words-only mode. \a area must outlive the dialog.
    explicit CountWordsFrm(WordCount &area, QWidget *parent = nullptr);
    ~CountWordsFrm() override;

    /// The mode of the checked option button.
    WordCountMode mode() const { return m_mode; }
    /// Checks the option button of \a mode and counts again.
    void setMode(WordCountMode mode);
    /// The current count's result.
    const WordCountResult &result() const;

private:
    void recount();
    void showStatistics();
    void entrySelected();
    void openSelectedAddress();
    QString selectedEntry() const;

    WordCount &m_area;
    WordCountMode m_mode = WordCountMode::WordsOnly;
    WordCountListModel *m_model = nullptr;
    QButtonGroup *m_options = nullptr;
    QListView *m_list = nullptr;
    QLabel *m_countLabel = nullptr;
    QPushButton *m_linkButton = nullptr;
    QGridLayout *m_statsGrid = nullptr;
    QLineEdit *m_separatorPattern = nullptr;
};

/// How a reading time reads in the dialog and the command-line tool: "0 min", "< 1 min",
/// "N min" (rounded to the nearest minute).
QString readingTimeText(int seconds);

} // namespace kvrtb
