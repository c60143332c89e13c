#pragma once

#include "documents/contentcleanup.h"
#include "documents/textfileformat.h"

#include <QString>
#include <QVariant>

#include <functional>

namespace kvrtb {

class ControlCore;

/// \brief Reads documents into the control's editor and writes them out, offers the file
/// dialogs, and recognises enciphered documents.
///
/// File types are the `QFileType` values: 0 RTF, 1 plain text, 2 the control's own document
/// type (RTF on disk, possibly enciphered by the host). Member names are those of the
/// control's interface; `KvRTB` forwards to them. Nothing here throws or shows a message the
/// interface does not name; failures come back as values (`OpenSuccess`, `MyErr`, a false
/// result) and `lastError` keeps the number of the last failure.
///
/// Text files keep their form: the encoding, byte-order mark and line ends of the last text
/// file loaded are used when the document is saved as text again, so an unchanged file is
/// written back byte for byte. Saving goes through `SafeFileWriter`: a failed save leaves the
/// previous file as it was.
class Documents {
public:
    /// The filters of the file dialogs, in the control's "description|pattern|..." form.
    static QString threeRowFilter();
    static QString twoRowFilter();

    explicit Documents(ControlCore &core);

    /// Loads a file into the editor (see the class comment for the types). A file another
    /// program holds open is not loaded and the "File is Already Open" box says so. Otherwise
    /// raises `Begin`, shows the busy pointer, reads, cleans up RTF while `RemoveUnUsableData`
    /// is on, links addresses while `DetectHyperLinks` is on (text files only when \a TXTLinks
    /// is true), puts the caret at 0, clears the modified flag and raises `Finish` and
    /// `Ready`. \a OpenSuccess is true when the load ran to its end. Unlike clearing the
    /// editor first, the file is read whole before the editor is touched, so a failed read
    /// leaves the document as it was. A folder,
    /// pipe or device is not read (`lastError` 75). A type outside 0 to 2 does nothing
    /// (`lastError` 5).
    void LoadFile(const QString &bstrFilename, int vFileType = 0, bool *TXTLinks = nullptr,
                  bool *OpenSuccess = nullptr);
    /// Loads through the editor's own load operation: no checks, clean-up, events or links.
    /// The result is true when the editor took the file; a pipe or device is not read.
    QVariant LoadFileRTBOriginal(const QString &bstrFilename, int vFileType = 0);
    /// Writes the document as RTF (types 0 and 2) or text (type 1). Saving formatted text as
    /// text asks first, and No saves nothing. A failure shows its box ("File is Read-only" or
    /// "File Access Error N") and gives false; so does a type outside 0 to 2 (error 5).
    bool SaveFile(const QString &bstrFilename, int vFlags = 0);

    /// Shows the open dialog and loads the chosen file by filter index (1 control document,
    /// 2 RTF, 3 text with \a TextWLinks). An enciphered file is not loaded: \a FindexRet gets
    /// the index and the name is returned for the host to decipher. A cancel gives an empty
    /// name and `MyErr` 32755.
    QString CommonDialogFileOpen(QString *DefaultDirectory = nullptr, QString *CustomFilter = nullptr,
                                 bool *TextWLinks = nullptr, short *ShowFilterIndex = nullptr,
                                 short *FindexRet = nullptr, short *MyErr = nullptr, bool *OpenSuccess = nullptr,
                                 QString *Title = nullptr);
    /// Shows the save dialog (three types while `AllowRTFSave` is on, else the control
    /// document and text) and saves by the chosen index; the text index asks as `SaveFile`
    /// does. Returns the chosen name; `SaveSuccess` tells whether it was written.
    QString CommonDialogFileSave(QString *DefaultDirectory = nullptr, QString *FileNameSTR = nullptr,
                                 bool *PromptOverWrite = nullptr, QString *CustomFilter = nullptr,
                                 short *ShowFilterIndex = nullptr, short *FindexRet = nullptr,
                                 short *MyErr = nullptr, QString *Title = nullptr, bool *SaveSuccess = nullptr);

    /// True when the file begins with the four-byte signature "kveS" of an enciphered
    /// document. An empty name gives false without touching the disk; a shorter or unreadable
    /// file, a folder, a pipe or a device gives false.
    static bool IsFileEncrypted(const QString &FileNameSTR);
    /// Opens the plain file the host deciphered, by the index `CommonDialogFileOpen` gave
    /// (1 control document, 2 RTF, 3 text; others load nothing). Then clears the modified
    /// flag, refreshes the ruler, clears the link-undo mark and raises `Finish` and `Ready`.
    void OpenDecryptedFile(const QString &MyFileName, short MyIndex, bool *TextWLinks = nullptr,
                           bool *OpenSuccess = nullptr, short *MyErr = nullptr);

    /// The clean-up passes that follow an RTF load while `RemoveUnUsableData` is on.
    ContentCleanup &cleanup() { return m_cleanup; }

    /// Number of the last failure of a load or save (`FileError`), 0 after a success.
    int lastError() const { return m_lastError; }
    /// The operating system's words for the last failure (for logs and the command line).
    QString lastErrorReason() const { return m_lastErrorReason; }

    /// The form text is saved in: that of the last text file loaded, else UTF-8 with CR LF.
    const TextFileFormat &textFileFormat() const { return m_textFormat; }
    void setTextFileFormat(const TextFileFormat &format) { m_textFormat = format; }

    /// Hooks of the widget: the ruler's re-sync with the caret's paragraph, and clearing the
    /// control's link-undo mark. Unset hooks are skipped (a control without a ruler).
    void setRulerRefresher(std::function<void()> refresh) { m_refreshRuler = std::move(refresh); }
    void setLinkUndoPendingClearer(std::function<void()> clear) { m_clearLinkUndoPending = std::move(clear); }

private:
    int load(const QString &path, int type, bool textLinks);
    int readFile(const QString &path, QByteArray *bytes);
    int loadRtf(const QString &path, bool cleanUp);
    int loadText(const QString &path, bool links);
    void linkDocument();
    /// The question before saving formatted text as text; true to go on.
    bool confirmTextSave();
    /// Writes the document; shows the failure box; true when written.
    bool write(const QString &path, bool asText);
    void refreshRuler();
    void fail(int error, const QString &reason = QString());

    ControlCore &m_core;
    ContentCleanup m_cleanup;
    TextFileFormat m_textFormat;
    int m_lastError = 0;
    QString m_lastErrorReason;
    std::function<void()> m_refreshRuler;
    std::function<void()> m_clearLinkUndoPending;
};

} // namespace kvrtb
