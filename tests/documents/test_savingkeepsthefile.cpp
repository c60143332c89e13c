// Saving over an existing file keeps what the file is: its other names (hard links), owner,
// group, permissions and extended attributes, in folders the user may not write and in sticky
// folders; a save that fails for want of space leaves the old bytes. The cases that need other
// users or a small file system switch the effective user and mount a tmpfs, which needs root.

#include "corefixture.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "documents/documents.h"
#include "documents/fileerror.h"
#include "documents/safefilewriter.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace kvrtb;

namespace {

constexpr uid_t kOwner = 65534;   // the file's owner (nobody)
constexpr uid_t kSaver = 4321;    // another user, who saves it
constexpr gid_t kShared = 4322;   // a group both belong to

struct Control : test::CoreFixture {
    Documents &docs() { return core.documents(); }
};

QByteArray fileBytes(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

struct stat statOf(const QString &path)
{
    struct stat st {};
    ::stat(QFile::encodeName(path).constData(), &st);
    return st;
}

bool setOwner(const QString &path, uid_t uid, gid_t gid, mode_t mode)
{
    const QByteArray native = QFile::encodeName(path);
    return ::chown(native.constData(), uid, gid) == 0 && ::chmod(native.constData(), mode) == 0;
}

/// The names in \a folder that a save may leave behind (temporary files and backups).
QStringList leftovers(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral(".kvrtb"));
}

/// Runs as another user (effective ids) for the guard's lifetime; root again afterwards.
class AsUser {
public:
    AsUser(uid_t uid, gid_t gid)
    {
        m_ok = ::setegid(gid) == 0 && ::seteuid(uid) == 0;
    }
    ~AsUser()
    {
        [[maybe_unused]] const int u = ::seteuid(0);
        [[maybe_unused]] const int g = ::setegid(0);
    }
    AsUser(const AsUser &) = delete;
    AsUser &operator=(const AsUser &) = delete;
    bool ok() const { return m_ok; }

private:
    bool m_ok = false;
};

/// A tmpfs of \a kilobytes mounted on a folder for the guard's lifetime.
class SmallDisk {
public:
    SmallDisk(const QString &folder, int kilobytes) : m_folder(QFile::encodeName(folder))
    {
        const QByteArray options = "size=" + QByteArray::number(kilobytes) + "k,mode=0755";
        m_mounted = ::mount("tmpfs", m_folder.constData(), "tmpfs", 0, options.constData()) == 0;
        m_error = errno;
    }
    ~SmallDisk()
    {
        if (m_mounted)
            ::umount(m_folder.constData());
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;
    bool mounted() const { return m_mounted; }
    QString error() const { return QString::fromLocal8Bit(std::strerror(m_error)); }

private:
    QByteArray m_folder;
    bool m_mounted = false;
    int m_error = 0;
};

} // namespace

class TestSavingKeepsTheFile : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }

    /// A fresh folder under the test's own, open to every user for reading (\a mode).
    QString folder(const QString &name, mode_t mode)
    {
        const QString dir = path(name);
        QDir().mkpath(dir);
        ::chmod(QFile::encodeName(dir).constData(), mode);
        return dir;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        // Other users must reach the folders below it.
        QVERIFY(::chmod(QFile::encodeName(m_dir.path()).constData(), 0755) == 0);
    }

    void init()
    {
        SafeFileWriter::setWriteFault({});
        threadState() = ThreadState();
    }

    void hardLinksAndAttributesStay()
    {
        const QString dir = folder(QStringLiteral("links"), 0755);
        const QString file = dir + QStringLiteral("/letter.txt");
        const QString other = dir + QStringLiteral("/copy-of-letter.txt");
        QVERIFY(writeBytes(file, "first draft\r\n"));
        QVERIFY(::link(QFile::encodeName(file).constData(), QFile::encodeName(other).constData()) == 0);
        const QByteArray native = QFile::encodeName(file);
        const bool attributes = ::setxattr(native.constData(), "user.kvrtb.note", "kept", 4, 0) == 0;
        QVERIFY2(attributes || errno == ENOTSUP || errno == EOPNOTSUPP, std::strerror(errno));

        Control c;
        c.surface().setText(QStringLiteral("final version"));
        QVERIFY2(c.docs().SaveFile(file, 1), qPrintable(c.docs().lastErrorReason()));
        QCOMPARE(fileBytes(file), QByteArray("final version"));
        QCOMPARE(fileBytes(other), QByteArray("final version"));
        QCOMPARE(int(statOf(file).st_nlink), 2);
        QCOMPARE(statOf(file).st_ino, statOf(other).st_ino);
        if (attributes) {
            char value[16] = {};
            QCOMPARE(int(::getxattr(native.constData(), "user.kvrtb.note", value, sizeof value)), 4);
            QCOMPARE(QByteArray(value), QByteArray("kept"));
        }
        QCOMPARE(leftovers(dir), QStringList());

        // A file with one name and no attributes is still replaced whole (a new inode).
        const QString single = dir + QStringLiteral("/single.txt");
        QVERIFY(writeBytes(single, "one"));
        const ino_t before = statOf(single).st_ino;
        QVERIFY(c.docs().SaveFile(single, 1));
        QCOMPARE(fileBytes(single), QByteArray("final version"));
        QVERIFY(statOf(single).st_ino != before);
        QCOMPARE(leftovers(dir), QStringList());
    }

    void otherUsersFilesKeepTheirOwner()
    {
        if (::geteuid() != 0)
            QSKIP("Switching users needs root.");
        // A writable file in a folder the user may not write: saved in place.
        const QString closed = folder(QStringLiteral("closed"), 0755);
        const QString mine = closed + QStringLiteral("/notes.txt");
        QVERIFY(writeBytes(mine, "old notes"));
        QVERIFY(setOwner(mine, kOwner, kOwner, 0644));
        // A group-writable file of another user in an open folder.
        const QString open = folder(QStringLiteral("open"), 0777);
        const QString shared = open + QStringLiteral("/plan.txt");
        QVERIFY(writeBytes(shared, "old plan"));
        QVERIFY(setOwner(shared, kOwner, kShared, 0664));
        // Another user's writable file in a sticky folder such as /tmp.
        const QString sticky = folder(QStringLiteral("sticky"), 01777);
        const QString theirs = sticky + QStringLiteral("/list.txt");
        QVERIFY(writeBytes(theirs, "old list"));
        QVERIFY(setOwner(theirs, kOwner, kOwner, 0666));

        Control c;
        c.surface().setText(QStringLiteral("saved by someone"));
        {
            AsUser owner(kOwner, kOwner);
            QVERIFY(owner.ok());
            QVERIFY2(c.docs().SaveFile(mine, 1), qPrintable(c.docs().lastErrorReason()));
        }
        {
            AsUser saver(kSaver, kShared);
            QVERIFY(saver.ok());
            QVERIFY2(c.docs().SaveFile(shared, 1), qPrintable(c.docs().lastErrorReason()));
            QVERIFY2(c.docs().SaveFile(theirs, 1), qPrintable(c.docs().lastErrorReason()));
        }
        QVERIFY(c.boxes().isEmpty());
        for (const QString &file : {mine, shared, theirs}) {
            QCOMPARE(fileBytes(file), QByteArray("saved by someone"));
            QCOMPARE(statOf(file).st_uid, kOwner);
        }
        QCOMPARE(statOf(shared).st_gid, kShared);
        QCOMPARE(int(statOf(shared).st_mode & 07777), 0664);
        QCOMPARE(int(statOf(mine).st_mode & 07777), 0644);
        for (const QString &dir : {closed, open, sticky, QDir::tempPath()})
            QCOMPARE(leftovers(dir).filter(QStringLiteral("txt")), QStringList());

        // A file the saver may not write is still refused, with its box.
        QVERIFY(setOwner(shared, kOwner, kOwner, 0644));
        {
            AsUser saver(kSaver, kShared);
            QVERIFY(saver.ok());
            QVERIFY(!c.docs().SaveFile(shared, 1));
        }
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("File is Read-only"));
        QCOMPARE(fileBytes(shared), QByteArray("saved by someone"));
    }

    void fullDiskLeavesTheOldBytes()
    {
        if (::geteuid() != 0)
            QSKIP("Mounting a small file system needs root.");
        const QString dir = folder(QStringLiteral("small"), 0755);
        SmallDisk disk(dir, 64);
        QVERIFY2(disk.mounted(), qPrintable(disk.error()));
        const QByteArray original(20000, 'o');
        const QString replaced = dir + QStringLiteral("/replaced.txt");
        const QString linked = dir + QStringLiteral("/linked.txt");
        const QString otherName = dir + QStringLiteral("/other-name.txt");
        QVERIFY(writeBytes(replaced, original));
        QVERIFY(writeBytes(linked, original));
        QVERIFY(::link(QFile::encodeName(linked).constData(), QFile::encodeName(otherName).constData()) == 0);

        Control c;
        c.surface().setText(QString(100000, QLatin1Char('n')));
        // Replaced whole (one name) and written in place (two names): neither fits.
        for (const QString &file : {replaced, linked}) {
            QVERIFY(!c.docs().SaveFile(file, 1));
            QCOMPARE(c.docs().lastError(), FileError::DiskFull);
            QCOMPARE(c.boxes().last().title, QStringLiteral("File Access Error 61"));
            QCOMPARE(fileBytes(file), original);
        }
        QCOMPARE(fileBytes(otherName), original);
        QVERIFY(c.docs().lastErrorReason().endsWith(QLatin1String("the file keeps its previous content")));
        QCOMPARE(leftovers(dir), QStringList());
        QCOMPARE(leftovers(QDir::tempPath()).filter(QStringLiteral("linked")), QStringList());

        // What fits is written, in place, to both names.
        c.surface().setText(QString(23000, QLatin1Char('s')));
        QVERIFY2(c.docs().SaveFile(linked, 1), qPrintable(c.docs().lastErrorReason()));
        QCOMPARE(fileBytes(otherName), QByteArray(23000, 's'));
        QCOMPARE(leftovers(dir), QStringList());
    }
};

int runSavingTests(int argc, char **argv)
{
    TestSavingKeepsTheFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_savingkeepsthefile.moc"
