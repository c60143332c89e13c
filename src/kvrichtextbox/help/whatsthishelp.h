#pragma once

#include <QObject>
#include <QString>

namespace kvrtb {

class ControlCore;

/// \brief What's This help on the control's editor, and the way to the help document.
///
/// The editor answers What's This (Shift+F1, or the title bar's "?" button of a dialog
/// holding it) with a short description of the control and a link to its help file:
/// `WhatsThisHelpFile` when the host set it, else the control's own document. Following the
/// link opens the file with the desktop's viewer through the platform services.
class WhatsThisHelp : public QObject {
    Q_OBJECT
public:
    /// \a core must outlive the object; the editor is watched from now on.
    explicit WhatsThisHelp(ControlCore &core);
    ~WhatsThisHelp() override;

    /// Points `WhatsThisHelpFile` at the control's own help document (and tells the host).
    void PointToWhatsThisHelpFile();
    /// Opens the help file (`WhatsThisHelpFile`, else the control's own) with the desktop.
    /// False with a reason in \a error when it could not be opened.
    bool showHelp(QString *error = nullptr);
    /// The address of the help file What's This links to; empty when there is none.
    QString helpAddress() const;
    /// The editor's What's This text (rich text with the link).
    QString whatsThisText() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    ControlCore &m_core;
};

} // namespace kvrtb
