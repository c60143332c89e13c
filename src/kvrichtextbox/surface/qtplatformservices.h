#pragma once

#include "core/platformservices.h"

#include <QObject>
#include <QPointer>

class QSoundEffect;
class QWidget;

namespace kvrtb {

/// \brief The desktop implementation of the platform services: Qt's message boxes and dialogs,
/// the desktop's handlers for addresses, an override cursor while busy.
class QtPlatformServices : public QObject, public PlatformServices {
    Q_OBJECT
public:
    /// \a parent is the widget dialogs are centred on (may be nullptr).
    explicit QtPlatformServices(QWidget *dialogParent = nullptr);
    ~QtPlatformServices() override;

    MessageAnswer messageBox(const QString &text, MessageButtons buttons, MessageIcon icon,
                             const QString &title) override;
    FileDialogResult openFileDialog(const FileDialogRequest &request) override;
    FileDialogResult saveFileDialog(const FileDialogRequest &request) override;
    ColourDialogResult colourDialog(Colour initial) override;
    FontDialogResult fontDialog(const QFont &initial) override;
    bool printDialog(QPrinter &printer, bool offerSelection = false) override;
    bool printPreview(QPrinter &printer, const std::function<void(QPrinter &)> &render) override;
    bool openAddress(const QString &address, QString *error = nullptr) override;
    void playClickSound() override;
    void setBusy(bool busy) override;
    bool hasPendingInput() override;
    void processEvents() override;
    int popupMenu(const QList<MenuItem> &items, const QPoint &globalPos) override;
    QPoint cursorPosition() override;

    /// Converts the control's "description|pattern|..." filter to Qt's "description (pattern);;..."
    /// form, one entry per pair.
    static QStringList qtFilters(const QString &filter);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    FileDialogResult fileDialog(const FileDialogRequest &request, bool save);

    QPointer<QWidget> m_parent;
    int m_busyDepth = 0;
    bool m_inputSeen = false; ///< input handled during a yield, not yet asked about
    bool m_yielding = false;
    QSoundEffect *m_clickSound = nullptr; ///< made on the first click (only with Qt Multimedia)
};

} // namespace kvrtb
