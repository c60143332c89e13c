#include "core/recordingplatformservices.h"

#include <QPrinter>

namespace kvrtb {

QList<RecordingPlatformServices::Call> RecordingPlatformServices::callsOf(const QString &service) const
{
    QList<Call> result;
    for (const Call &call : calls) {
        if (call.service == service)
            result.append(call);
    }
    return result;
}

MessageAnswer RecordingPlatformServices::messageBox(const QString &text, MessageButtons buttons,
                                                    MessageIcon icon, const QString &title)
{
    calls.append({QStringLiteral("messageBox"), title, text, int(buttons), int(icon)});
    return messageAnswers.isEmpty() ? firstAnswerOf(buttons) : messageAnswers.takeFirst();
}

FileDialogResult RecordingPlatformServices::fileDialog(const QString &service, const FileDialogRequest &request)
{
    calls.append({service, request.title, request.filter, 0, 0});
    fileDialogRequests.append(request);
    return fileDialogAnswers.isEmpty() ? FileDialogResult{} : fileDialogAnswers.takeFirst();
}

FileDialogResult RecordingPlatformServices::openFileDialog(const FileDialogRequest &request)
{
    return fileDialog(QStringLiteral("openFileDialog"), request);
}

FileDialogResult RecordingPlatformServices::saveFileDialog(const FileDialogRequest &request)
{
    return fileDialog(QStringLiteral("saveFileDialog"), request);
}

ColourDialogResult RecordingPlatformServices::colourDialog(Colour initial)
{
    calls.append({QStringLiteral("colourDialog"), QString(), QString::number(initial), 0, 0});
    return colourDialogAnswers.isEmpty() ? ColourDialogResult{false, initial} : colourDialogAnswers.takeFirst();
}

FontDialogResult RecordingPlatformServices::fontDialog(const QFont &initial)
{
    calls.append({QStringLiteral("fontDialog"), QString(), initial.family(), 0, 0});
    return fontDialogAnswers.isEmpty() ? FontDialogResult{false, initial} : fontDialogAnswers.takeFirst();
}

bool RecordingPlatformServices::printDialog(QPrinter &printer, bool offerSelection)
{
    calls.append({QStringLiteral("printDialog"), QString(), QString(), offerSelection ? 1 : 0, 0});
    if (onPrintDialog)
        onPrintDialog(printer);
    return printDialogAnswers.isEmpty() ? false : printDialogAnswers.takeFirst();
}

bool RecordingPlatformServices::printPreview(QPrinter &printer, const std::function<void(QPrinter &)> &render)
{
    calls.append({QStringLiteral("printPreview"), QString(), previewOutput, 0, 0});
    if (!previewOutput.isEmpty()) {
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(previewOutput);
        render(printer);
    }
    return printPreviewAnswers.isEmpty() ? false : printPreviewAnswers.takeFirst();
}

bool RecordingPlatformServices::openAddress(const QString &address, QString *error)
{
    calls.append({QStringLiteral("openAddress"), QString(), address, 0, 0});
    openedAddresses.append(address);
    if (!openAddressSucceeds && error)
        *error = openAddressError;
    return openAddressSucceeds;
}

void RecordingPlatformServices::playClickSound()
{
    calls.append({QStringLiteral("playClickSound"), QString(), QString(), 0, 0});
    ++clickSounds;
}

void RecordingPlatformServices::setBusy(bool busy)
{
    busyDepth += busy ? 1 : -1;
    maxBusyDepth = std::max(maxBusyDepth, busyDepth);
}

bool RecordingPlatformServices::hasPendingInput()
{
    return pendingInput;
}

void RecordingPlatformServices::processEvents()
{
    ++processEventsCalls;
    if (onProcessEvents)
        onProcessEvents();
}

int RecordingPlatformServices::popupMenu(const QList<MenuItem> &items, const QPoint &globalPos)
{
    calls.append({QStringLiteral("popupMenu"), QString(),
                  QStringLiteral("%1,%2").arg(globalPos.x()).arg(globalPos.y()), 0, 0});
    menus.append(items);
    return menuAnswers.isEmpty() ? 0 : menuAnswers.takeFirst();
}

QPoint RecordingPlatformServices::cursorPosition()
{
    return cursor;
}

} // namespace kvrtb
