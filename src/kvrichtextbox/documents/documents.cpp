#include "documents/documents.h"

#include "core/controlcore.h"
#include "core/threadstate.h"
#include "documents/fileerror.h"
#include "documents/fileinuse.h"
#include "documents/safefilewriter.h"
#include "editing/editcommands.h"
#include "hyperlinks/hyperlinks.h"

#include <QFile>
#include <QDir>
#include <QFileInfo>

#include <cerrno>
#include <sys/stat.h>

namespace kvrtb {

namespace {

constexpr int kTypeRtf = 0;
constexpr int kTypeText = 1;
constexpr int kTypeDocument = 2;

const QString kCrLf = QStringLiteral("\r\n");
const QString kSaveFailedText = QStringLiteral("Cannot Save File an error has occured!");

/// Number of description|pattern rows of a dialog filter.
int filterRows(const QString &filter)
{
    return int((filter.count(QLatin1Char('|')) + 1) / 2);
}

/// True when \a path names a regular file (through any links).
bool isRegularFile(const QString &path)
{
    struct stat st {};
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 && S_ISREG(st.st_mode);
}

QString bareFileName(const QString &path)
{
    // The name after the last separator of either kind, as the host may pass either.
    const qsizetype slash = std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\')));
    return path.mid(slash + 1);
}

} // namespace

QString Documents::threeRowFilter()
{
    return QStringLiteral("Mobbit Document File (*.mbdf)|*.mbdf|RichText Format (*.rtf)|*.rtf|Text Files (*.txt)|*.txt");
}

QString Documents::twoRowFilter()
{
    return QStringLiteral("Mobbit Document File (*.mbdf)|*.mbdf|Text Files (*.txt)|*.txt");
}

Documents::Documents(ControlCore &core) : m_core(core), m_cleanup(core)
{
    // A paste runs the final clean-up pass while RemoveUnUsableData is on.
    m_core.editCommands().setUnusableContentRemover([this] { m_cleanup.removeUnusableCharacters(); });
}

void Documents::fail(int error, const QString &reason)
{
    m_lastError = error;
    m_lastErrorReason = reason;
}

void Documents::refreshRuler()
{
    if (m_refreshRuler)
        m_refreshRuler();
}

// --- Loading ----------------------------------------------------------------------------------

void Documents::LoadFile(const QString &bstrFilename, int vFileType, bool *TXTLinks, bool *OpenSuccess)
{
    if (OpenSuccess)
        *OpenSuccess = false;
    m_lastError = 0;
    m_lastErrorReason.clear();
    if (vFileType < kTypeRtf || vFileType > kTypeDocument) {
        fail(FileError::InvalidCall, QStringLiteral("Unknown file type %1.").arg(vFileType));
        return;
    }
    if (isFileInUse(bstrFilename)) {
        m_core.services().messageBox(QStringLiteral("File: ") + bareFileName(bstrFilename)
                                         + QStringLiteral(" is being used by another application.") + kCrLf
                                         + QStringLiteral("Cannot open file already in use."),
                                     MessageButtons::OK, MessageIcon::Information,
                                     QStringLiteral("File is Already Open"));
        fail(FileError::PermissionDenied, QStringLiteral("The file is in use by another program."));
        return;
    }

    m_core.events().begin();
    int error = FileError::None;
    {
        BusyGuard busy(m_core.services());
        m_core.surface().refresh();
        error = load(bstrFilename, vFileType, TXTLinks && *TXTLinks);
    }
    if (error == FileError::None) {
        EditorSurface &surface = m_core.surface();
        surface.setSelStart(0);
        // The document is as the file holds it (cleaned up): nothing to save yet.
        surface.setModified(false);
        refreshRuler();
        if (OpenSuccess)
            *OpenSuccess = true;
    }
    m_core.events().finish();
    m_core.events().ready();
}

int Documents::load(const QString &path, int type, bool textLinks)
{
    switch (type) {
    case kTypeRtf:
        return loadRtf(path, m_core.properties().RemoveUnUsableData);
    case kTypeText:
        return loadText(path, textLinks);
    default:
        return loadRtf(path, false);
    }
}

int Documents::readFile(const QString &path, QByteArray *bytes)
{
    QFile file(path);
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists()) {
        const bool folderExists = !path.isEmpty() && info.absoluteDir().exists();
        fail(folderExists ? FileError::FileNotFound : FileError::PathNotFound,
             QStringLiteral("\"%1\" does not exist.").arg(path));
        return m_lastError;
    }
    if (info.isDir()) {
        fail(FileError::PathFileAccess, QStringLiteral("\"%1\" is a folder.").arg(path));
        return m_lastError;
    }
    // A pipe, socket or device is no document: opening a pipe nobody writes to would wait for
    // ever, and a device may never end.
    if (!isRegularFile(path)) {
        fail(FileError::PathFileAccess, QStringLiteral("\"%1\" is not a regular file.").arg(path));
        return m_lastError;
    }
    errno = 0;
    if (!file.open(QIODevice::ReadOnly)) {
        fail(FileError::fromErrno(errno ? errno : EACCES, true), file.errorString());
        return m_lastError;
    }
    *bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        fail(FileError::DeviceIo, file.errorString());
        return m_lastError;
    }
    return FileError::None;
}

int Documents::loadRtf(const QString &path, bool cleanUp)
{
    QByteArray bytes;
    if (const int error = readFile(path, &bytes))
        return error;
    if (!bytes.trimmed().startsWith("{\\rtf")) {
        fail(FileError::InvalidFormat, QStringLiteral("\"%1\" is not an RTF file.").arg(path));
        return m_lastError;
    }
    EditorSurface &surface = m_core.surface();
    QString reason;
    // The file is read in full before the editor is touched, so a bad file leaves the document.
    if (!surface.setRtf(QString::fromLatin1(bytes), &reason)) {
        fail(FileError::InvalidFormat, reason);
        return m_lastError;
    }
    m_textFormat = TextFileFormat();
    if (cleanUp)
        m_cleanup.run();
    if (m_core.properties().DetectHyperLinks)
        linkDocument();
    return FileError::None;
}

int Documents::loadText(const QString &path, bool links)
{
    QByteArray bytes;
    if (const int error = readFile(path, &bytes))
        return error;
    TextFileFormat format;
    const QString text = TextFileFormat::decode(bytes, &format);

    // The converter surface turns the text into RTF in the control's font, which the editor
    // then takes whole, so the document starts in that font throughout.
    EditorSurface &converter = m_core.converter();
    EditorSurface &surface = m_core.surface();
    converter.setFont(surface.font());
    converter.setText(text);
    if (!surface.setRtf(converter.rtf())) {
        // An editor that cannot take the converter's RTF still gets the text, in its font.
        surface.setText(text);
        CharFormat font;
        font.fontName = surface.font().family();
        font.fontSize = surface.font().pointSizeF();
        surface.setDocumentCharFormat(font);
    }
    converter.setText(QString());
    m_textFormat = format;
    if (links && m_core.properties().DetectHyperLinks)
        linkDocument();
    return FileError::None;
}

void Documents::linkDocument()
{
    threadState().linkingInProgress = false;
    m_core.hyperlinks().HyperLinkDocument();
}

QVariant Documents::LoadFileRTBOriginal(const QString &bstrFilename, int vFileType)
{
    const SurfaceFileType type = vFileType == kTypeText ? SurfaceFileType::Text : SurfaceFileType::Rtf;
    if (QFileInfo::exists(bstrFilename) && !isRegularFile(bstrFilename)) {
        fail(FileError::PathFileAccess, QStringLiteral("\"%1\" is not a regular file.").arg(bstrFilename));
        return QVariant(false);
    }
    QString reason;
    const bool ok = m_core.surface().loadFile(bstrFilename, type, &reason);
    if (ok)
        fail(FileError::None);
    else
        fail(QFileInfo::exists(bstrFilename) ? FileError::InvalidFormat : FileError::FileNotFound, reason);
    return QVariant(ok);
}

// --- Saving -----------------------------------------------------------------------------------

bool Documents::confirmTextSave()
{
    if (!m_core.editCommands().ContainSpecialFormatting())
        return true;
    const QString text = QStringLiteral("Saving this document as a ''Text File'' will cause formatting to be lost.")
                         + kCrLf
                         + QStringLiteral("On the Menu click ''File'' then Select ''Save As'' and choose either "
                                          "(.mbdf) or (.rtf) to preserve formatting.")
                         + kCrLf + QStringLiteral("Do you wish to save as a ''Text File'' anyway?");
    return m_core.services().messageBox(text, MessageButtons::YesNo, MessageIcon::Question,
                                        QStringLiteral("Mobbit Edit Text"))
           == MessageAnswer::Yes;
}

bool Documents::write(const QString &path, bool asText)
{
    EditorSurface &surface = m_core.surface();
    QByteArray bytes;
    if (asText) {
        TextFileFormat used;
        bytes = m_textFormat.encode(surface.text(), &used);
        m_textFormat = used;
    } else {
        bytes = surface.rtf().toLatin1();
    }
    const SafeFileWriter::Result result = SafeFileWriter::write(path, bytes);
    if (result.ok) {
        fail(FileError::None);
        surface.setModified(false);
        return true;
    }
    fail(result.error, result.reason);
    if (result.error == FileError::PathFileAccess && result.readOnly)
        m_core.services().messageBox(QStringLiteral("Cannot Rewrite or Save: File is Read-only"), MessageButtons::OK,
                                     MessageIcon::Information, QStringLiteral("File is Read-only"));
    else
        m_core.services().messageBox(kSaveFailedText, MessageButtons::OK, MessageIcon::Information,
                                     QStringLiteral("File Access Error %1").arg(result.error));
    return false;
}

bool Documents::SaveFile(const QString &bstrFilename, int vFlags)
{
    if (vFlags < kTypeRtf || vFlags > kTypeDocument) {
        // A failed save like any other: its box, and nothing written.
        fail(FileError::InvalidCall, QStringLiteral("Unknown file type %1.").arg(vFlags));
        m_core.services().messageBox(kSaveFailedText, MessageButtons::OK, MessageIcon::Information,
                                     QStringLiteral("File Access Error %1").arg(m_lastError));
        return false;
    }
    const bool asText = vFlags == kTypeText;
    if (asText && !confirmTextSave()) {
        fail(FileError::None);
        return false;
    }
    return write(bstrFilename, asText);
}

// --- Dialogs ----------------------------------------------------------------------------------

QString Documents::CommonDialogFileOpen(QString *DefaultDirectory, QString *CustomFilter, bool *TextWLinks,
                                        short *ShowFilterIndex, short *FindexRet, short *MyErr, bool *OpenSuccess,
                                        QString *Title)
{
    if (MyErr)
        *MyErr = 0;
    if (OpenSuccess)
        *OpenSuccess = false;
    FileDialogRequest request;
    request.filter = CustomFilter && !CustomFilter->isEmpty() ? *CustomFilter : threeRowFilter();
    request.filterIndex = ShowFilterIndex && *ShowFilterIndex != 0 ? *ShowFilterIndex : 1;
    if (DefaultDirectory && !DefaultDirectory->isEmpty())
        request.directory = *DefaultDirectory;
    if (Title)
        request.title = *Title;
    request.promptOverwrite = false;
    request.fileMustExist = true;

    const FileDialogResult chosen = m_core.services().openFileDialog(request);
    if (!chosen.accepted) {
        if (MyErr)
            *MyErr = FileError::DialogCancelled;
        return QString();
    }
    const short index = short(chosen.filterIndex);
    if (FindexRet)
        *FindexRet = index;
    // An enciphered file goes back to the host, which deciphers it and calls OpenDecryptedFile.
    if (IsFileEncrypted(chosen.fileName))
        return chosen.fileName;

    bool opened = false;
    switch (index) {
    case 1:
        LoadFile(chosen.fileName, kTypeDocument, nullptr, &opened);
        break;
    case 2:
        LoadFile(chosen.fileName, kTypeRtf, nullptr, &opened);
        break;
    case 3: {
        bool links = TextWLinks && *TextWLinks;
        LoadFile(chosen.fileName, kTypeText, &links, &opened);
        break;
    }
    default:
        fail(FileError::InvalidCall, QStringLiteral("No file type for filter index %1.").arg(index));
        break;
    }
    if (MyErr)
        *MyErr = short(m_lastError);
    if (OpenSuccess)
        *OpenSuccess = opened;
    refreshRuler();
    return chosen.fileName;
}

QString Documents::CommonDialogFileSave(QString *DefaultDirectory, QString *FileNameSTR, bool *PromptOverWrite,
                                        QString *CustomFilter, short *ShowFilterIndex, short *FindexRet,
                                        short *MyErr, QString *Title, bool *SaveSuccess)
{
    if (MyErr)
        *MyErr = 0;
    if (SaveSuccess)
        *SaveSuccess = false;
    FileDialogRequest request;
    if (CustomFilter && !CustomFilter->isEmpty())
        request.filter = *CustomFilter;
    else
        request.filter = m_core.properties().AllowRTFSave ? threeRowFilter() : twoRowFilter();
    request.filterIndex = ShowFilterIndex && *ShowFilterIndex != 0 ? *ShowFilterIndex : 1;
    if (DefaultDirectory && !DefaultDirectory->isEmpty())
        request.directory = *DefaultDirectory;
    if (FileNameSTR)
        request.fileName = *FileNameSTR;
    if (Title)
        request.title = *Title;
    request.promptOverwrite = PromptOverWrite && *PromptOverWrite;

    const FileDialogResult chosen = m_core.services().saveFileDialog(request);
    if (!chosen.accepted) {
        if (MyErr)
            *MyErr = FileError::DialogCancelled;
        return QString();
    }
    const short index = short(chosen.filterIndex);
    if (FindexRet)
        *FindexRet = index;
    // With two rows the second is text; with three, the third (the second being RTF).
    const int textIndex = filterRows(request.filter) == 2 ? 2 : 3;
    bool written = false;
    if (index == textIndex) {
        if (confirmTextSave())
            written = write(chosen.fileName, true);
        else
            fail(FileError::None);
    } else {
        written = write(chosen.fileName, false);
    }
    if (MyErr)
        *MyErr = short(m_lastError);
    if (SaveSuccess)
        *SaveSuccess = written;
    return chosen.fileName;
}

// --- Enciphered documents ---------------------------------------------------------------------

bool Documents::IsFileEncrypted(const QString &FileNameSTR)
{
    if (FileNameSTR.isEmpty())
        return false;
    QFile file(FileNameSTR);
    // Folders, pipes and devices hold no signature (and a pipe would keep the read waiting).
    if (!isRegularFile(FileNameSTR) || !file.open(QIODevice::ReadOnly))
        return false;
    QByteArray head = file.read(4);
    // A shorter file reads as zeros past its end.
    head.append(4 - head.size(), '\0');
    return head == QByteArrayLiteral("kveS");
}

void Documents::OpenDecryptedFile(const QString &MyFileName, short MyIndex, bool *TextWLinks, bool *OpenSuccess,
                                  short *MyErr)
{
    if (OpenSuccess)
        *OpenSuccess = false;
    if (MyErr)
        *MyErr = 0;
    EditorSurface &surface = m_core.surface();
    bool opened = false;
    switch (MyIndex) {
    case 1:
        surface.setText(QString());
        LoadFile(MyFileName, kTypeDocument, nullptr, &opened);
        break;
    case 2:
        surface.setText(QString());
        LoadFile(MyFileName, kTypeRtf, nullptr, &opened);
        break;
    case 3: {
        surface.setText(QString());
        bool links = TextWLinks && *TextWLinks;
        LoadFile(MyFileName, kTypeText, &links, &opened);
        break;
    }
    default:
        break;
    }
    if (MyErr && MyIndex >= 1 && MyIndex <= 3)
        *MyErr = short(m_lastError);
    if (OpenSuccess)
        *OpenSuccess = opened;
    surface.setModified(false);
    refreshRuler();
    if (m_clearLinkUndoPending)
        m_clearLinkUndoPending();
    m_core.events().finish();
    m_core.events().ready();
}

} // namespace kvrtb
