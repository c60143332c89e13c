#pragma once

#include <QList>
#include <QString>

namespace kvrtb {

class ControlCore;
class EditorSurface;
struct AddressMatch;

/// \brief Finds web and e-mail addresses and marks them as the control's own links.
///
/// A link is text with the surface's link effect and the link marker (character locale
/// `kLinkMarkerLocale`); the marker is the whole of the bookkeeping, there is no list of links.
/// Marking is computed from one read of the text and applied as one batch of format changes
/// inside one display freeze; the surface's undo buffer is emptied afterwards, so it never
/// holds link formats (the control's own undo covers them).
///
/// Member names are those of the control's interface; `KvRTB` forwards to them.
class Hyperlinks {
public:
    /// Length of the document's RTF above which automatic linking while typing is switched off.
    static constexpr int kLargeDocumentRtfLength = 2500000;

    explicit Hyperlinks(ControlCore &core);

    /// Links every address in the whole document. Raises `Begin`; `Finish` and `Ready` follow
    /// unless the text cannot hold an address at all (then only `Begin` is raised).
    void HyperLinkDocument();
    /// Removes link effect and marker from the whole document; only while `DetectHyperLinks`
    /// is off and no linking pass runs.
    void UnHyperLinkDocument();
    /// Marks [RTBSelStart, RTBSelStart + RTBSelectedLength) as a link, with no pattern test;
    /// the caret ends at RTBSelStart.
    void HyperLinkSelected(int RTBSelStart, int RTBSelectedLength);
    /// The pass the key handling runs while the user types: links the addresses on the
    /// caret's line. On a document too large for it, switches `DetectHyperLinks` off and says
    /// so in the "Automatic Hyperlinking Disabled" box instead. Raises no events of its own.
    void HyperLinkCurrentLine();

    /// True, with the address in \a ReturnMyEAddress, when \a MyHitSpot lies in an e-mail
    /// address and the selection carries the link marker. Matches met while user input is
    /// pending are passed over.
    bool DetectEmailZone(int MyHitSpot, QString *ReturnMyEAddress = nullptr);
    /// The same for web addresses.
    bool DetectURLZone(int MyHitSpot, QString *ReturnMyURL = nullptr);

    /// Opens a web address with the desktop; nothing for an empty one. \a MyErrorData receives
    /// the reason when nothing could open it.
    void GoToWebsite(const QString &MyWebSite, QString *MyErrorData = nullptr);
    /// Opens "mailto:" plus the address with the desktop; nothing for an empty address.
    void GoToEmailClient(const QString &MyEmail, QString *MyErrorData = nullptr);

    /// Clears the link marker past the end of the text, so that text typed after a link at
    /// the very end does not carry the marker. \a caret is where the caret goes afterwards.
    void ClearTrailingLinkMarker(int caret);

    /// Remembers the first character of the first visible line (per thread).
    void SaveTopPosition();
    /// Scrolls back so that the remembered character's line is the first visible one; when it
    /// had to scroll, the caret goes to that character.
    void RestoreTopPosition();
    /// Scrolls back to an arbitrary remembered top character, as `RestoreTopPosition` does.
    void RestoreTopPositionTo(int position);
    /// True when the current selection carries the link marker.
    bool IsSelectionLinkMarked() const;
    /// Empties the surface's own undo buffer.
    void EmptyEditorUndoBuffer();

    /// True when the document's RTF is longer than `kLargeDocumentRtfLength`: too large (or
    /// holding pictures) for linking on every key release. The RTF is written only when the
    /// answer could have changed: the text alone may settle it, and after a measurement the
    /// surface's growth allowance bounds how long the RTF can have become since.
    bool IsDocumentTooLargeForLinking() const;

    /// Title and text of the box that says automatic linking was switched off.
    static QString disabledTitle();
    static QString disabledText();

private:
    /// Applies link effect and marker to each match, shifted by \a offset, in one batch; stops
    /// at the first match met while the document is being rewritten by the undo.
    void markMatches(const QList<AddressMatch> &matches, int offset);
    bool detectZone(bool email, int hitSpot, QString *address);
    void openWithDesktop(const QString &address, QString *errorData);

    ControlCore &m_core;
    /// The RTF length of the document when the surface's growth allowance was
    /// `m_rtfLengthAllowance` (-1: not measured yet).
    mutable qsizetype m_rtfLength = -1;
    mutable quint64 m_rtfLengthAllowance = 0;
};

} // namespace kvrtb
