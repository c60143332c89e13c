#include "surface/qtplatformservices.h"

#include <QApplication>
#include <QColorDialog>
#include <QCursor>
#include <QDesktopServices>
#include <QEvent>
#include <QFileDialog>
#include <QFontDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QUrl>

#ifdef KVRTB_HAVE_MULTIMEDIA
#include <QAudioDevice>
#include <QMediaDevices>
#include <QSoundEffect>
#endif

namespace kvrtb {

QtPlatformServices::QtPlatformServices(QWidget *dialogParent) : m_parent(dialogParent)
{
    // Qt cannot tell whether input is queued before it is dispatched. Long passes yield through
    // processEvents() and then ask hasPendingInput(): input that the user gave during the yield
    // is what they must make way for, so an application filter notes input events handled while
    // yielding. Input before the pass (the click or key that started it) does not count.
    if (qApp)
        qApp->installEventFilter(this);
}

QtPlatformServices::~QtPlatformServices()
{
    while (m_busyDepth > 0)
        setBusy(false);
}

bool QtPlatformServices::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::InputMethod:
        if (m_yielding)
            m_inputSeen = true;
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

MessageAnswer QtPlatformServices::messageBox(const QString &text, MessageButtons buttons,
                                             MessageIcon icon, const QString &title)
{
    QMessageBox box(m_parent);
    box.setWindowTitle(title);
    box.setText(text);
    switch (icon) {
    case MessageIcon::Critical: box.setIcon(QMessageBox::Critical); break;
    case MessageIcon::Question: box.setIcon(QMessageBox::Question); break;
    case MessageIcon::Exclamation: box.setIcon(QMessageBox::Warning); break;
    case MessageIcon::Information: box.setIcon(QMessageBox::Information); break;
    case MessageIcon::None: break;
    }
    QList<QPair<QMessageBox::StandardButton, MessageAnswer>> set;
    switch (buttons) {
    case MessageButtons::OK: set = {{QMessageBox::Ok, MessageAnswer::OK}}; break;
    case MessageButtons::OKCancel: set = {{QMessageBox::Ok, MessageAnswer::OK}, {QMessageBox::Cancel, MessageAnswer::Cancel}}; break;
    case MessageButtons::AbortRetryIgnore: set = {{QMessageBox::Abort, MessageAnswer::Abort}, {QMessageBox::Retry, MessageAnswer::Retry}, {QMessageBox::Ignore, MessageAnswer::Ignore}}; break;
    case MessageButtons::YesNoCancel: set = {{QMessageBox::Yes, MessageAnswer::Yes}, {QMessageBox::No, MessageAnswer::No}, {QMessageBox::Cancel, MessageAnswer::Cancel}}; break;
    case MessageButtons::YesNo: set = {{QMessageBox::Yes, MessageAnswer::Yes}, {QMessageBox::No, MessageAnswer::No}}; break;
    case MessageButtons::RetryCancel: set = {{QMessageBox::Retry, MessageAnswer::Retry}, {QMessageBox::Cancel, MessageAnswer::Cancel}}; break;
    }
    QMessageBox::StandardButtons standard;
    for (const auto &pair : set)
        standard |= pair.first;
    box.setStandardButtons(standard);
    box.setDefaultButton(set.first().first);
    const int chosen = box.exec();
    for (const auto &pair : set) {
        if (chosen == pair.first)
            return pair.second;
    }
    // Closing the box with Escape or the title bar: the cancelling answer of the set.
    for (const auto &pair : set) {
        if (pair.second == MessageAnswer::Cancel || pair.second == MessageAnswer::No)
            return pair.second;
    }
    return set.first().second;
}

QStringList QtPlatformServices::qtFilters(const QString &filter)
{
    QStringList result;
    const QStringList parts = filter.split(QLatin1Char('|'));
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts.at(i).trimmed();
        QString patterns = parts.at(i + 1).trimmed();
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        if (description.endsWith(QStringLiteral("(") + patterns + QStringLiteral(")")))
            result.append(description);
        else
            result.append(QStringLiteral("%1 (%2)").arg(description, patterns));
    }
    return result;
}

FileDialogResult QtPlatformServices::fileDialog(const FileDialogRequest &request, bool save)
{
    QFileDialog dialog(m_parent, request.title, request.directory);
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    // Qt's dialogs never offer a read-only box, so only the existing-file rule needs passing on.
    dialog.setFileMode(save || !request.fileMustExist ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (save && !request.promptOverwrite)
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QStringList filters = qtFilters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        const int index = qBound(1, request.filterIndex, int(filters.size()));
        dialog.selectNameFilter(filters.at(index - 1));
    }
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);
    FileDialogResult result;
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return result;
    result.accepted = true;
    result.fileName = dialog.selectedFiles().first();
    const int chosen = int(filters.indexOf(dialog.selectedNameFilter()));
    result.filterIndex = chosen >= 0 ? chosen + 1 : request.filterIndex;
    return result;
}

FileDialogResult QtPlatformServices::openFileDialog(const FileDialogRequest &request)
{
    return fileDialog(request, false);
}

FileDialogResult QtPlatformServices::saveFileDialog(const FileDialogRequest &request)
{
    return fileDialog(request, true);
}

ColourDialogResult QtPlatformServices::colourDialog(Colour initial)
{
    const QColor chosen = QColorDialog::getColor(toQColor(initial), m_parent);
    if (!chosen.isValid())
        return {false, initial};
    return {true, fromQColor(chosen)};
}

FontDialogResult QtPlatformServices::fontDialog(const QFont &initial)
{
    bool ok = false;
    const QFont chosen = QFontDialog::getFont(&ok, initial, m_parent);
    return {ok, ok ? chosen : initial};
}

bool QtPlatformServices::printDialog(QPrinter &printer, bool offerSelection)
{
    QPrintDialog dialog(&printer, m_parent);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, offerSelection);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    return dialog.exec() == QDialog::Accepted;
}

bool QtPlatformServices::printPreview(QPrinter &printer, const std::function<void(QPrinter &)> &render)
{
    QPrintPreviewDialog dialog(&printer, m_parent);
    dialog.setObjectName(QStringLiteral("PrintPreview"));
    dialog.setWindowTitle(tr("Print Preview"));
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                     [&render](QPrinter *target) { render(*target); });
    return dialog.exec() == QDialog::Accepted;
}

bool QtPlatformServices::openAddress(const QString &address, QString *error)
{
    const QUrl url = QUrl::fromUserInput(address);
    if (!url.isValid()) {
        if (error)
            *error = QStringLiteral("\"%1\" is not a valid address.").arg(address);
        return false;
    }
    if (QDesktopServices::openUrl(url))
        return true;
    if (error)
        *error = QStringLiteral("No application could open \"%1\".").arg(address);
    return false;
}

void QtPlatformServices::playClickSound()
{
#ifdef KVRTB_HAVE_MULTIMEDIA
    // The control's own short click from its resources. A system without an audio output
    // stays silent: the sound is a courtesy, never an error.
    if (QMediaDevices::defaultAudioOutput().isNull())
        return;
    if (!m_clickSound) {
        m_clickSound = new QSoundEffect(this);
        m_clickSound->setSource(QUrl(QStringLiteral("qrc:/kvrtb/sounds/click.wav")));
        m_clickSound->setVolume(0.6f);
    }
    m_clickSound->play();
#endif
}

void QtPlatformServices::setBusy(bool busy)
{
    if (busy) {
        if (m_busyDepth++ == 0)
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    } else if (m_busyDepth > 0) {
        if (--m_busyDepth == 0)
            QGuiApplication::restoreOverrideCursor();
    }
}

bool QtPlatformServices::hasPendingInput()
{
    const bool seen = m_inputSeen;
    m_inputSeen = false;
    return seen;
}

void QtPlatformServices::processEvents()
{
    const bool nested = m_yielding;
    m_yielding = true;
    QCoreApplication::processEvents();
    m_yielding = nested;
}

namespace {

void addItems(QMenu *menu, const QList<MenuItem> &items)
{
    for (const MenuItem &item : items) {
        if (!item.submenu.isEmpty()) {
            QMenu *sub = menu->addMenu(item.text);
            sub->setEnabled(item.enabled);
            addItems(sub, item.submenu);
        } else if (item.isSeparator()) {
            menu->addSeparator();
        } else {
            QAction *action = menu->addAction(item.text);
            action->setData(item.id);
            action->setEnabled(item.enabled);
        }
    }
}

} // namespace

int QtPlatformServices::popupMenu(const QList<MenuItem> &items, const QPoint &globalPos)
{
    QMenu menu(m_parent);
    addItems(&menu, items);
    const QAction *chosen = menu.exec(globalPos);
    return chosen ? chosen->data().toInt() : 0;
}

QPoint QtPlatformServices::cursorPosition()
{
    return QCursor::pos();
}

} // namespace kvrtb
