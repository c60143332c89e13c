#pragma once

#include <QObject>
#include <QStringList>

class QMenu;

/// \brief The demo's "Open Recent" list: the last files opened or saved, newest first, kept in
/// the user's settings and shown as a menu.
class RecentFiles : public QObject {
    Q_OBJECT

public:
    explicit RecentFiles(QMenu *menu, QObject *parent = nullptr);

    /// Puts \a path at the top of the list (once) and rebuilds the menu.
    void add(const QString &path);
    QStringList files() const { return m_files; }

signals:
    void openRequested(const QString &path);

private:
    void rebuild();

    static constexpr int kMaxFiles = 8;
    QMenu *m_menu;
    QStringList m_files;
};
