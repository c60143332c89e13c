#pragma once

#include <QString>

namespace kvrtb {

/// \brief The control's help document for end users: an HTML page carried in the library's
/// resources and installed beside it.
///
/// The document on disk is the installed copy when there is one, else a copy the control
/// writes from its resources into the user's cache folder (and rewrites when it differs).
class HelpFile {
public:
    /// The document's file name, "KvRTBHelp.html".
    static QString fileName();
    /// The document's text from the library's resources.
    static QByteArray contents();
    /// Where the installed copy is looked for.
    static QString installedPath();
    /// The absolute path of the document on disk, writing the cached copy if needed; empty
    /// with the reason in \a error when no copy could be had.
    static QString localPath(QString *error = nullptr);
    /// The document as `GetHelpFile` gives it: with \a NoColonFilePath, the plain path
    /// ("/usr/share/doc/.../KvRTBHelp.html", no scheme); otherwise its address as a viewer
    /// opens it ("file:///usr/share/doc/.../KvRTBHelp.html"). Empty when there is none.
    static QString GetHelpFile(bool NoColonFilePath);
};

} // namespace kvrtb
