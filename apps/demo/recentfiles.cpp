#include "recentfiles.h"

#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>

namespace {
const char kKey[] = "recentFiles";
}

RecentFiles::RecentFiles(QMenu *menu, QObject *parent)
    : QObject(parent), m_menu(menu), m_files(QSettings().value(QLatin1String(kKey)).toStringList())
{
    rebuild();
}

void RecentFiles::add(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    m_files.removeAll(absolute);
    m_files.prepend(absolute);
    while (m_files.size() > kMaxFiles)
        m_files.removeLast();
    QSettings().setValue(QLatin1String(kKey), m_files);
    rebuild();
}

void RecentFiles::rebuild()
{
    m_menu->clear();
    int number = 1;
    for (const QString &file : std::as_const(m_files)) {
        const QString text = QStringLiteral("&%1 %2").arg(number++).arg(QDir::toNativeSeparators(file));
        m_menu->addAction(text, this, [this, file] { emit openRequested(file); });
    }
    m_menu->setEnabled(!m_files.isEmpty());
}
