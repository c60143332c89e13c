#pragma once

#include "core/platformservices.h"

namespace kvrtb::cli {

/// \brief Platform services for the command-line tool: no windows. Message boxes are printed
/// to standard error and answered with their first button, questions (Yes/No) with
/// `questionAnswer`; dialogs are cancelled; addresses are not opened.
class ConsoleServices : public PlatformServices {
public:
    /// The answer to Yes/No questions (`--yes`/`--no` on the command line): Yes or No.
    MessageAnswer questionAnswer = MessageAnswer::Yes;

    MessageAnswer messageBox(const QString &text, MessageButtons buttons, MessageIcon icon,
                             const QString &title) override;
    FileDialogResult openFileDialog(const FileDialogRequest &request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest &request) override;
    ColourDialogResult colourDialog(Colour initial) override;
    FontDialogResult fontDialog(const QFont &initial) override;
    bool printDialog(QPrinter &printer, bool offerSelection = false) override;
    /// No preview without windows: nothing is drawn and nothing printed.
    bool printPreview(QPrinter &, const std::function<void(QPrinter &)> &) override { return false; }
    bool openAddress(const QString &address, QString *error = nullptr) override;
    void playClickSound() override {}
    void setBusy(bool) override {}
    bool hasPendingInput() override { return false; }
    void processEvents() override {}
    int popupMenu(const QList<MenuItem> &items, const QPoint &globalPos) override;
    QPoint cursorPosition() override { return {}; }
};

} // namespace kvrtb::cli
