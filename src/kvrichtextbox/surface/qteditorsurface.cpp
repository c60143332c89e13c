#include "surface/qteditorsurface.h"

#include "surface/editoraccessible.h"
#include "surface/formatmapping.h"
#include "surface/qteditorsurface_p.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"
#include "surface/surfacetextedit.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QSaveFile>
#include <QScrollBar>
#include <QStringDecoder>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace kvrtb {

namespace {

// The document's own separators, as the surface's plain text shows them: a paragraph break
// (and the start or end of a table's frame) is a line feed. Every other character is kept as
// the document holds it, so no-break spaces and line separators survive a plain-text round
// trip.
QString plainFromDocument(QString text)
{
    for (QChar &c : text) {
        if (surfacedetail::isParagraphBreak(c))
            c = QLatin1Char('\n');
    }
    return text;
}

QString normaliseLineEnds(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text;
}

// RTF travels in a QString whose chars are bytes; a host may also hand over characters beyond
// one byte, which are written as RTF Unicode escapes so that nothing is lost.
QByteArray rtfBytes(const QString &rtf)
{
    QByteArray bytes;
    bytes.reserve(rtf.size());
    for (const QChar c : rtf) {
        if (c.unicode() <= 0xFF)
            bytes.append(char(c.unicode()));
        else
            bytes.append("\\u" + QByteArray::number(qint16(c.unicode())) + '?');
    }
    return bytes;
}

Qt::CursorShape cursorShape(MousePointer pointer)
{
    switch (pointer) {
    case MousePointer::Arrow: return Qt::ArrowCursor;
    case MousePointer::Cross: return Qt::CrossCursor;
    case MousePointer::IBeam:
    case MousePointer::Default: return Qt::IBeamCursor;
    case MousePointer::SizeAll: return Qt::SizeAllCursor;
    case MousePointer::SizeNESW: return Qt::SizeBDiagCursor;
    case MousePointer::SizeNS: return Qt::SizeVerCursor;
    case MousePointer::SizeNWSE: return Qt::SizeFDiagCursor;
    case MousePointer::SizeWE: return Qt::SizeHorCursor;
    case MousePointer::UpArrow: return Qt::UpArrowCursor;
    case MousePointer::Hourglass: return Qt::WaitCursor;
    case MousePointer::NoDrop: return Qt::ForbiddenCursor;
    case MousePointer::ArrowHourglass: return Qt::BusyCursor;
    case MousePointer::ArrowQuestion: return Qt::WhatsThisCursor;
    case MousePointer::Hand: return Qt::PointingHandCursor;
    }
    return Qt::IBeamCursor;
}

/// How much a change of the document may lengthen its RTF at most. The writer spends on a
/// character at most its own escape and, when its format differs from its neighbours', a run
/// of control words and a link field around it (well under `kRtfPerCharacter`); a change may
/// add entries to the font and colour tables (`kRtfPerChange`); a new paragraph repeats its
/// paragraph's properties, tab stops included (`kRtfPerParagraph`). Removing text costs no
/// more than the change itself (a format change reports its range as removed and added
/// again). Pictures cost their bytes and long insertions are not looked at: both count as
/// unbounded.
quint64 rtfGrowthOfChange(const QTextDocument &document, int from, int added)
{
    constexpr int kLongestLookedAt = 256;
    constexpr quint64 kRtfPerChange = 1024;
    constexpr quint64 kRtfPerCharacter = 512;
    constexpr quint64 kRtfPerParagraph = 16384;
    if (added > kLongestLookedAt)
        return EditorSurface::kUnboundedRtfGrowth;
    quint64 growth = kRtfPerChange + kRtfPerCharacter * quint64(std::max(0, added));
    for (int position = from; position < from + added; ++position) {
        const QChar c = document.characterAt(position);
        if (c == QChar::ObjectReplacementCharacter)
            return EditorSurface::kUnboundedRtfGrowth;
        if (c == QChar::ParagraphSeparator)
            growth += kRtfPerParagraph;
    }
    return growth;
}

} // namespace

QtEditorSurface::QtEditorSurface(QWidget *parent) : QObject(nullptr), m_edit(new SurfaceTextEdit(parent))
{
    QTextDocument *doc = m_edit->document();
    doc->setUndoRedoEnabled(true);
    m_edit->setAccessibleName(tr("Rich text editor"));
    EditorAccessible::installFactory();
    m_edit->setMisspeltStretch([this](int position, int limit, int *start, int *end) {
        return misspeltStretch(position, limit, start, end);
    });
    connect(doc, &QTextDocument::contentsChange, this, &QtEditorSurface::onContentsChange);
    connect(doc, &QTextDocument::contentsChanged, this, [this] {
        // Painted links follow the text's formats, so in a dark palette every change counts.
        if (m_decorationsStale || paintsLinks()) {
            m_decorationsStale = false;
            applyDecorations(false);
        }
        if (m_listener && !m_quietHistory)
            m_listener->change();
    });
    connect(doc, &QTextDocument::undoCommandAdded, this, [this] {
        const int steps = document()->availableUndoSteps();
        if (m_edit->fittingRoom()) {
            // The room for borders fitted after the edit joined the edit's step, which stays the
            // last step and the user's edit.
            m_lastStep.fitted += steps - m_stepsAtLastStepEnd;
            m_lastStep.end = m_stepsAtLastStepEnd = steps;
            return;
        }
        if (!m_undoing)
            m_lastWasUndo = false;
        // An edit made below the history point cut off the way back to it.
        if (m_historyPoint >= 0 && steps <= m_historyPoint)
            m_historyPointBroken = true;
        // The document reports the step before the change that made it.
        m_lastStep = {m_stepsAtLastStepEnd, steps, 0, -1};
        m_stepsAtLastStepEnd = steps;
    });
    connect(doc->documentLayout(), &QAbstractTextDocumentLayout::update, this, [this] { markLinesDirty(); });
    connect(m_edit, &SurfaceTextEdit::viewportResized, this, [this] {
        markLinesDirty();
        if (decorating())
            applyDecorations();
    });
    connect(m_edit, &SurfaceTextEdit::paletteChanged, this, [this] { applyDecorations(); });
    connect(m_edit->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        if (decorating())
            applyDecorations();
    });
    connect(m_edit, &QTextEdit::cursorPositionChanged, this, &QtEditorSurface::onCursorMoved);
    connect(m_edit, &QTextEdit::selectionChanged, this, &QtEditorSurface::onCursorMoved);
    connect(m_edit, &SurfaceTextEdit::aboutToBeDestroyed, this, [this] { letGoOfHistoryPoint(); });
    connect(m_edit, &QObject::destroyed, this, [this] { m_edit = nullptr; });
}

QtEditorSurface::~QtEditorSurface()
{
    // The widget may already have gone with its parent (it let go of the history point then).
    if (m_edit) {
        letGoOfHistoryPoint();
        m_edit->setListener(nullptr);
        disconnect(m_edit, nullptr, this, nullptr);
        disconnect(m_edit->document(), nullptr, this, nullptr);
        disconnect(m_edit->document()->documentLayout(), nullptr, this, nullptr);
        if (!m_edit->parent())
            delete m_edit;
    }
}

QTextDocument *QtEditorSurface::document() const
{
    return m_edit->document();
}

void QtEditorSurface::onContentsChange(int from, int removed, int added)
{
    if (m_quietHistory) {
        markLinesDirty();
        return; // a round trip through the history: the document ends as it was
    }
    // Undoing a step that only inserted text leaves the caret where the text went in. The room
    // for borders fitted after the edit is part of the step but not a change of its text.
    if (!m_edit->fittingRoom()) {
        const bool insertion = ++m_lastStep.changes == 1 && removed == 0 && added > 0;
        m_lastStep.undoneCaret = insertion ? from : -1;
    }
    ++m_revision;
    m_rtfAllowance += rtfGrowthOfChange(*document(), from, added);
    m_modified = true;
    markLinesDirty();
    if (decorating())
        moveDecorations(from, std::max(0, removed), std::max(0, added));
    if (!m_contentsObservers.isEmpty()) {
        // The document reports a change of its first block with counts that may run past the
        // end (the final paragraph mark); observers get counts within the text.
        const int length = textLength();
        const int position = std::clamp(from, 0, length);
        const int now = std::clamp(added, 0, length - position);
        for (const ContentsObserver &observer : std::as_const(m_contentsObservers))
            observer(position, std::max(0, removed), now);
    }
}

void QtEditorSurface::onCursorMoved()
{
    if (m_freezeCount > 0 || m_quietHistory)
        return;
    const int start = selStart();
    const int length = selLength();
    if (start == m_lastSelStart && length == m_lastSelLength)
        return;
    m_lastSelStart = start;
    m_lastSelLength = length;
    if (m_listener)
        m_listener->selChange();
}

// --- Cursor helpers -------------------------------------------------------------------------

QTextCursor QtEditorSurface::cursor() const
{
    return m_freezeCount > 0 ? m_frozenCursor : m_edit->textCursor();
}

void QtEditorSurface::setCursor(const QTextCursor &cursor)
{
    if (m_freezeCount > 0)
        m_frozenCursor = cursor;
    else
        m_edit->setTextCursor(cursor);
}

int QtEditorSurface::clamp(int position) const
{
    return std::clamp(position, 0, textLength());
}

QTextCursor QtEditorSurface::rangeCursor(int start, int length) const
{
    QTextCursor range(document());
    const int from = clamp(start);
    const int to = length < 0 ? textLength() : clamp(from + length);
    range.setPosition(from);
    range.setPosition(std::max(from, to), QTextCursor::KeepAnchor);
    return range;
}

template <typename Operation>
void QtEditorSurface::withWidgetCursor(Operation operation) const
{
    auto *self = const_cast<QtEditorSurface *>(this);
    self->pauseBatch();
    if (m_freezeCount > 0)
        m_edit->setTextCursor(m_frozenCursor);
    operation(m_edit);
    if (m_freezeCount > 0)
        self->m_frozenCursor = m_edit->textCursor();
    self->resumeBatch();
}

// --- Text -----------------------------------------------------------------------------------

QString QtEditorSurface::text() const
{
    // Not toPlainText(): that turns no-break spaces into spaces and line separators into
    // paragraph breaks.
    return plainFromDocument(document()->toRawText());
}

void QtEditorSurface::setText(const QString &text)
{
    letGoOfHistoryPoint();
    pauseBatch();
    // The document's own setPlainText gives the text the default format; the editor's would
    // carry over the format at the caret (text set after bold RTF would come out bold).
    document()->setPlainText(normaliseLineEnds(text));
    m_edit->setTextCursor(QTextCursor(document()));
    resumeBatch();
    m_lastWasUndo = false;
    m_undoFloor = 0;
    resyncLastStep();
    m_modified = true;
    if (m_freezeCount > 0)
        m_frozenCursor = QTextCursor(document());
    markLinesDirty();
}

int QtEditorSurface::textLength() const
{
    return document()->characterCount() - 1;
}

QString QtEditorSurface::textRange(int start, int length) const
{
    return plainFromDocument(rangeCursor(start, length).selectedText());
}

// --- RTF ------------------------------------------------------------------------------------

QString QtEditorSurface::rtf() const
{
    return QString::fromLatin1(rtf::writeRtf(*document()));
}

bool QtEditorSurface::setRtf(const QString &rtfText, QString *error)
{
    const QByteArray bytes = rtfBytes(rtfText);
    if (!rtf::looksLikeRtf(bytes)) {
        // Text that is not RTF is taken as plain text, as the rich-edit box does.
        setText(rtfText);
        return true;
    }
    letGoOfHistoryPoint();
    pauseBatch();
    const rtf::ReadResult result = rtf::readRtf(*document(), bytes);
    resumeBatch();
    if (!result.ok) {
        if (error)
            *error = result.error;
        return false;
    }
    clearHistory();
    m_modified = true;
    setCursor(QTextCursor(document()));
    markLinesDirty();
    return true;
}

QString QtEditorSurface::selectedRtf() const
{
    const QTextCursor current = cursor();
    return QString::fromLatin1(rtf::writeRtf(*document(), current.selectionStart(), current.selectionEnd()));
}

bool QtEditorSurface::replaceSelectionRtf(const QString &rtfText, QString *error)
{
    const QByteArray bytes = rtfBytes(rtfText);
    if (!rtf::looksLikeRtf(bytes)) {
        replaceSelection(rtfText);
        return true;
    }
    QTextCursor current = cursor();
    const rtf::ReadResult result = rtf::insertRtf(current, bytes);
    if (!result.ok) {
        if (error)
            *error = result.error;
        return false;
    }
    setCursor(current);
    return true;
}

bool QtEditorSurface::loadFile(const QString &path, SurfaceFileType type, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("Cannot open \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        if (error)
            *error = QStringLiteral("Cannot read \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    if (type == SurfaceFileType::Rtf) {
        if (!rtf::looksLikeRtf(bytes)) {
            if (error)
                *error = QStringLiteral("\"%1\" is not an RTF file.").arg(path);
            return false;
        }
        return setRtf(QString::fromLatin1(bytes), error);
    }
    // Plain text: UTF-16 or UTF-8 by their byte-order marks, UTF-8 when the bytes are valid
    // UTF-8, the Latin range otherwise.
    QString text;
    if (auto encoding = QStringConverter::encodingForData(bytes)) {
        QStringDecoder decoder(*encoding);
        text = decoder(bytes);
    } else {
        QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
        text = utf8(bytes);
        if (utf8.hasError())
            text = QString::fromLatin1(bytes);
    }
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    setText(text);
    return true;
}

bool QtEditorSurface::saveFile(const QString &path, SurfaceFileType type, QString *error) const
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        if (error)
            *error = QStringLiteral("Cannot write \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    QByteArray bytes;
    if (type == SurfaceFileType::Rtf) {
        bytes = rtf::writeRtf(*document());
    } else {
        QString plain = text();
        plain.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
        bytes = plain.toUtf8();
    }
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        if (error)
            *error = QStringLiteral("Cannot write \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

// --- Selection ------------------------------------------------------------------------------

int QtEditorSurface::selStart() const
{
    return cursor().selectionStart();
}

int QtEditorSurface::selLength() const
{
    const QTextCursor current = cursor();
    return current.selectionEnd() - current.selectionStart();
}

void QtEditorSurface::setSelection(int start, int length)
{
    setCursor(rangeCursor(start, length));
}

void QtEditorSurface::setSelStart(int start)
{
    setSelection(start, 0);
}

void QtEditorSurface::setSelLength(int length)
{
    setSelection(selStart(), length);
}

QString QtEditorSurface::selectedText() const
{
    return plainFromDocument(cursor().selectedText());
}

void QtEditorSurface::replaceSelection(const QString &text)
{
    QTextCursor current = cursor();
    current.insertText(normaliseLineEnds(text));
    setCursor(current);
}

// --- Character format -----------------------------------------------------------------------

CharFormat QtEditorSurface::rangeCharFormat(int start, int length) const
{
    const QTextCursor range = rangeCursor(start, length);
    const format::CharDefaults defaults =
        format::defaultsOf(*document(), fromQColor(m_edit->palette().color(QPalette::Text)));
    const int from = range.selectionStart();
    const int to = range.selectionEnd();
    format::CharFormatMerger merger;
    if (from < to) {
        for (QTextBlock block = document()->findBlock(from); block.isValid() && block.position() < to;
             block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QTextFragment fragment = it.fragment();
                if (fragment.position() + fragment.length() > from && fragment.position() < to)
                    merger.add(format::readChar(fragment.charFormat(), defaults));
            }
        }
    }
    if (merger.isEmpty()) {
        // An empty range (or one of paragraph breaks only): the format typing would insert.
        QTextCursor at(document());
        at.setPosition(from);
        return format::readChar(from == cursor().position() && !cursor().hasSelection() ? cursor().charFormat()
                                                                                       : at.charFormat(),
                                defaults);
    }
    return merger.result();
}

CharFormat QtEditorSurface::selectionCharFormat() const
{
    const QTextCursor current = cursor();
    if (!current.hasSelection()) {
        const format::CharDefaults defaults =
            format::defaultsOf(*document(), fromQColor(m_edit->palette().color(QPalette::Text)));
        return format::readChar(current.charFormat(), defaults);
    }
    return rangeCharFormat(current.selectionStart(), current.selectionEnd() - current.selectionStart());
}

void QtEditorSurface::setSelectionCharFormat(const CharFormat &change)
{
    QTextCursor current = cursor();
    format::applyCharFormat(current, change);
    setCursor(current);
}

void QtEditorSurface::setRangeCharFormat(int start, int length, const CharFormat &change)
{
    QTextCursor range = rangeCursor(start, length);
    if (range.hasSelection())
        format::applyCharFormat(range, change);
}

void QtEditorSurface::setDocumentCharFormat(const CharFormat &change)
{
    setRangeCharFormat(0, -1, change);
}

// --- Paragraph format -----------------------------------------------------------------------

ParaFormat QtEditorSurface::selectionParaFormat() const
{
    const QTextCursor current = cursor();
    const QTextBlock last = document()->findBlock(current.selectionEnd());
    format::ParaFormatMerger merger;
    for (QTextBlock block = document()->findBlock(current.selectionStart()); block.isValid(); block = block.next()) {
        merger.add(format::readPara(block));
        if (block == last)
            break;
    }
    return merger.result();
}

void QtEditorSurface::setSelectionParaFormat(const ParaFormat &change)
{
    QTextCursor current = cursor();
    format::applyParaFormat(current, change);
    setCursor(current);
}

// --- Find -----------------------------------------------------------------------------------

int QtEditorSurface::find(const QString &what, int start, int end, int flags) const
{
    if (what.isEmpty())
        return -1;
    const int from = clamp(start);
    const int to = end < 0 ? textLength() : clamp(end);
    if (to < from)
        return -1;
    QTextDocument::FindFlags qtFlags;
    if (flags & FindWholeWord)
        qtFlags |= QTextDocument::FindWholeWords;
    if (flags & FindMatchCase)
        qtFlags |= QTextDocument::FindCaseSensitively;
    if (flags & FindBackward) {
        qtFlags |= QTextDocument::FindBackward;
        // Backward search finds matches that start before the position; one that runs past
        // the range's end is passed over for the next one back.
        int position = to;
        while (position >= from) {
            const QTextCursor found = document()->find(what, position, qtFlags);
            if (found.isNull() || found.selectionStart() < from)
                return -1;
            if (found.selectionEnd() <= to)
                return found.selectionStart();
            position = found.selectionStart() - 1;
        }
        return -1;
    }
    const QTextCursor found = document()->find(what, from, qtFlags);
    if (found.isNull() || found.selectionEnd() > to)
        return -1;
    return found.selectionStart();
}

// --- Modified flag and undo -----------------------------------------------------------------

quint64 QtEditorSurface::revision() const
{
    // A freeze holds the document's changes in an open edit block, whose change signals come
    // only when it closes: no number given out meanwhile may be taken for the current state.
    if (m_freezeCount > 0)
        return ++m_revision;
    return m_revision;
}

quint64 QtEditorSurface::rtfGrowthAllowance() const
{
    // A frozen surface holds its changes in an open edit whose change signal has not come yet.
    if (m_freezeCount > 0)
        m_rtfAllowance += kUnboundedRtfGrowth;
    return m_rtfAllowance;
}

bool QtEditorSurface::isModified() const
{
    flushBatch();
    return m_modified;
}

void QtEditorSurface::setModified(bool modified)
{
    flushBatch();
    m_modified = modified;
}

bool QtEditorSurface::canUndo() const
{
    flushBatch();
    const QTextDocument *doc = document();
    return m_lastWasUndo ? doc->isRedoAvailable() : doc->availableUndoSteps() > m_undoFloor;
}

void QtEditorSurface::undo()
{
    if (!canUndo())
        return;
    const bool redo = m_lastWasUndo;
    // Stepping below the history point would let the next edit cut off the way back to it.
    if (!redo && m_historyPoint >= 0 && document()->availableUndoSteps() <= m_historyPoint)
        letGoOfHistoryPoint();
    m_undoing = true;
    withWidgetCursor([redo](SurfaceTextEdit *edit) {
        if (redo)
            edit->redo();
        else
            edit->undo();
    });
    m_lastWasUndo = !redo;
    m_undoing = false;
    resyncLastStep();
    // Back at the point: the next edit must start a step of its own (see markHistoryPoint).
    if (m_historyPoint >= 0 && document()->availableUndoSteps() == m_historyPoint)
        document()->setModified(false);
    markLinesDirty();
}

void QtEditorSurface::emptyUndoBuffer()
{
    pauseBatch();
    if (m_historyPoint >= 0) {
        // The history down to the point is kept; only the one-step undo ends here.
        // The floor is at or above the point, and the one-step undo cannot go below it, so the
        // document is never at the point again unless it is at the floor: the next edit made
        // there must start an undo step of its own (see markHistoryPoint).
        document()->clearUndoRedoStacks(QTextDocument::RedoStack);
        m_undoFloor = document()->availableUndoSteps();
        m_lastWasUndo = false;
        document()->setModified(false);
        resyncLastStep();
    } else {
        clearHistory();
    }
    resumeBatch();
}

// --- Clipboard ------------------------------------------------------------------------------

void QtEditorSurface::cut()
{
    withWidgetCursor([](SurfaceTextEdit *edit) { edit->cut(); });
}

void QtEditorSurface::copy() const
{
    withWidgetCursor([](SurfaceTextEdit *edit) { edit->copy(); });
}

void QtEditorSurface::paste()
{
    withWidgetCursor([](SurfaceTextEdit *edit) { edit->paste(); });
}

void QtEditorSurface::clear()
{
    QTextCursor current = cursor();
    if (!current.hasSelection())
        return;
    current.removeSelectedText();
    setCursor(current);
}

bool QtEditorSurface::canPaste() const
{
    return m_edit->canPaste();
}

// --- Wrapping -------------------------------------------------------------------------------

void QtEditorSurface::applyWrap()
{
    int fixedTwips = 0;
    if (m_wrapMode == WrapMode::Width)
        fixedTwips = m_wrapWidth;
    else if (m_wrapMode == WrapMode::Window && m_rightMargin > 0)
        fixedTwips = m_rightMargin;
    if (m_wrapMode == WrapMode::None) {
        m_edit->setLineWrapMode(QTextEdit::NoWrap);
    } else if (fixedTwips > 0) {
        m_edit->setLineWrapMode(QTextEdit::FixedPixelWidth);
        m_edit->setLineWrapColumnOrWidth(std::max(1, int(format::twipsToPixels(fixedTwips))));
    } else {
        m_edit->setLineWrapMode(QTextEdit::WidgetWidth);
    }
    markLinesDirty();
}

void QtEditorSurface::setWrap(WrapMode mode, int widthTwips)
{
    m_wrapMode = mode;
    m_wrapWidth = widthTwips;
    applyWrap();
}

WrapMode QtEditorSurface::wrapMode() const
{
    return m_wrapMode;
}

// --- Freeze ---------------------------------------------------------------------------------

// While frozen, every change goes into one open edit of the document: Qt then lays out the
// changed range once when the freeze ends instead of after each change, which is what makes
// passes of thousands of format changes fast. Queries that need the layout or the undo stack
// flush the edit first, so they always see the document as it is.
void QtEditorSurface::freeze()
{
    if (m_freezeCount++ == 0) {
        m_frozenCursor = m_edit->textCursor();
        m_edit->setUpdatesEnabled(false);
        m_batch = QTextCursor(document());
        m_batch.beginEditBlock();
        m_batchOpen = true;
    }
}

void QtEditorSurface::flushBatch() const
{
    if (!m_batchOpen)
        return;
    m_batch.endEditBlock();
    m_batch.beginEditBlock();
}

void QtEditorSurface::pauseBatch()
{
    if (m_batchOpen)
        m_batch.endEditBlock();
}

void QtEditorSurface::resumeBatch()
{
    if (m_batchOpen) {
        m_batch = QTextCursor(document());
        m_batch.beginEditBlock();
    }
}

void QtEditorSurface::unfreeze()
{
    if (m_freezeCount == 0 || --m_freezeCount > 0)
        return;
    m_batch.endEditBlock();
    m_batchOpen = false;
    m_batch = QTextCursor();
    const QTextCursor widgetCursor = m_edit->textCursor();
    // Hand over the frozen stretch's selection, and its typing format (a pass may have set the
    // format the next typed character takes).
    if (widgetCursor.anchor() != m_frozenCursor.anchor() || widgetCursor.position() != m_frozenCursor.position() ||
        widgetCursor.charFormat() != m_frozenCursor.charFormat())
        m_edit->setTextCursor(m_frozenCursor);
    m_frozenCursor = QTextCursor();
    m_edit->setUpdatesEnabled(true);
    m_edit->viewport()->update();
    onCursorMoved();
}

int QtEditorSurface::freezeCount() const
{
    return m_freezeCount;
}

// --- The box --------------------------------------------------------------------------------

bool QtEditorSurface::isReadOnly() const
{
    return m_edit->isReadOnly();
}

void QtEditorSurface::setReadOnly(bool readOnly)
{
    m_edit->setReadOnly(readOnly);
}

int QtEditorSurface::maxLength() const
{
    return m_edit->maxLength();
}

void QtEditorSurface::setMaxLength(int length)
{
    m_edit->setMaxLength(std::max(0, length));
}

QFont QtEditorSurface::font() const
{
    return document()->defaultFont();
}

void QtEditorSurface::setFont(const QFont &font)
{
    m_edit->setFont(font);
    document()->setDefaultFont(font);
    ++m_revision; // the RTF names the default font
    m_rtfAllowance += kUnboundedRtfGrowth;
    markLinesDirty();
}

Colour QtEditorSurface::backColor() const
{
    return m_edit->property("kvrtbBackColor").isValid() ? m_edit->property("kvrtbBackColor").toUInt()
                                                        : 0x80000005u;
}

void QtEditorSurface::setBackColor(Colour colour)
{
    m_edit->setProperty("kvrtbBackColor", colour);
    QPalette palette = m_edit->palette();
    const QColor shown = toQColor(colour);
    if (shown.isValid())
        palette.setColor(QPalette::Base, shown);
    m_edit->setPalette(palette);
}

bool QtEditorSurface::isEnabled() const
{
    return m_edit->isEnabled();
}

void QtEditorSurface::setEnabled(bool enabled)
{
    m_edit->setEnabled(enabled);
}

int QtEditorSurface::rightMargin() const
{
    return m_rightMargin;
}

void QtEditorSurface::setRightMargin(int twips)
{
    m_rightMargin = std::max(0, twips);
    applyWrap();
}

MousePointer QtEditorSurface::mousePointer() const
{
    return m_pointer;
}

void QtEditorSurface::setMousePointer(MousePointer pointer)
{
    m_pointer = pointer;
    m_edit->viewport()->setCursor(cursorShape(pointer));
}

void QtEditorSurface::setAppearance(int appearance)
{
    m_edit->setFrameShadow(appearance == 1 ? QFrame::Sunken : QFrame::Plain);
}

void QtEditorSurface::setBorderStyle(int borderStyle)
{
    m_edit->setFrameShape(borderStyle == 1 ? QFrame::StyledPanel : QFrame::NoFrame);
}

void QtEditorSurface::setToolTip(const QString &tip)
{
    m_edit->setToolTip(tip);
}

void QtEditorSurface::setFocus()
{
    m_edit->setFocus(Qt::OtherFocusReason);
}

void QtEditorSurface::refresh()
{
    m_edit->viewport()->repaint();
    m_edit->repaint();
}

quintptr QtEditorSurface::windowHandle() const
{
    // Not winId(): asking for the id that way gives the editor a native window of its own, a
    // change of the widget that a read must not make.
    return quintptr(m_edit->internalWinId());
}

QWidget *QtEditorSurface::widget() const
{
    return m_edit;
}

void QtEditorSurface::print(QPagedPaintDevice *device) const
{
    document()->print(device);
}

void QtEditorSurface::setListener(SurfaceListener *listener)
{
    m_listener = listener;
    m_edit->setListener(listener);
}

} // namespace kvrtb
