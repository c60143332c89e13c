#pragma once

#include "fonts/fontchoice.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace kvrtb {

class PlatformServices;

/// \brief The control's own font dialog ("Font"): family, style, size, strike-through,
/// underline and colour, with a live sample.
///
/// A thin view over `FontChoice`. The colour button asks the platform services' colour
/// dialog. Children carry names a test can find: `FontCombo`, `StyleList`, `SizeCombo`,
/// `StrikeCheck`, `UnderlineCheck`, `ColorButton`, `SampleLB`, `OKButton`, `CancelButton`.
class FontFrm : public QDialog {
    Q_OBJECT
public:
    /// Shows \a initial. \a services must outlive the dialog.
    FontFrm(PlatformServices &services, const FontChoice &initial, QWidget *parent = nullptr);
    ~FontFrm() override;

    /// The font as the dialog's controls now set it.
    FontChoice choice() const { return m_choice; }

private:
    void display(const FontChoice &choice);
    void updateSample();
    void chooseColour();
    void sizeEdited(const QString &text);

    PlatformServices &m_services;
    FontChoice m_choice;
    QFontComboBox *m_family = nullptr;
    QListWidget *m_style = nullptr;
    QComboBox *m_size = nullptr;
    QCheckBox *m_strike = nullptr;
    QCheckBox *m_underline = nullptr;
    QPushButton *m_colour = nullptr;
    QLabel *m_sample = nullptr;
};

} // namespace kvrtb
