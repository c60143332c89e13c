#pragma once

#include "core/colour.h"
#include "core/kvrtbtypes.h"
#include "findreplace/findsession.h"

#include <QDialog>

#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kvrtb {

class ControlCore;

/// \brief The modeless "Find / Replace" dialog of a control: a thin face over `FindReplace`.
///
/// Controls (object names as the control's interface has them): the find box `FindTxt`, the
/// replacement box `ReplacementTxt` ("Replace with:"), in the frame "Find / Replace Options" the
/// check boxes `WholeWordCheck`, `MatchCaseCheck` and `ApplyFontColorCheck` with
/// `FontColorButton` (the colour replacements take), and the buttons `FindNextButton`,
/// `FindPreviousButton`, `ReplaceButton`, `ReplaceAllButton` ("Replace All") and `CloseButton`.
///
/// Outcomes are told in an information box titled "Search Complete" through the control's
/// platform services; the searched text stands between two pairs of single quotes:
/// - find next without a hit: "The text: ''X'' not found after cursor location."
/// - find previous without a hit: "The text: ''X'' not found ahead of cursor location."
/// - replace all without a hit: "The text: ''X'' not found in this document."
/// - replace all with hits: "N replacements made to this document."
/// "Replace" replaces the selection when it is a hit, then finds the next one (a first press
/// with no hit selected only finds). Closing the dialog sets the stop flag, so a replace-all
/// running in a yield stops. The buttons that search are enabled only while `FindTxt` holds
/// text; Enter in the dialog is "Find Next", Shift+Enter "Find Previous", Escape closes it.
///
/// Beyond those, the frame holds `RegexCheck` ("Regular expression": the find text is a PCRE2
/// pattern, see `FindQuery` for its settings and the "\1" / "$1" group references of the
/// replacement), `WrapAroundCheck` ("Wrap around", on: see `FindSession`), `HighlightAllCheck`
/// ("Highlight all matches", on) and `InSelectionCheck` ("Find in selection": limits finding,
/// replacing and counting to the selection the user has when turning it on). Under the frame,
/// `MatchCountLabel` shows the count ("3 of 41") and `StatusLabel` what the message boxes do not
/// tell: an invalid pattern ("Invalid regular expression: missing closing parenthesis at offset
/// 2."), a pattern too complex for the text, a search that wrapped, an empty selection for
/// find in selection, or its text replaced as a whole (which turns find in selection off). Without the new options, "Find Next" and "Replace All" act and report as
/// above; with wrap-around, "Find Next" tells "not found" only when there is no match at all.
/// Replace all in a selection reports "N replacements made in the selection." and "The text:
/// ''X'' not found in the selection.".
///
/// Created by `FindReplace::ShowFindReplace`; the dialog is owned by its parent widget.
class FindReplaceFrm : public QDialog {
    Q_OBJECT

public:
    FindReplaceFrm(ControlCore &core, QWidget *parent = nullptr);

    /// Puts \a text into the find box, selected.
    void setFindText(const QString &text);
    /// The colour that replacements take while `ApplyFontColorCheck` is set.
    Colour fontColour() const { return m_fontColour; }

    /// The title of every outcome box.
    static QString messageTitle() { return QStringLiteral("Search Complete"); }
    /// The engine that finds, counts and highlights for this dialog.
    FindSession &session() const { return *m_session; }

protected:
    void closeEvent(QCloseEvent *event) override;
    void reject() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void findNext();
    void findPrevious();
    void replaceNext();
    void replaceAll();
    void chooseFontColour();
    void updateButtons();
    /// Hands the find text and the options to the session and shows a pattern error.
    void updateQuery();
    void updateCount();
    void toggleInSelection(bool on);
    /// Shows the outcome of a find in direction \a forward: nothing, a wrap note, an error, or
    /// "not found" (\a ending).
    void report(FindSession::Outcome outcome, bool forward, const QString &ending);
    QString wrapNote(bool forward) const;
    static QString tooComplexMessage();
    std::optional<Colour> replacementColour() const;
    void tell(const QString &message);
    /// "The text: ''X''" followed by \a ending.
    QString notFound(const QString &ending) const;

    ControlCore &m_core;
    QLineEdit *m_findText = nullptr;
    QLineEdit *m_replacementText = nullptr;
    QCheckBox *m_wholeWord = nullptr;
    QCheckBox *m_matchCase = nullptr;
    QCheckBox *m_applyFontColour = nullptr;
    QCheckBox *m_regex = nullptr;
    QCheckBox *m_wrapAround = nullptr;
    QCheckBox *m_highlightAll = nullptr;
    QCheckBox *m_inSelection = nullptr;
    QLabel *m_countLabel = nullptr;
    QLabel *m_statusLabel = nullptr;
    FindSession *m_session = nullptr;
    QPushButton *m_fontColourButton = nullptr;
    QPushButton *m_findNextButton = nullptr;
    QPushButton *m_findPreviousButton = nullptr;
    QPushButton *m_replaceButton = nullptr;
    QPushButton *m_replaceAllButton = nullptr;
    Colour m_fontColour = 0x000000FF; // red
};

} // namespace kvrtb
