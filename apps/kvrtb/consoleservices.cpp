#include "consoleservices.h"

#include "commandregistry.h"

namespace kvrtb::cli {

MessageAnswer ConsoleServices::messageBox(const QString &text, MessageButtons buttons, MessageIcon,
                                          const QString &title)
{
    printErr(QStringLiteral("%1: %2\n").arg(title, QString(text).replace(QStringLiteral("\r\n"), QStringLiteral(" "))));
    if (buttons != MessageButtons::YesNo && buttons != MessageButtons::YesNoCancel)
        return firstAnswerOf(buttons);
    // Questions take the answer given on the command line (--yes / --no).
    const bool no = questionAnswer == MessageAnswer::No;
    printErr(QStringLiteral("%1: answered %2\n").arg(title, no ? QStringLiteral("No") : QStringLiteral("Yes")));
    return no ? MessageAnswer::No : MessageAnswer::Yes;
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

bool ConsoleServices::printDialog(QPrinter &, bool)
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
