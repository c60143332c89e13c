#pragma once

#include <QMainWindow>

class QAction;
class QLabel;
class RecentFiles;

namespace kvrtb {
class KvRTB;
}

/// \brief The demo word processor: one KvRTB with menus and a toolbar over the control's
/// commands, recent files, a status bar with the caret's line and column, enciphered documents
/// through a demonstration cipher, and a question before a changed document is closed.
///
/// Menu states (check marks, greyed items) follow the control: they are refreshed whenever the
/// control raises `UpdateParentMenu` or `SelChange`.
class DemoWindow : public QMainWindow {
    Q_OBJECT

public:
    DemoWindow();

    kvrtb::KvRTB *editor() const { return m_editor; }
    /// Opens \a path as the control's document (RTF, text, or an enciphered control document).
    bool openFile(const QString &path);
    /// Puts the sample document in the editor.
    void showSample();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildFileMenu();
    void buildEditMenu();
    void buildFormatMenu();
    void buildToolsMenu();
    void buildViewMenu();
    void buildToolBar();
    QAction *addCommand(QMenu *menu, const QString &text, std::function<void()> run,
                        const QKeySequence &shortcut = QKeySequence());

    bool maybeSave();
    void newDocument();
    void open();
    bool save();
    bool saveAs();
    void saveEnciphered();
    void insertLink();
    void goToLine();
    void setCurrentFile(const QString &path);
    void updateCommandStates();
    void updateCaretPosition();

    kvrtb::KvRTB *m_editor = nullptr;
    RecentFiles *m_recent = nullptr;
    QLabel *m_position = nullptr;
    QString m_path;
    QAction *m_cleanUp = nullptr;
    QAction *m_ruler = nullptr;
    QAction *m_wrap = nullptr;
    QAction *m_links = nullptr;
    QAction *m_undo = nullptr;
    QAction *m_cut = nullptr;
    QAction *m_copy = nullptr;
    QAction *m_paste = nullptr;
    QAction *m_delete = nullptr;
    QAction *m_bold = nullptr;
    QAction *m_italic = nullptr;
    QAction *m_underline = nullptr;
};
