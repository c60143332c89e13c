// Loading and saving documents, the file dialogs, the enciphered-file test and the clean-up
// passes, on the real surface under the offscreen platform with scripted dialogs.

#include "corefixture.h"
#include "core/controlcore.h"
#include "core/controlevents.h"
#include "core/recordingplatformservices.h"
#include "core/threadstate.h"
#include "documents/contentcleanup.h"
#include "documents/documents.h"
#include "documents/fileerror.h"
#include "documents/fileinuse.h"
#include "documents/safefilewriter.h"
#include "documents/textfileformat.h"
#include "editing/specialundo.h"
#include "hyperlinks/hyperlinks.h"

#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace kvrtb;

namespace {

struct Control : test::CoreFixture {
    Documents &docs() { return core.documents(); }
};

const QString kCrLf = QStringLiteral("\r\n");

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

/// True when the editor reads RTF, which the tests of RTF content stand on. Probes a control of
/// its own, so that the probe's formatting stays out of the control under test.
bool surfaceReadsRtf()
{
    RecordingPlatformServices services;
    ControlEvents events;
    ControlCore probe(nullptr, services, events);
    return probe.surface().setRtf(QStringLiteral("{\\rtf1\\ansi {\\b bold} plain\\par}"))
           && probe.surface().text().startsWith(QLatin1String("bold plain"));
}

/// A lock on \a path held by a child process until `release`.
class ChildLock {
public:
    enum Kind { Record, Flock };
    ChildLock(const QString &path, Kind kind)
    {
        int ready[2];
        int release[2];
        if (::pipe(ready) != 0 || ::pipe(release) != 0)
            return;
        const QByteArray native = QFile::encodeName(path);
        m_pid = ::fork();
        if (m_pid == 0) {
            const int fd = ::open(native.constData(), O_RDWR);
            bool locked = false;
            if (kind == Record) {
                struct flock lock {};
                lock.l_type = F_WRLCK;
                lock.l_whence = SEEK_SET;
                locked = ::fcntl(fd, F_SETLK, &lock) == 0;
            } else {
                locked = ::flock(fd, LOCK_EX | LOCK_NB) == 0;
            }
            const char state = locked ? 'L' : 'F';
            [[maybe_unused]] ssize_t w = ::write(ready[1], &state, 1);
            char c = 0;
            [[maybe_unused]] ssize_t r = ::read(release[0], &c, 1);
            ::_exit(0);
        }
        ::close(ready[1]);
        ::close(release[0]);
        m_release = release[1];
        char state = 0;
        m_locked = ::read(ready[0], &state, 1) == 1 && state == 'L';
        ::close(ready[0]);
    }
    ~ChildLock() { release(); }
    bool locked() const { return m_locked; }
    void release()
    {
        if (m_pid <= 0)
            return;
        [[maybe_unused]] ssize_t w = ::write(m_release, "x", 1);
        ::close(m_release);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }

private:
    pid_t m_pid = -1;
    int m_release = -1;
    bool m_locked = false;
};

/// The picture pattern's matches as the regular-expression engine defines them, worked out
/// by hand: the first "{\pict" found, the non-space run around it from its start, the last
/// "{\pict" of that run that a "}" follows, up to that "}", and the non-space run after it.
QList<ContentCleanup::Span> referencePictureMatches(const QString &text)
{
    static const QString open = QStringLiteral("{\\pict");
    auto isSpace = [](QChar c) {
        return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v';
    };
    QList<ContentCleanup::Span> spans;
    const qsizetype lastBrace = text.lastIndexOf(QLatin1Char('}'));
    qsizetype pos = 0;
    while (true) {
        const qsizetype first = text.indexOf(open, pos, Qt::CaseInsensitive);
        if (first < 0 || lastBrace < first + open.size())
            break;
        qsizetype start = first;
        while (start > pos && !isSpace(text[start - 1]))
            --start;
        qsizetype runEnd = first;
        while (runEnd < text.size() && !isSpace(text[runEnd]))
            ++runEnd;
        qsizetype chosen = first;
        for (qsizetype q = text.indexOf(open, first + 1, Qt::CaseInsensitive);
             q >= 0 && q + open.size() <= runEnd && q + open.size() <= lastBrace;
             q = text.indexOf(open, q + 1, Qt::CaseInsensitive))
            chosen = q;
        qsizetype end = text.indexOf(QLatin1Char('}'), chosen + open.size()) + 1;
        while (end < text.size() && !isSpace(text[end]))
            ++end;
        spans.append({int(start), int(end - start)});
        pos = end;
    }
    return spans;
}

QList<ContentCleanup::Span> regexMatches(const QRegularExpression &pattern, const QString &text)
{
    QList<ContentCleanup::Span> spans;
    auto it = pattern.globalMatch(text);
    while (it.hasNext()) {
        const auto m = it.next();
        spans.append({int(m.capturedStart()), int(m.capturedLength())});
    }
    return spans;
}

} // namespace

class TestDocuments : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString path(const QString &name) const { return m_dir.filePath(name); }

private slots:
    void init()
    {
        SafeFileWriter::setWriteFault({});
        threadState() = ThreadState();
    }

    void textFileFormats_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("encoding");
        QTest::addColumn<bool>("bom");
        QTest::addColumn<int>("lineEnd");
        using E = TextFileFormat::Encoding;
        using L = TextFileFormat::LineEnd;
        QTest::newRow("utf8 crlf") << QByteArray("caf\xC3\xA9\r\nline\r\n") << QStringLiteral("caf\u00E9\r\nline\r\n")
                                   << int(E::Utf8) << false << int(L::CrLf);
        QTest::newRow("utf8 bom lf") << QByteArray("\xEF\xBB\xBFone\ntwo") << QStringLiteral("one\ntwo") << int(E::Utf8)
                                     << true << int(L::Lf);
        QTest::newRow("utf16le bom") << QByteArray("\xFF\xFEh\0i\0\r\0\n\0", 10) << QStringLiteral("hi\r\n")
                                     << int(E::Utf16LE) << true << int(L::CrLf);
        QTest::newRow("utf16be bom") << QByteArray("\xFE\xFF\0h\0\r\0i", 8) << QStringLiteral("h\ri") << int(E::Utf16BE)
                                     << true << int(L::Cr);
        QTest::newRow("windows-1252") << QByteArray("it\x92s \xE9t\xE9\r\n\x80") << QStringLiteral("it\u2019s \u00E9t\u00E9\r\n\u20AC")
                                      << int(E::Windows1252) << false << int(L::CrLf);
        QTest::newRow("no line end") << QByteArray("plain") << QStringLiteral("plain") << int(E::Utf8) << false
                                     << int(L::CrLf);
        QTest::newRow("empty") << QByteArray() << QString() << int(E::Utf8) << false << int(L::CrLf);
    }

    void textFileFormats()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        TextFileFormat format;
        QCOMPARE(TextFileFormat::decode(bytes, &format), text);
        QFETCH(int, encoding);
        QFETCH(bool, bom);
        QFETCH(int, lineEnd);
        QCOMPARE(int(format.encoding), encoding);
        QCOMPARE(format.byteOrderMark, bom);
        QCOMPARE(int(format.lineEnd), lineEnd);
        // The document holds "\n" between paragraphs; writing it back gives the file again.
        QString paragraphs = text;
        paragraphs.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
        QCOMPARE(format.encode(paragraphs), bytes);
    }

    void textOutsideWindows1252IsWrittenAsUtf8()
    {
        TextFileFormat format;
        format.encoding = TextFileFormat::Encoding::Windows1252;
        TextFileFormat used;
        const QByteArray bytes = format.encode(QStringLiteral("\u20AC and \u03A9\nnext"), &used);
        QCOMPARE(used.encoding, TextFileFormat::Encoding::Utf8);
        QCOMPARE(bytes, QByteArray("\xE2\x82\xAC and \xCE\xA9\r\nnext"));
    }

    void fileInUse()
    {
        const QString file = path(QStringLiteral("locked.txt"));
        QVERIFY(writeBytes(file, "keep out\r\n"));
        QVERIFY(!isFileInUse(file));
        QVERIFY(!isFileInUse(path(QStringLiteral("missing.txt"))));
        QVERIFY(!isFileInUse(QString()));
        {
            ChildLock lock(file, ChildLock::Record);
            QVERIFY(lock.locked());
            QVERIFY(isFileInUse(file));
        }
        QVERIFY(!isFileInUse(file));
        {
            ChildLock lock(file, ChildLock::Flock);
            QVERIFY(lock.locked());
            QVERIFY(isFileInUse(file));
        }
        // Another open file of this very process.
        const QByteArray native = QFile::encodeName(file);
        int fd = ::open(native.constData(), O_RDONLY);
        QVERIFY(fd >= 0);
        QVERIFY(::flock(fd, LOCK_SH | LOCK_NB) == 0);
        QVERIFY(isFileInUse(file));
        ::close(fd);
        fd = ::open(native.constData(), O_RDWR);
        struct flock ofd {};
        ofd.l_type = F_WRLCK;
        ofd.l_whence = SEEK_SET;
        QVERIFY(::fcntl(fd, F_OFD_SETLK, &ofd) == 0);
        QVERIFY(isFileInUse(file));
        ::close(fd);
        QVERIFY(!isFileInUse(file));
    }

    void officeLockFiles()
    {
        const QString file = path(QStringLiteral("report.txt"));
        QVERIFY(writeBytes(file, "the report\r\n"));
        const QString lockFile = officeLockFilePath(file);
        QCOMPARE(lockFile, path(QStringLiteral(".~lock.report.txt#")));
        const QByteArray here = QSysInfo::machineHostName().toUtf8();

        // Left behind by a program that ended on this machine: passed over, and left alone.
        QVERIFY(writeBytes(lockFile, ",someone," + here + ",22.11.2026 09:15,file:///home/someone/.config;"));
        QVERIFY(!isFileInUse(file));
        QVERIFY(writeBytes(lockFile, "garbage"));
        QVERIFY(!isFileInUse(file));
        Control c;
        bool opened = false;
        c.docs().LoadFile(file, 1, nullptr, &opened);
        QVERIFY(opened);
        QCOMPARE(c.surface().text(), QStringLiteral("the report\n"));
        QVERIFY(c.boxes().isEmpty());
        QVERIFY(QFileInfo::exists(lockFile));

        // Written on another machine: its programs cannot be seen from here, so it counts.
        QVERIFY(writeBytes(lockFile, ",someone,elsewhere.invalid,22.11.2026 09:15,file:///home/someone;"));
        QVERIFY(isFileInUse(file));

        // On this machine, while a program keeps the document open (without any lock).
        QVERIFY(writeBytes(lockFile, ",someone," + here + ",22.11.2026 09:15,file:///home/someone;"));
        QProcess holder;
        holder.start(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("exec 3<\"$0\"; echo open; exec sleep 60"), file});
        QVERIFY(holder.waitForReadyRead(10000));
        QVERIFY(isFileInUse(file));
        Control d;
        d.docs().LoadFile(file, 1, nullptr, &opened);
        QVERIFY(!opened);
        QCOMPARE(d.boxes().size(), 1);
        QCOMPARE(d.boxes().first().title, QStringLiteral("File is Already Open"));
        holder.kill();
        QVERIFY(holder.waitForFinished(10000));
        QVERIFY(!isFileInUse(file));

        // Or keeps the lock file itself locked.
        {
            ChildLock lock(lockFile, ChildLock::Flock);
            QVERIFY(lock.locked());
            QVERIFY(isFileInUse(file));
        }
        QVERIFY(!isFileInUse(file));
        QFile::remove(lockFile);
    }

    void lockedFileIsNotLoaded()
    {
        Control c;
        const QString file = path(QStringLiteral("busy.txt"));
        QVERIFY(writeBytes(file, "new content"));
        c.surface().setText(QStringLiteral("what was there"));
        c.surface().setSelStart(4);
        ChildLock lock(file, ChildLock::Record);
        QVERIFY(lock.locked());
        bool opened = true;
        c.docs().LoadFile(file, 1, nullptr, &opened);
        QVERIFY(!opened);
        QCOMPARE(c.surface().text(), QStringLiteral("what was there"));
        QCOMPARE(c.surface().selStart(), 4);
        QVERIFY(c.events.names.isEmpty());
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("File is Already Open"));
        QCOMPARE(c.boxes().first().text, QStringLiteral("File: busy.txt is being used by another application.")
                                             + kCrLf + QStringLiteral("Cannot open file already in use."));
        QCOMPARE(c.boxes().first().icon, int(MessageIcon::Information));
        QCOMPARE(c.boxes().first().buttons, int(MessageButtons::OK));
    }

    void failedLoadsLeaveTheDocument_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("error");
        QTest::newRow("missing text file") << QStringLiteral("nothing.txt") << 1 << FileError::FileNotFound;
        QTest::newRow("missing folder") << QStringLiteral("nofolder/a.rtf") << 0 << FileError::PathNotFound;
        QTest::newRow("not rtf") << QStringLiteral("plain.rtf") << 0 << FileError::InvalidFormat;
        QTest::newRow("folder") << QString() << 2 << FileError::PathFileAccess;
        QTest::newRow("unknown type") << QStringLiteral("plain.rtf") << 7 << FileError::InvalidCall;
    }

    void failedLoadsLeaveTheDocument()
    {
        QFETCH(QString, name);
        QFETCH(int, type);
        QFETCH(int, error);
        QVERIFY(writeBytes(path(QStringLiteral("plain.rtf")), "just words"));
        Control c;
        c.surface().setText(QStringLiteral("kept"));
        bool opened = true;
        bool links = true;
        c.docs().LoadFile(name.isEmpty() ? m_dir.path() : path(name), type, &links, &opened);
        QVERIFY(!opened);
        QCOMPARE(c.surface().text(), QStringLiteral("kept"));
        QCOMPARE(c.docs().lastError(), error);
        QVERIFY(c.boxes().isEmpty());
        // Events come in pairs even when the read fails; an unknown type raises none.
        const QStringList paired{QStringLiteral("Begin"), QStringLiteral("Finish"), QStringLiteral("Ready")};
        QCOMPARE(c.events.names, type == 7 ? QStringList() : paired);
        QCOMPARE(c.services.busyDepth, 0);
    }

    void textFileRoundTrip_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("utf8 crlf") << QByteArray("First line \xE2\x80\x94 dash\r\n\r\n\tTabbed caf\xC3\xA9\r\nlast\r\n");
        QTest::newRow("utf8 bom lf") << QByteArray("\xEF\xBB\xBFone\ntwo\n");
        QTest::newRow("windows-1252 cr") << QByteArray("don\x92t\rstop \xE9");
        QTest::newRow("utf16le") << QByteArray("\xFF\xFEo\0k\0\r\0\n\0", 10);
        QTest::newRow("utf16be lf") << QByteArray("\xFE\xFF\0o\0k\0\n\0\xE9", 10);
        QTest::newRow("no-break space and line separator")
            << QByteArray("100\xC2\xA0km\r\nup\xE2\x80\xA8" "down\r\n");
    }

    void textFileRoundTrip()
    {
        QFETCH(QByteArray, bytes);
        const QString in = path(QStringLiteral("in.txt"));
        const QString out = path(QStringLiteral("out.txt"));
        QVERIFY(writeBytes(in, bytes));
        QFile::remove(out);
        Control c;
        c.surface().setText(QStringLiteral("old"));
        c.surface().setSelStart(2);
        bool opened = false;
        c.docs().LoadFile(in, 1, nullptr, &opened);
        QVERIFY(opened);
        QCOMPARE(c.events.names, (QStringList{QStringLiteral("Begin"), QStringLiteral("Finish"), QStringLiteral("Ready")}));
        QCOMPARE(c.surface().selStart(), 0);
        QVERIFY(!c.surface().isModified());
        QCOMPARE(c.services.busyDepth, 0);
        QVERIFY(c.services.maxBusyDepth >= 1);
        QVERIFY(c.docs().SaveFile(out, 1));
        QVERIFY(c.boxes().isEmpty());
        QCOMPARE(fileBytes(out), bytes);
    }

    void textLinksOnlyWhenAsked()
    {
        const QString file = path(QStringLiteral("links.txt"));
        QVERIFY(writeBytes(file, "see www.kvrtb.org now\r\n"));
        for (bool asked : {false, true}) {
            Control c;
            bool links = asked;
            bool opened = false;
            c.docs().LoadFile(file, 1, &links, &opened);
            QVERIFY(opened);
            QCOMPARE(c.surface().rangeCharFormat(4, 13).hasLinkMarker(), asked);
        }
    }

    void rtfRoundTripThroughFiles()
    {
        Control a;
        QVERIFY(surfaceReadsRtf());
        a.surface().setText(QStringLiteral("Heading\nbold and red text\ncentred line\n<not a tag>"));
        CharFormat bold;
        bold.bold = true;
        a.surface().setRangeCharFormat(8, 4, bold);
        CharFormat red;
        red.color = 0x0000FF;
        red.fontSize = 14;
        a.surface().setRangeCharFormat(17, 3, red);
        a.surface().setSelection(27, 5);
        ParaFormat centre;
        centre.alignment = ParaAlignment::Center;
        a.surface().setSelectionParaFormat(centre);
        const QString file = path(QStringLiteral("doc.rtf"));
        QVERIFY(a.docs().SaveFile(file, 0));
        QVERIFY(!a.surface().isModified());
        QVERIFY(fileBytes(file).startsWith("{\\rtf"));

        Control b;
        b.core.properties().RemoveUnUsableData = false;
        bool opened = false;
        b.docs().LoadFile(file, 0, nullptr, &opened);
        QVERIFY(opened);
        QCOMPARE(b.surface().text(), a.surface().text());
        QCOMPARE(b.surface().rtf(), a.surface().rtf());
        QCOMPARE(b.surface().rangeCharFormat(8, 4).bold, std::optional<bool>(true));

        // With the clean-up on, the tag is overwritten with filler and nothing else changes.
        Control d;
        d.docs().LoadFile(file, 0, nullptr, &opened);
        QVERIFY(opened);
        const QString expected = a.surface().text().replace(QStringLiteral("<not a tag>"), ContentCleanup::filler(11));
        QCOMPARE(d.surface().text(), expected);
        QCOMPARE(d.surface().rangeCharFormat(17, 3).color, std::optional<Colour>(0x0000FF));
    }

    void ownRtfLoadsBackToTheSameText()
    {
        // A long document with tables, lists and a "<" and ">" far apart: loaded with the
        // clean-up on, saved as RTF and loaded again, it keeps its text, and the clean-up finds
        // nothing more to change the second time.
        const QString corpus = QStringLiteral(KVRTB_CORPORA_DIR "/rtf/rtfpipe__rtf2xml_old3_from_web.rtf");
        QVERIFY2(QFileInfo::exists(corpus), qPrintable(corpus));
        Control first;
        bool opened = false;
        first.docs().LoadFile(corpus, 0, nullptr, &opened);
        QVERIFY(opened);
        const QString text = first.surface().text();
        QVERIFY(text.contains(QLatin1String("*P<0.05\n")));
        QVERIFY(text.contains(QLatin1String("(>140 cm)")));
        const QString saved = path(QStringLiteral("own.rtf"));
        QVERIFY(first.docs().SaveFile(saved, 0));

        Control second;
        second.docs().LoadFile(saved, 0, nullptr, &opened);
        QVERIFY(opened);
        const QString again = second.surface().text();
        QCOMPARE(again.count(QLatin1Char('\n')), text.count(QLatin1Char('\n')));
        QCOMPARE(again, text);
    }

    void savingFormattedTextAsText()
    {
        Control c;
        QVERIFY(surfaceReadsRtf());
        const QString file = path(QStringLiteral("asked.txt"));
        // Plain text: no question.
        c.surface().setText(QStringLiteral("nothing special"));
        QVERIFY(c.docs().SaveFile(file, 1));
        QVERIFY(c.boxes().isEmpty());
        QCOMPARE(fileBytes(file), QByteArray("nothing special"));

        CharFormat bold;
        bold.bold = true;
        c.surface().setRangeCharFormat(0, 7, bold);
        c.services.messageAnswers = {MessageAnswer::No};
        QVERIFY(!c.docs().SaveFile(file, 1));
        QCOMPARE(fileBytes(file), QByteArray("nothing special"));
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("Mobbit Edit Text"));
        QCOMPARE(c.boxes().first().text,
                 QStringLiteral("Saving this document as a ''Text File'' will cause formatting to be lost.\r\n"
                                "On the Menu click ''File'' then Select ''Save As'' and choose either (.mbdf) or (.rtf) "
                                "to preserve formatting.\r\nDo you wish to save as a ''Text File'' anyway?"));
        QCOMPARE(c.boxes().first().buttons, int(MessageButtons::YesNo));

        c.surface().setText(QStringLiteral("changed"));
        c.surface().setRangeCharFormat(0, 3, bold);
        c.services.messageAnswers = {MessageAnswer::Yes};
        QVERIFY(c.docs().SaveFile(file, 1));
        QCOMPARE(fileBytes(file), QByteArray("changed"));
        // RTF saves never ask.
        QVERIFY(c.docs().SaveFile(path(QStringLiteral("asked.rtf")), 0));
        QCOMPARE(c.boxes().size(), 2);
    }

    void saveFailures_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        const QString general = QStringLiteral("Cannot Save File an error has occured!");
        QTest::newRow("read-only file") << QStringLiteral("readonly.rtf") << 0 << QStringLiteral("File is Read-only")
                                        << QStringLiteral("Cannot Rewrite or Save: File is Read-only");
        QTest::newRow("missing folder") << QStringLiteral("no/such/folder.rtf") << 0
                                        << QStringLiteral("File Access Error 76") << general;
        QTest::newRow("folder in the way") << QStringLiteral("sub") << 0 << QStringLiteral("File Access Error 75")
                                           << general;
        QTest::newRow("unknown type") << QStringLiteral("new.rtf") << 9 << QStringLiteral("File Access Error 5")
                                      << general;
    }

    void saveFailures()
    {
        QFETCH(QString, target);
        QFETCH(int, type);
        QFETCH(QString, title);
        QFETCH(QString, text);
        QFile::remove(path(QStringLiteral("new.rtf")));
        const QString readOnly = path(QStringLiteral("readonly.rtf"));
        QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(writeBytes(readOnly, "{\\rtf1 original}"));
        QVERIFY(::chmod(QFile::encodeName(readOnly).constData(), 0444) == 0);
        QDir(m_dir.path()).mkpath(QStringLiteral("sub"));

        Control c;
        c.surface().setText(QStringLiteral("new words"));
        QVERIFY(!c.docs().SaveFile(path(target), type));
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, title);
        QCOMPARE(c.boxes().first().text, text);
        QCOMPARE(c.boxes().first().icon, int(MessageIcon::Information));
        QCOMPARE(fileBytes(readOnly), QByteArray("{\\rtf1 original}"));
        QVERIFY(SafeFileWriter::isReadOnlyFile(readOnly));
        QVERIFY(!QFile::exists(path(QStringLiteral("new.rtf"))));
        QVERIFY(c.surface().isModified());
    }

    void errorNumbers_data()
    {
        QTest::addColumn<int>("osError");
        QTest::addColumn<bool>("reading");
        QTest::addColumn<int>("number");
        // Forbidden access is a path/file access error; "permission denied" means another
        // program holds the file.
        QTest::newRow("access forbidden") << EACCES << false << FileError::PathFileAccess;
        QTest::newRow("not permitted") << EPERM << true << FileError::PathFileAccess;
        QTest::newRow("read-only file system") << EROFS << false << FileError::PathFileAccess;
        QTest::newRow("busy") << EAGAIN << true << FileError::PermissionDenied;
        QTest::newRow("missing file") << ENOENT << true << FileError::FileNotFound;
        QTest::newRow("missing folder") << ENOENT << false << FileError::PathNotFound;
        QTest::newRow("disk full") << ENOSPC << false << FileError::DiskFull;
    }

    void errorNumbers()
    {
        QFETCH(int, osError);
        QFETCH(bool, reading);
        QFETCH(int, number);
        QCOMPARE(FileError::fromErrno(osError, reading), number);
    }

    void longestNamesCanBeSaved()
    {
        // Names at the system's limit of 255 bytes, in ASCII and with two-byte characters.
        const QString ascii = QString(251, QLatin1Char('n')) + QStringLiteral(".txt");
        const QString accented = QString(125, QChar(0x00E9)) + QStringLiteral("n.txt");
        for (const QString &name : {ascii, accented}) {
            QCOMPARE(QFile::encodeName(name).size(), 255);
            Control c;
            c.surface().setText(QStringLiteral("kept"));
            QVERIFY2(c.docs().SaveFile(path(name), 1), qPrintable(c.docs().lastErrorReason()));
            QCOMPARE(fileBytes(path(name)), QByteArray("kept"));
        }
    }

    void failedSaveKeepsThePreviousFile()
    {
        const QString file = path(QStringLiteral("precious.txt"));
        const QByteArray original("the previous version\r\n");
        QVERIFY(writeBytes(file, original));
        QVERIFY(::chmod(QFile::encodeName(file).constData(), 0640) == 0);
        Control c;
        c.surface().setText(QString(300000, QLatin1Char('x')));
        qint64 failedAt = -1;
        SafeFileWriter::setWriteFault([&failedAt](qint64 written) {
            if (written < 128 * 1024)
                return 0;
            failedAt = written;
            return ENOSPC;
        });
        QVERIFY(!c.docs().SaveFile(file, 1));
        QVERIFY(failedAt >= 128 * 1024); // it failed half-way, not before the first byte
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("File Access Error 61"));
        QCOMPARE(c.docs().lastError(), FileError::DiskFull);
        QCOMPARE(fileBytes(file), original);
        // No half-written file is left beside it.
        QCOMPARE(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden).filter(QStringLiteral("precious")),
                 QStringList{QStringLiteral("precious.txt")});

        SafeFileWriter::setWriteFault({});
        QVERIFY(c.docs().SaveFile(file, 1));
        QCOMPARE(fileBytes(file).size(), 300000);
        struct stat st {};
        QVERIFY(::stat(QFile::encodeName(file).constData(), &st) == 0);
        QCOMPARE(int(st.st_mode & 07777), 0640);
    }

    void dialogFilters_data()
    {
        QTest::addColumn<bool>("allowRtf");
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("asText");
        QTest::newRow("two rows: 1 document") << false << 1 << false;
        QTest::newRow("two rows: 2 text") << false << 2 << true;
        QTest::newRow("three rows: 2 rtf") << true << 2 << false;
        QTest::newRow("three rows: 3 text") << true << 3 << true;
    }

    void dialogFilters()
    {
        QFETCH(bool, allowRtf);
        QFETCH(int, index);
        QFETCH(bool, asText);
        Control c;
        c.core.properties().AllowRTFSave = allowRtf;
        c.surface().setText(QStringLiteral("plain words"));
        const QString file = path(QStringLiteral("dialog.out"));
        QFile::remove(file);
        c.services.fileDialogAnswers = {FileDialogResult{true, file, index}};
        QString title = QStringLiteral("Save it");
        short shown = 0;
        short chosen = 0;
        short error = -1;
        bool saved = false;
        const QString name = c.docs().CommonDialogFileSave(nullptr, nullptr, nullptr, nullptr, &shown, &chosen, &error,
                                                           &title, &saved);
        QCOMPARE(name, file);
        QCOMPARE(int(chosen), index);
        QVERIFY(saved);
        QCOMPARE(int(error), 0);
        const FileDialogRequest request = c.services.fileDialogRequests.first();
        QCOMPARE(request.filter, allowRtf ? QStringLiteral("Mobbit Document File (*.mbdf)|*.mbdf|RichText Format (*.rtf)|"
                                                           "*.rtf|Text Files (*.txt)|*.txt")
                                          : QStringLiteral("Mobbit Document File (*.mbdf)|*.mbdf|Text Files (*.txt)|*.txt"));
        QCOMPARE(request.filterIndex, 1);
        QCOMPARE(request.title, title);
        QVERIFY(!request.promptOverwrite);
        QCOMPARE(fileBytes(file).startsWith("{\\rtf"), !asText);
        if (asText)
            QCOMPARE(fileBytes(file), QByteArray("plain words"));
    }

    void openDialog()
    {
        Control c;
        c.surface().setText(QStringLiteral("before"));
        // Cancelled: nothing loaded, the cancel reported.
        short error = 0;
        short index = 3;
        QCOMPARE(c.docs().CommonDialogFileOpen(nullptr, nullptr, nullptr, &index, nullptr, &error), QString());
        QCOMPARE(int(error), FileError::DialogCancelled);
        QCOMPARE(c.services.fileDialogRequests.first().filterIndex, 3);
        QCOMPARE(c.services.fileDialogRequests.first().filter, Documents::threeRowFilter());
        QVERIFY(c.services.fileDialogRequests.first().fileMustExist);

        // A text file by index 3, links as asked.
        const QString text = path(QStringLiteral("open.txt"));
        QVERIFY(writeBytes(text, "mail me@kvrtb.org"));
        c.services.fileDialogAnswers = {FileDialogResult{true, text, 3}};
        QString dir = m_dir.path();
        QString custom = QStringLiteral("Anything (*.*)|*.*");
        bool links = true;
        bool opened = false;
        short chosen = 0;
        QCOMPARE(c.docs().CommonDialogFileOpen(&dir, &custom, &links, nullptr, &chosen, &error, &opened), text);
        QVERIFY(opened);
        QCOMPARE(int(chosen), 3);
        QCOMPARE(int(error), 0);
        QCOMPARE(c.surface().text(), QStringLiteral("mail me@kvrtb.org"));
        QVERIFY(c.surface().rangeCharFormat(5, 12).hasLinkMarker());
        QCOMPARE(c.services.fileDialogRequests.last().filter, custom);
        QCOMPARE(c.services.fileDialogRequests.last().directory, dir);
        QCOMPARE(c.services.fileDialogRequests.last().filterIndex, 1);
    }

    void encryptedSignature_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("encrypted");
        QTest::newRow("signature only") << QByteArray("kveS") << true;
        QTest::newRow("signature and data") << QByteArray("kveS\x01\x02\x03") << true;
        QTest::newRow("three bytes") << QByteArray("kve") << false;
        QTest::newRow("empty file") << QByteArray() << false;
        QTest::newRow("other case") << QByteArray("KVES....") << false;
        QTest::newRow("rtf") << QByteArray("{\\rtf1 kveS}") << false;
        QTest::newRow("nul padded") << QByteArray("kve\0", 4) << false;
    }

    void encryptedSignature()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, encrypted);
        const QString file = path(QStringLiteral("sig.mbdf"));
        QVERIFY(writeBytes(file, content));
        QCOMPARE(Documents::IsFileEncrypted(file), encrypted);
        QVERIFY(!Documents::IsFileEncrypted(QString()));
        QVERIFY(!Documents::IsFileEncrypted(path(QStringLiteral("absent.mbdf"))));
        QVERIFY(!Documents::IsFileEncrypted(m_dir.path()));
    }

    void encryptedHandOff()
    {
        Control c;
        c.surface().setText(QStringLiteral("the previous document"));
        const QString enciphered = path(QStringLiteral("secret.mbdf"));
        QVERIFY(writeBytes(enciphered, "kveS\x10\x20 enciphered"));
        c.services.fileDialogAnswers = {FileDialogResult{true, enciphered, 2}};
        short chosen = 0;
        bool opened = true;
        QCOMPARE(c.docs().CommonDialogFileOpen(nullptr, nullptr, nullptr, nullptr, &chosen, nullptr, &opened), enciphered);
        QCOMPARE(int(chosen), 2);
        QVERIFY(!opened);
        QCOMPARE(c.surface().text(), QStringLiteral("the previous document"));
        QVERIFY(c.events.names.isEmpty());

        // The host deciphered it into a text file and hands it back, with and without links.
        const QString plain = path(QStringLiteral("secret.txt"));
        QVERIFY(writeBytes(plain, "visit www.kvrtb.org"));
        for (bool links : {true, false}) {
            // What the control's own undo had pending ends with the new document.
            c.core.specialUndo().SaveSpecialUndoData();
            QVERIFY(c.core.specialUndo().linkUndoPending());
            c.events.names.clear();
            short error = -1;
            c.docs().OpenDecryptedFile(plain, 3, &links, &opened, &error);
            QVERIFY(opened);
            QCOMPARE(int(error), 0);
            QVERIFY(!c.core.specialUndo().linkUndoPending());
            QCOMPARE(c.surface().text(), QStringLiteral("visit www.kvrtb.org"));
            QCOMPARE(c.surface().rangeCharFormat(6, 13).hasLinkMarker(), links);
            QVERIFY(!c.surface().isModified());
            QCOMPARE(c.events.names.mid(c.events.names.size() - 2),
                     (QStringList{QStringLiteral("Finish"), QStringLiteral("Ready")}));
        }
        // An index with no type loads nothing but still finishes.
        c.events.names.clear();
        c.surface().setModified(true);
        c.core.specialUndo().SaveSpecialUndoData();
        c.docs().OpenDecryptedFile(plain, 9, nullptr, &opened);
        QVERIFY(!opened);
        QVERIFY(!c.surface().isModified());
        QVERIFY(!c.core.specialUndo().linkUndoPending());
        QCOMPARE(c.events.names, (QStringList{QStringLiteral("Finish"), QStringLiteral("Ready")}));
    }

    void picturePatternMatchesTheOriginal()
    {
        // The pattern as the control's documents describe it, with its repeated groups.
        const QRegularExpression original(QStringLiteral(R"((\S)*(\{\\pict)(.|\n)*?(\})(\S)*)"),
                                          QRegularExpression::CaseInsensitiveOption);
        const QStringList pieces{QStringLiteral("{\\pict"), QStringLiteral("}"), QStringLiteral(" "),
                                 QStringLiteral("\n"), QStringLiteral("ab"), QStringLiteral("\\par"),
                                 QStringLiteral("{"), QStringLiteral("\r"), QStringLiteral("{\\PICT\\wmetafile8")};
        QRandomGenerator random(4711);
        for (int round = 0; round < 3000; ++round) {
            QString text;
            const int count = int(random.bounded(1, 14));
            for (int i = 0; i < count; ++i)
                text += pieces[int(random.bounded(pieces.size()))];
            const auto expected = regexMatches(original, text);
            QCOMPARE(regexMatches(ContentCleanup::picturePattern(), text), expected);
            QCOMPARE(referencePictureMatches(text), expected);
        }
        // Pictures of some hundred kilobytes, where the original pattern gives up.
        for (int size : {100000, 400000}) {
            QString hex;
            for (int i = 0; i < size; ++i)
                hex += QLatin1Char("0123456789abcdef"[random.bounded(16)]) + QString(i % 128 == 127 ? "\n" : "");
            const QString rtf = QStringLiteral("{\\rtf1\\ansi text before\\par\n{\\pict\\pngblip\\picw10\\pich10\n") + hex
                                + QStringLiteral("}\\par\nafter {\\pict\\jpegblip ") + hex.left(5000)
                                + QStringLiteral("}trailing words}");
            const auto spans = regexMatches(ContentCleanup::picturePattern(), rtf);
            QCOMPARE(spans.size(), 2);
            QCOMPARE(spans, referencePictureMatches(rtf));
            int removed = 0;
            QCOMPARE(ContentCleanup::removePictures(rtf, &removed),
                     QStringLiteral("{\\rtf1\\ansi text before\\par\n\nafter  words}"));
            QCOMPARE(removed, 2);
        }
    }

    void cleanupPasses()
    {
        QCOMPARE(ContentCleanup::tagSpans(QStringLiteral("a <br> b <i> <<xy>> <p class=x>")),
                 (QList<ContentCleanup::Span>{{2, 4}, {14, 4}, {20, 11}}));
        // A "<" and a ">" in different paragraphs hold text between them, not a tag.
        QCOMPARE(ContentCleanup::tagSpans(QStringLiteral("P<0.05\nsharks (>140 cm) <b\nr> <p\u2028q>")),
                 (QList<ContentCleanup::Span>{{30, 5}}));
        QCOMPARE(ContentCleanup::filler(3), QStringLiteral("\u00D8\u00D8\u00D8"));
        QCOMPARE(ContentCleanup::filler(20000).size(), 20000);
        QVERIFY(ContentCleanup::filler(0).isEmpty());

        Control c;
        c.surface().setText(QStringLiteral("x<b>y <font a> z\u0001\u0002 end\uFFFC!"));
        c.surface().setSelStart(c.surface().textLength()); // after everything
        c.docs().cleanup().run();
        QCOMPARE(c.surface().text(), QStringLiteral("x<b>y ") + ContentCleanup::filler(8) + QStringLiteral(" z end\uFFFC!"));
        QCOMPARE(c.surface().selStart(), c.surface().textLength());
        QCOMPARE(c.surface().freezeCount(), 0);

        c.core.properties().AllowImages = false;
        c.surface().setSelStart(1);
        c.docs().cleanup().removeUnusableCharacters();
        QVERIFY(!c.surface().text().contains(QChar(0xFFFC)));
        QCOMPARE(c.surface().selStart(), 1);
    }

    void picturesRemovedWhenNotAllowed()
    {
        Control c;
        QVERIFY(surfaceReadsRtf());
        c.core.properties().AllowImages = false;
        const QString file = path(QStringLiteral("picture.rtf"));
        QVERIFY(writeBytes(file, "{\\rtf1\\ansi Before\\par\n{\\pict\\pngblip\\picw1\\pich1 "
                                 "89504e470d0a1a0a0000000d4948445200000001000000010806000000"
                                 "1f15c4890000000d4944415478da63f8ffff3f0005fe02fea7d6a4fc0000000049454e44ae426082}"
                                 "\n\\par After\\par}"));
        bool opened = false;
        c.docs().LoadFile(file, 0, nullptr, &opened);
        QVERIFY(opened);
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("Invalid Image"));
        QCOMPARE(c.boxes().first().text, QStringLiteral("Unable to load image. Try again without image for best results."));
        QVERIFY(!c.surface().rtf().contains(QLatin1String("\\pict")));
        QVERIFY(!c.surface().text().contains(QChar(0xFFFC)));
        QVERIFY(c.surface().text().contains(QLatin1String("After")));

        // Pictures allowed: kept, no box.
        Control d;
        d.docs().LoadFile(file, 0, nullptr, &opened);
        QVERIFY(opened);
        QVERIFY(d.boxes().isEmpty());
        QVERIFY(d.surface().rtf().contains(QLatin1String("{\\pict")));
    }

    void largeDocumentThreshold()
    {
        Control c;
        QVERIFY(surfaceReadsRtf());
        // Grow a loaded text file to an RTF of exactly the limit: plain letters add one byte each.
        QString text = QStringLiteral("see www.kvrtb.org\nw");
        const QString file = path(QStringLiteral("large.txt"));
        QVERIFY(writeBytes(file, text.toUtf8()));
        bool opened = false;
        c.docs().LoadFile(file, 1, nullptr, &opened);
        QVERIFY(opened);
        text += QString(Hyperlinks::kLargeDocumentRtfLength - c.surface().rtf().size(), QLatin1Char('w'));
        QVERIFY(writeBytes(file, text.toUtf8()));
        c.docs().LoadFile(file, 1, nullptr, &opened);
        QVERIFY(opened);
        // Plain letters add one byte each to the RTF, so the document is exactly at the limit.
        QCOMPARE(c.surface().rtf().size(), Hyperlinks::kLargeDocumentRtfLength);
        c.surface().setSelStart(3);
        c.core.hyperlinks().HyperLinkCurrentLine();
        QVERIFY(c.core.properties().DetectHyperLinks);
        QVERIFY(c.boxes().isEmpty());

        QVERIFY(writeBytes(file, text.toUtf8() + "w"));
        c.docs().LoadFile(file, 1, nullptr, &opened);
        QCOMPARE(c.surface().rtf().size(), Hyperlinks::kLargeDocumentRtfLength + 1);
        c.surface().setSelStart(3);
        c.core.hyperlinks().HyperLinkCurrentLine();
        QVERIFY(!c.core.properties().DetectHyperLinks);
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("Automatic Hyperlinking Disabled"));
    }
    void pipesAreNotDocuments()
    {
        // A named pipe nobody writes to: a plain open would wait for ever.
        const QString fifo = path(QStringLiteral("pipe.rtf"));
        QFile::remove(fifo);
        QVERIFY(::mkfifo(QFile::encodeName(fifo).constData(), 0644) == 0);
        QVERIFY(!Documents::IsFileEncrypted(fifo));
        Control c;
        c.surface().setText(QStringLiteral("kept"));
        for (int type : {0, 1, 2}) {
            bool opened = true;
            c.docs().LoadFile(fifo, type, nullptr, &opened);
            QVERIFY(!opened);
            QCOMPARE(c.docs().lastError(), FileError::PathFileAccess);
            QVERIFY(!c.docs().LoadFileRTBOriginal(fifo, type).toBool());
            QCOMPARE(c.surface().text(), QStringLiteral("kept"));
        }
        // Saving does not put a file in the pipe's place.
        QVERIFY(!c.docs().SaveFile(fifo, 0));
        QCOMPARE(c.boxes().size(), 1);
        QCOMPARE(c.boxes().first().title, QStringLiteral("File Access Error 75"));
        struct stat st {};
        QVERIFY(::lstat(QFile::encodeName(fifo).constData(), &st) == 0);
        QVERIFY(S_ISFIFO(st.st_mode));
    }

    void savingThroughLinks()
    {
        Control c;
        c.surface().setText(QStringLiteral("new words"));
        // A chain of links: the links stay, the file at its end takes the text.
        const QString file = path(QStringLiteral("real.txt"));
        const QString inner = path(QStringLiteral("inner-link.txt"));
        const QString outer = path(QStringLiteral("outer-link.txt"));
        QVERIFY(writeBytes(file, "old"));
        QFile::remove(inner);
        QFile::remove(outer);
        QVERIFY(QFile::link(QStringLiteral("real.txt"), inner));
        QVERIFY(QFile::link(inner, outer));
        QVERIFY(c.docs().SaveFile(outer, 1));
        QVERIFY(QFileInfo(outer).isSymLink());
        QVERIFY(QFileInfo(inner).isSymLink());
        QCOMPARE(fileBytes(file), QByteArray("new words"));
        // A dangling link: the file it names is created.
        const QString dangling = path(QStringLiteral("dangling.txt"));
        QFile::remove(dangling);
        QFile::remove(path(QStringLiteral("made.txt")));
        QVERIFY(QFile::link(QStringLiteral("made.txt"), dangling));
        QVERIFY(c.docs().SaveFile(dangling, 1));
        QVERIFY(QFileInfo(dangling).isSymLink());
        QCOMPARE(fileBytes(path(QStringLiteral("made.txt"))), QByteArray("new words"));
        // A loop of links is a path/file access error and creates nothing.
        const QString loopA = path(QStringLiteral("loop-a.txt"));
        const QString loopB = path(QStringLiteral("loop-b.txt"));
        QFile::remove(loopA);
        QFile::remove(loopB);
        QVERIFY(QFile::link(QStringLiteral("loop-b.txt"), loopA));
        QVERIFY(QFile::link(QStringLiteral("loop-a.txt"), loopB));
        QVERIFY(!c.docs().SaveFile(loopA, 1));
        QCOMPARE(c.boxes().last().title, QStringLiteral("File Access Error 75"));
        QVERIFY(QFileInfo(loopA).isSymLink());
    }

    void commandLineConvert()
    {
#ifndef KVRTB_CLI
        QSKIP("The command-line tool is not part of this build.");
#else
        auto convert = [](const QStringList &args, QString *errors = nullptr) {
            QProcess process;
            QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
            env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
            process.setProcessEnvironment(env);
            process.start(QStringLiteral(KVRTB_CLI), QStringList{QStringLiteral("convert")} + args);
            if (!process.waitForFinished(60000))
                return -1;
            if (errors)
                *errors = QString::fromUtf8(process.readAllStandardError());
            return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
        };
        const QByteArray text("caf\xC3\xA9 one\r\nsee www.kvrtb.org\r\n\r\nend\r\n");
        QVERIFY(writeBytes(path(QStringLiteral("cli.txt")), text));
        QFile::remove(path(QStringLiteral("cli-out.txt")));
        QCOMPARE(convert({path(QStringLiteral("cli.txt")), path(QStringLiteral("cli-out.txt"))}), 0);
        QCOMPARE(fileBytes(path(QStringLiteral("cli-out.txt"))), text);

        // Formatted text to text: asked, and --no writes nothing.
        QVERIFY(writeBytes(path(QStringLiteral("cli.rtf")), "{\\rtf1\\ansi {\\b bold} words\\par}"));
        QFile::remove(path(QStringLiteral("cli-plain.txt")));
        QString errors;
        QCOMPARE(convert({QStringLiteral("--no"), path(QStringLiteral("cli.rtf")), path(QStringLiteral("cli-plain.txt"))}, &errors), 1);
        QVERIFY(errors.contains(QLatin1String("Mobbit Edit Text")));
        QVERIFY(!QFile::exists(path(QStringLiteral("cli-plain.txt"))));
        QCOMPARE(convert({path(QStringLiteral("cli.rtf")), path(QStringLiteral("cli-plain.txt"))}), 0);
        QCOMPARE(fileBytes(path(QStringLiteral("cli-plain.txt"))), QByteArray("bold words"));

        // A failing save leaves the target; an enciphered input is refused.
        const QString readOnly = path(QStringLiteral("cli-ro.txt"));
        QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::WriteOwner);
        QVERIFY(writeBytes(readOnly, "kept"));
        QVERIFY(::chmod(QFile::encodeName(readOnly).constData(), 0444) == 0);
        QCOMPARE(convert({path(QStringLiteral("cli.txt")), readOnly}, &errors), 4);
        QVERIFY(errors.contains(QLatin1String("File is Read-only")));
        QCOMPARE(fileBytes(readOnly), QByteArray("kept"));
        QVERIFY(writeBytes(path(QStringLiteral("cli.mbdf")), "kveS\x01\x02"));
        QCOMPARE(convert({path(QStringLiteral("cli.mbdf")), path(QStringLiteral("cli-x.rtf"))}, &errors), 3);
        QVERIFY(errors.contains(QLatin1String("enciphered")));
        QVERIFY(!QFile::exists(path(QStringLiteral("cli-x.rtf"))));
        // ... whatever the output type.
        QCOMPARE(convert({path(QStringLiteral("cli.mbdf")), path(QStringLiteral("cli-x.html"))}, &errors), 3);
        QVERIFY(errors.contains(QLatin1String("enciphered")));
        QVERIFY(!QFile::exists(path(QStringLiteral("cli-x.html"))));

        // Other encodings and line ends come out as they went in.
        for (const QByteArray &other : {QByteArray("\xFF\xFEo\0k\0\n\0\xE9\0", 10), QByteArray("don\x92t\rstop")}) {
            QVERIFY(writeBytes(path(QStringLiteral("cli-enc.txt")), other));
            QCOMPARE(convert({path(QStringLiteral("cli-enc.txt")), path(QStringLiteral("cli-enc-out.txt"))}), 0);
            QCOMPARE(fileBytes(path(QStringLiteral("cli-enc-out.txt"))), other);
        }
        // A save into a folder that is not there: its box on standard error, title and text.
        QCOMPARE(convert({path(QStringLiteral("cli.txt")), path(QStringLiteral("none/out.txt"))}, &errors), 4);
        QVERIFY(errors.contains(QLatin1String("File Access Error 76: Cannot Save File an error has occured!")));
#endif
    }
};

// The saving cases that switch users and mount a small disk (test_savingkeepsthefile.cpp).
int runSavingTests(int argc, char **argv);

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    int status = 0;
    {
        TestDocuments documents;
        status |= QTest::qExec(&documents, argc, argv);
    }
    status |= runSavingTests(argc, argv);
    return status;
}

#include "test_documents.moc"
