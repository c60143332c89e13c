#pragma once

#include "core/colour.h"
#include "core/kvrtbtypes.h"

#include <QDialog>

#include <optional>

class QCheckBox;
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
/// text; Enter in the dialog is "Find Next".
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

protected:
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    void findNext();
    void findPrevious();
    void replaceNext();
    void replaceAll();
    void chooseFontColour();
    void updateButtons();
    FindOptionsQ options() const;
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
    QPushButton *m_fontColourButton = nullptr;
    QPushButton *m_findNextButton = nullptr;
    QPushButton *m_findPreviousButton = nullptr;
    QPushButton *m_replaceButton = nullptr;
    QPushButton *m_replaceAllButton = nullptr;
    Colour m_fontColour = 0x000000FF; // red
};

} // namespace kvrtb
