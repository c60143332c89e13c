#include "consoleservices.h"

#include "commandregistry.h"

namespace kvrtb::cli {

MessageAnswer ConsoleServices::messageBox(const QString &text, MessageButtons buttons, MessageIcon,
                                          const QString &title)
{
    printErr(QStringLiteral("%1: %2\n").arg(title, QString(text).replace(QStringLiteral("\r\n"), QStringLiteral(" "))));
    switch (buttons) {
    case MessageButtons::AbortRetryIgnore: return MessageAnswer::Abort;
    case MessageButtons::YesNoCancel:
    case MessageButtons::YesNo:
        printErr(QStringLiteral("%1: answered %2\n")
                     .arg(title, questionAnswer == MessageAnswer::No ? QStringLiteral("No") : QStringLiteral("Yes")));
        return questionAnswer == MessageAnswer::No ? MessageAnswer::No : MessageAnswer::Yes;
    case MessageButtons::RetryCancel: return MessageAnswer::Retry;
    case MessageButtons::OK:
    case MessageButtons::OKCancel: break;
    }
    return MessageAnswer::OK;
}

FileDialogResult ConsoleServices::openFileDialog(const FileDialogRequest &)
{
    return {};
}

FileDialogResult ConsoleServices::saveFileDialog(const FileDialogRequest &)
{
    return {};
}

ColourDialogResult ConsoleServices::colourDialog(Colour initial)
{
    return {false, initial};
}

FontDialogResult ConsoleServices::fontDialog(const QFont &initial)
{
    return {false, initial};
}

bool ConsoleServices::printDialog(QPrinter &)
{
    return false;
}

bool ConsoleServices::openAddress(const QString &, QString *error)
{
    if (error)
        *error = QStringLiteral("The command-line tool does not open addresses.");
    return false;
}

int ConsoleServices::popupMenu(const QList<MenuItem> &, const QPoint &)
{
    return 0;
}

} // namespace kvrtb::cli
