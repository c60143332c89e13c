#include "hyperlinks/hyperlinks.h"

#include "core/controlcore.h"
#include "core/kvrtbtypes.h"
#include "core/threadstate.h"
#include "editing/displayfreeze.h"
#include "editing/linesandcase.h"
#include "editing/specialundo.h"
#include "hyperlinks/addresspatterns.h"

#include <algorithm>

namespace kvrtb {

namespace {

/// The locale that unmarked text carries after linking is cleared.
constexpr int kPlainLocale = 1033;

/// The hit test yields to the event loop after this many matches that did not hit, so a long
/// list of addresses neither blocks the host nor spends its time in the event loop.
constexpr int kMatchesPerYield = 64;

CharFormat linkFormat(const QString &address)
{
    CharFormat format;
    format.linkEffect = true;
    format.locale = kLinkMarkerLocale;
    format.linkAddress = address;
    return format;
}

} // namespace

Hyperlinks::Hyperlinks(ControlCore &core)
    : m_core(core)
{
}

QString Hyperlinks::disabledTitle()
{
    return QStringLiteral("Automatic Hyperlinking Disabled");
}

QString Hyperlinks::disabledText()
{
    return QStringLiteral("The current file is very large or contains images, automatic hyperlinking has been "
                          "disabled to improve performance.\r\nSimply click the Detect Hyperlinks button to use "
                          "hyperlinking as needed.");
}

void Hyperlinks::markMatches(const QList<AddressMatch> &matches, int offset)
{
    ThreadState &state = threadState();
    QList<EditorSurface::FormatSpan> spans;
    spans.reserve(matches.size());
    for (const AddressMatch &match : matches) {
        if (state.rewriteInProgress)
            break;
        spans.append({match.start + offset, match.length, linkFormat(AddressPatterns::linkAddressFor(match.text))});
    }
    if (!spans.isEmpty())
        m_core.surface().applyCharFormats(spans);
    EmptyEditorUndoBuffer();
}

void Hyperlinks::HyperLinkDocument()
{
    EditorSurface &surface = m_core.surface();
    ThreadState &state = threadState();
    m_core.events().begin();
    {
        BusyGuard busy(m_core.services());
        const QString text = surface.text();
        if (AddressPatterns::quickReject(text))
            return; // nothing can be an address: no Finish, no Ready

        const int caret = surface.selStart();
        SaveTopPosition();
        if (state.linkingInProgress) {
            m_core.events().finish();
            m_core.events().ready();
            return;
        }

        const QList<AddressMatch> matches = AddressPatterns::matches(AddressPatterns::link(), text);
        if (!matches.isEmpty()) {
            ThreadFlagGuard linking(state.linkingInProgress);
            DisplayFreeze freeze(m_core);
            markMatches(matches, 0);
            surface.setSelection(caret, 0);
            freeze.release();
            state.lastUndoKind = HyperLinkUD;
            RestoreTopPosition();
        }
        ClearTrailingLinkMarker(surface.selStart());
    }
    m_core.events().finish();
    m_core.events().ready();
}

void Hyperlinks::UnHyperLinkDocument()
{
    ThreadState &state = threadState();
    if (m_core.properties().DetectHyperLinks || state.linkingInProgress)
        return;
    EditorSurface &surface = m_core.surface();
    const int start = surface.selStart();
    const int length = surface.selLength();
    SaveTopPosition();
    BusyGuard busy(m_core.services());
    DisplayFreeze freeze(m_core);
    CharFormat unlink;
    unlink.linkEffect = false;
    unlink.locale = kPlainLocale;
    unlink.linkAddress = QString();
    surface.setDocumentCharFormat(unlink);
    EmptyEditorUndoBuffer();
    surface.setSelection(start, length);
    freeze.release();
    RestoreTopPosition();
}

void Hyperlinks::HyperLinkSelected(int RTBSelStart, int RTBSelectedLength)
{
    EditorSurface &surface = m_core.surface();
    if (RTBSelectedLength > 0) {
        const QString text = surface.textRange(RTBSelStart, RTBSelectedLength);
        surface.applyCharFormats({{RTBSelStart, RTBSelectedLength, linkFormat(AddressPatterns::linkAddressFor(text))}});
    }
    EmptyEditorUndoBuffer();
    surface.setSelection(RTBSelStart, 0);
}

bool Hyperlinks::IsDocumentTooLargeForLinking() const
{
    const EditorSurface &surface = m_core.surface();
    // Every position of the text takes at least one character of RTF.
    if (surface.textLength() > kLargeDocumentRtfLength)
        return true;
    // While what the document can have grown by since the last measurement keeps it under the
    // limit, the answer is known without writing the RTF: typing writes it about once in a
    // thousand keys instead of on every key.
    if (m_rtfLength >= 0 && m_rtfLength <= kLargeDocumentRtfLength) {
        const quint64 growth = surface.rtfGrowthAllowance() - m_rtfLengthAllowance;
        if (growth <= quint64(kLargeDocumentRtfLength - m_rtfLength))
            return false;
    }
    m_rtfLengthAllowance = surface.rtfGrowthAllowance();
    m_rtfLength = surface.rtf().size();
    return m_rtfLength > kLargeDocumentRtfLength;
}

void Hyperlinks::HyperLinkCurrentLine()
{
    ThreadState &state = threadState();
    if (IsDocumentTooLargeForLinking()) {
        m_core.properties().DetectHyperLinks = false;
        state.detectHyperLinks = false;
        m_core.events().propertyChanged(QStringLiteral("DetectHyperLinks"));
        m_core.events().updateParentMenu();
        m_core.services().messageBox(disabledText(), MessageButtons::OK, MessageIcon::Information, disabledTitle());
        return;
    }
    if (state.linkingInProgress)
        return;

    EditorSurface &surface = m_core.surface();
    int lineStart = 0;
    int lineLength = 0;
    const QString line = m_core.linesAndCase().GetLineText(&lineStart, &lineLength);
    if (AddressPatterns::quickReject(line))
        return;
    const int lineOffset = lineStart - 1;
    const int caret = surface.selStart();

    SaveTopPosition();
    const QList<AddressMatch> matches = AddressPatterns::matches(AddressPatterns::link(), line);
    if (!matches.isEmpty()) {
        ThreadFlagGuard linking(state.linkingInProgress);
        DisplayFreeze freeze(m_core);
        m_core.specialUndo().SaveRegularUndoData();
        markMatches(matches, lineOffset);
        surface.setSelection(caret, 0);
        freeze.release();
        RestoreTopPosition();
    }
    ClearTrailingLinkMarker(surface.selStart());
}

void Hyperlinks::ClearTrailingLinkMarker(int caret)
{
    ThreadState &state = threadState();
    if (state.linkingInProgress)
        return;
    EditorSurface &surface = m_core.surface();
    SaveTopPosition();
    {
        BusyGuard busy(m_core.services());
        ThreadFlagGuard linking(state.linkingInProgress);
        const int selectionLength = surface.selLength();
        const int length = surface.textLength();
        CharFormat clear;
        clear.locale = kPlainLocale;
        {
            DisplayFreeze freeze(m_core);
            // The range past the last character is empty: the change lands in the typing format.
            surface.setSelection(length, 2);
            surface.setSelectionCharFormat(clear);
            surface.setSelection(caret, selectionLength);
        }
        RestoreTopPosition();
        state.lastUndoKind = HyperLinkUD;
        EmptyEditorUndoBuffer();
        // Moving the caret resets the typing format; with the caret back at the very end, what
        // is typed or pasted next must still come without the marker, and outside the link
        // (also while a paste holds the display frozen: the frozen caret carries the format to
        // the editor).
        if (surface.selLength() == 0 && surface.selStart() == surface.textLength()) {
            CharFormat plain = clear;
            plain.linkEffect = false;
            plain.linkAddress = QString();
            surface.setSelectionCharFormat(plain);
        }
    }
}

void Hyperlinks::SaveTopPosition()
{
    EditorSurface &surface = m_core.surface();
    threadState().savedTopPosition = std::max(0, surface.lineIndex(surface.firstVisibleLine()));
}

void Hyperlinks::RestoreTopPosition()
{
    RestoreTopPositionTo(threadState().savedTopPosition);
}

void Hyperlinks::RestoreTopPositionTo(int position)
{
    EditorSurface &surface = m_core.surface();
    int line = surface.lineFromChar(position);
    const int first = surface.firstVisibleLine();
    if (line == first)
        return;
    line = std::min(line, surface.lineCount());
    surface.scrollLines(line - first, 0);
    surface.setSelStart(position);
}

bool Hyperlinks::IsSelectionLinkMarked() const
{
    return m_core.surface().selectionCharFormat().hasLinkMarker();
}

void Hyperlinks::EmptyEditorUndoBuffer()
{
    m_core.surface().emptyUndoBuffer();
}

bool Hyperlinks::detectZone(bool email, int hitSpot, QString *address)
{
    PlatformServices &services = m_core.services();
    const QList<AddressMatch> matches =
        AddressPatterns::matches(email ? AddressPatterns::email() : AddressPatterns::url(), m_core.surface().text());
    int sinceYield = 0;
    for (const AddressMatch &match : matches) {
        // Matches come in text order: none after this one can hold the spot.
        if (match.start > hitSpot)
            break;
        if (hitSpot <= match.start + match.length - 1) {
            if (services.hasPendingInput())
                continue; // the user is acting: this match is passed over unexamined
            if (IsSelectionLinkMarked()) {
                if (address)
                    *address = match.text;
                return true;
            }
        }
        if (++sinceYield == kMatchesPerYield) {
            sinceYield = 0;
            services.processEvents();
        }
    }
    return false;
}

bool Hyperlinks::DetectEmailZone(int MyHitSpot, QString *ReturnMyEAddress)
{
    return detectZone(true, MyHitSpot, ReturnMyEAddress);
}

bool Hyperlinks::DetectURLZone(int MyHitSpot, QString *ReturnMyURL)
{
    return detectZone(false, MyHitSpot, ReturnMyURL);
}

void Hyperlinks::openWithDesktop(const QString &address, QString *errorData)
{
    QString error;
    if (!m_core.services().openAddress(address, &error)) {
        if (errorData)
            *errorData = error;
        m_core.services().processEvents();
    }
}

void Hyperlinks::GoToWebsite(const QString &MyWebSite, QString *MyErrorData)
{
    if (MyWebSite.isEmpty())
        return;
    openWithDesktop(MyWebSite, MyErrorData);
}

void Hyperlinks::GoToEmailClient(const QString &MyEmail, QString *MyErrorData)
{
    if (MyEmail.isEmpty())
        return;
    openWithDesktop(QStringLiteral("mailto:") + MyEmail, MyErrorData);
}

} // namespace kvrtb
