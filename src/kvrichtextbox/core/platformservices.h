#pragma once

#include "core/colour.h"

#include <QFont>
#include <QList>
#include <QPoint>
#include <QString>

#include <functional>

class QPrinter;

namespace kvrtb {

/// Message box icons, with the values of the host's message-box constants.
enum class MessageIcon { None = 0, Critical = 16, Question = 32, Exclamation = 48, Information = 64 };

/// Message box button sets, with the values of the host's constants.
enum class MessageButtons { OK = 0, OKCancel = 1, AbortRetryIgnore = 2, YesNoCancel = 3, YesNo = 4, RetryCancel = 5 };

/// The button the user chose, with the values of the host's constants.
enum class MessageAnswer { OK = 1, Cancel = 2, Abort = 3, Retry = 4, Ignore = 5, Yes = 6, No = 7 };

/// The answer of a box that is not asked: its first button (OK, Abort, Yes or Retry).
inline MessageAnswer firstAnswerOf(MessageButtons buttons)
{
    switch (buttons) {
    case MessageButtons::AbortRetryIgnore: return MessageAnswer::Abort;
    case MessageButtons::YesNoCancel:
    case MessageButtons::YesNo: return MessageAnswer::Yes;
    case MessageButtons::RetryCancel: return MessageAnswer::Retry;
    case MessageButtons::OK:
    case MessageButtons::OKCancel: break;
    }
    return MessageAnswer::OK;
}

/// \brief A file dialog as the control asks for it.
///
/// `filter` is in the control's own form, description and pattern pairs separated by "|"
/// ("Rich Text Format (*.rtf)|*.rtf|Text (*.txt)|*.txt"); `filterIndex` is 1-based.
struct FileDialogRequest {
    QString title;
    QString directory;
    QString fileName;
    QString filter;
    int filterIndex = 1;
    bool promptOverwrite = true; ///< save dialogs: ask before replacing an existing file
    bool fileMustExist = false;  ///< open dialogs: only an existing file may be chosen
};

struct FileDialogResult {
    bool accepted = false;  ///< false when the user cancelled
    QString fileName;
    int filterIndex = 1;    ///< the filter the user chose, 1-based
};

struct ColourDialogResult {
    bool accepted = false;
    Colour colour = 0;
};

struct FontDialogResult {
    bool accepted = false;
    QFont font;
};

/// \brief One item of a pop-up menu: a command, a separator or a sub-menu.
struct MenuItem {
    int id = 0;              ///< returned when chosen; 0 for separators and sub-menus
    QString text;            ///< empty for a separator
    bool enabled = true;
    QList<MenuItem> submenu; ///< non-empty for a sub-menu
    bool isSeparator() const { return text.isEmpty() && submenu.isEmpty(); }
};

/// \brief Everything the control needs from the desktop: dialogs, the shell, the mouse pointer,
/// sound and the event loop.
///
/// The control's logic never shows a dialog itself; it asks these services, so that tests can
/// answer dialogs from a script (`RecordingPlatformServices`) and the command-line tool can print
/// messages instead. `QtPlatformServices` is the desktop implementation.
class PlatformServices {
public:
    virtual ~PlatformServices() = default;

    /// Shows a message box and returns the button chosen.
    virtual MessageAnswer messageBox(const QString &text, MessageButtons buttons, MessageIcon icon,
                                     const QString &title) = 0;
    virtual FileDialogResult openFileDialog(const FileDialogRequest &request) = 0;
    virtual FileDialogResult saveFileDialog(const FileDialogRequest &request) = 0;
    virtual ColourDialogResult colourDialog(Colour initial) = 0;
    virtual FontDialogResult fontDialog(const QFont &initial) = 0;
    /// Lets the user set up \a printer; false when cancelled. With \a offerSelection the user
    /// may choose to print only the selection (`QPrinter::Selection` as the print range).
    virtual bool printDialog(QPrinter &printer, bool offerSelection = false) = 0;
    /// \brief Shows a print preview of the pages \a render draws on the printer it is given
    /// (called again when the user changes the page setup, and on the real printer when the
    /// user prints from the preview). Returns true when the user printed, false when the
    /// preview was closed without printing.
    virtual bool printPreview(QPrinter &printer, const std::function<void(QPrinter &)> &render) = 0;
    /// Opens an address with the desktop ("https://...", "mailto:..."); false with a reason in
    /// \a error when nothing could open it.
    virtual bool openAddress(const QString &address, QString *error = nullptr) = 0;
    /// Plays the control's short click sound.
    virtual void playClickSound() = 0;
    /// Shows (true) or removes (false) the busy pointer; calls nest.
    virtual void setBusy(bool busy) = 0;
    /// True when the user gave input (keys, mouse) during the last `processEvents` yield that
    /// has not been asked about yet; input from before a pass does not count.
    virtual bool hasPendingInput() = 0;
    /// Lets the event loop handle what is waiting (repaints, input, timers).
    virtual void processEvents() = 0;
    /// Shows a pop-up menu at a global position and returns the chosen item's id, 0 for none.
    virtual int popupMenu(const QList<MenuItem> &items, const QPoint &globalPos) = 0;
    /// The mouse pointer's global position.
    virtual QPoint cursorPosition() = 0;
};

/// \brief Shows the busy pointer for the lifetime of the guard.
class BusyGuard {
public:
    explicit BusyGuard(PlatformServices &services) : m_services(services) { m_services.setBusy(true); }
    ~BusyGuard() { m_services.setBusy(false); }
    BusyGuard(const BusyGuard &) = delete;
    BusyGuard &operator=(const BusyGuard &) = delete;

private:
    PlatformServices &m_services;
};

} // namespace kvrtb
