#pragma once

#include "core/platformservices.h"

#include <QStringList>

#include <functional>

namespace kvrtb {

/// \brief Platform services for tests: answers dialogs from a script and records every call.
///
/// Answers are taken from the front of the matching queue; with the queue empty a message box
/// answers its first button (OK, Abort, Yes or Retry) and every dialog is cancelled.
class RecordingPlatformServices : public PlatformServices {
public:
    /// One call made to the services.
    struct Call {
        QString service;   ///< "messageBox", "openFileDialog", "openAddress", ...
        QString title;     ///< message box title, dialog title
        QString text;      ///< message text, dialog filter, address
        int buttons = 0;   ///< message boxes: `MessageButtons` value; print dialogs: 1 when the selection is offered
        int icon = 0;      ///< message boxes: `MessageIcon` value
    };

    QList<Call> calls;

    QList<MessageAnswer> messageAnswers;
    QList<FileDialogResult> fileDialogAnswers;
    QList<ColourDialogResult> colourDialogAnswers;
    QList<FontDialogResult> fontDialogAnswers;
    QList<bool> printDialogAnswers;
    /// Run on the printer of each print dialog before it answers, as the user's choices would
    /// be (a page range, the selection, an output file).
    std::function<void(QPrinter &)> onPrintDialog;
    QList<bool> printPreviewAnswers;
    QString previewOutput;
    QList<int> menuAnswers;

    QList<FileDialogRequest> fileDialogRequests; ///< every file dialog asked for, in order
    QList<QList<MenuItem>> menus;                ///< every pop-up menu shown, in order
    QStringList openedAddresses;
    bool openAddressSucceeds = true;
    QString openAddressError = QStringLiteral("No application is registered for this address.");
    int clickSounds = 0;
    int busyDepth = 0;         ///< current nesting of setBusy(true)
    int maxBusyDepth = 0;
    bool pendingInput = false; ///< what hasPendingInput answers
    int processEventsCalls = 0;
    /// Run on every processEvents, so a test can act while a long pass yields (e.g. cancel it).
    std::function<void()> onProcessEvents;
    QPoint cursor;

    /// The calls of one service, in order.
    QList<Call> callsOf(const QString &service) const;

    MessageAnswer messageBox(const QString &text, MessageButtons buttons, MessageIcon icon,
                             const QString &title) override;
    FileDialogResult openFileDialog(const FileDialogRequest &request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest &request) override;
    ColourDialogResult colourDialog(Colour initial) override;
    FontDialogResult fontDialog(const QFont &initial) override;
    bool printDialog(QPrinter &printer, bool offerSelection = false) override;
    /// Records the call and lets the preview draw once on \a printer, into `previewOutput` as
    /// a PDF when that is set (so a test can read the previewed pages); answers from
    /// `printPreviewAnswers` (false when empty).
    bool printPreview(QPrinter &printer, const std::function<void(QPrinter &)> &render) override;
    bool openAddress(const QString &address, QString *error = nullptr) override;
    void playClickSound() override;
    void setBusy(bool busy) override;
    bool hasPendingInput() override;
    void processEvents() override;
    int popupMenu(const QList<MenuItem> &items, const QPoint &globalPos) override;
    QPoint cursorPosition() override;

private:
    FileDialogResult fileDialog(const QString &service, const FileDialogRequest &request);
};

} // namespace kvrtb
