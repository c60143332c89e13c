#pragma once

#include "spelling/spellchecksession.h"
#include "spelling/userwordlist.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QSpinBox;

namespace kvrtb {

class ControlCore;

/// \brief The modeless "Spell Check" dialog of a control: a thin face over `SpellCheckSession`.
///
/// Controls (object names): `ContextLB` shows the misspelt word in its sentence (the word in
/// bold); `ChangeToTxt` holds the replacement, at first the likeliest suggestion (or the word
/// itself when there is none); `SuggestionsList` lists the suggestions, the likeliest first, at
/// the accuracy of `AccuracySpin` (higher: fewer, closer suggestions); choosing one puts it in
/// `ChangeToTxt`, a double click changes at once. The buttons `ChangeButton`,
/// `ChangeAllButton`, `IgnoreButton`, `IgnoreAllButton`, `AddButton` ("Add to Dictionary",
/// the user's word list) answer for the word at hand and move to the next; `CloseButton`
/// closes. While the document is scanned, `ProgressBar` shows how far the scan is and
/// `CancelButton` stops it; `StatusLB` tells the state.
///
/// Boxes through the control's platform services, titled "Spell Check": "No misspelt words
/// were found." or "The spelling check is complete." (information) at the end of a run, and a
/// warning when the user's word list cannot be read or written. Closing the dialog sets the
/// stop flag (as `KillSwitch` does), so a scan still running stops.
///
/// One dialog per control: `showFor` raises the open one. The dialog belongs to the editor
/// widget and deletes itself when closed.
class SpellCheckFrm : public QDialog {
    Q_OBJECT

public:
    SpellCheckFrm(ControlCore &core, QWidget *parent = nullptr);
    ~SpellCheckFrm() override;

    /// Shows the control's dialog (creating it when none is open) and starts a check as soon as
    /// the event loop runs, unless one is under way. Returns the dialog.
    static SpellCheckFrm *showFor(ControlCore &core);

    /// Scans the document and stops at the first misspelt word. Runs the event loop while it
    /// scans; returns when the scan has ended.
    void startCheck();

    SpellCheckSession::State state() const { return m_session.state(); }

    static QString title() { return QStringLiteral("Spell Check"); }

signals:
    /// The scan's word counter and total, as the progress bar shows them.
    void progressChanged(int counter, int total);
    /// A check has reached a word, its end, or was cancelled.
    void stateChanged();

protected:
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    void answer(SpellCheckSession::State (SpellCheckSession::*action)(const QString &));
    void addWord();
    void showState();
    void fillSuggestions();
    void tell(const QString &message, bool warning);

    ControlCore &m_core;
    UserWordList m_userWords;
    SpellCheckSession m_session;
    bool m_scanning = false;
    bool m_cancelRequested = false;
    bool m_closeRequested = false;
    bool m_stoppedAtWord = false;

    QLabel *m_context = nullptr;
    QLineEdit *m_changeTo = nullptr;
    QListWidget *m_suggestions = nullptr;
    QSpinBox *m_accuracy = nullptr;
    QProgressBar *m_progress = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_changeButton = nullptr;
    QPushButton *m_changeAllButton = nullptr;
    QPushButton *m_ignoreButton = nullptr;
    QPushButton *m_ignoreAllButton = nullptr;
    QPushButton *m_addButton = nullptr;
    QPushButton *m_cancelButton = nullptr;
    QPushButton *m_closeButton = nullptr;
};

} // namespace kvrtb
