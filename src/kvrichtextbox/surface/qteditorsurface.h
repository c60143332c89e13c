#pragma once

#include "core/editorsurface.h"

#include <QObject>
#include <QMap>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QVector>

class QTextBlock;
class QTextDocument;

namespace kvrtb {

class SurfaceTextEdit;

/// \brief The editor surface over a QTextEdit and its QTextDocument.
///
/// Owns its editor widget (give it a parent through `widget()->setParent` or a layout). While
/// frozen, selection changes are kept in a cursor of the surface's own and handed to the widget
/// once, when the last freeze ends, so that bulk passes neither repaint nor scroll per step.
class QtEditorSurface : public QObject, public EditorSurface {
    Q_OBJECT
public:
    explicit QtEditorSurface(QWidget *parent = nullptr);
    ~QtEditorSurface() override;

    /// The underlying editor and document, for the surface's own helpers and its tests.
    SurfaceTextEdit *editor() const { return m_edit; }
    QTextDocument *document() const;

    QString text() const override;
    void setText(const QString &text) override;
    int textLength() const override;
    QString textRange(int start, int length) const override;

    QString rtf() const override;
    bool setRtf(const QString &rtf, QString *error = nullptr) override;
    QString selectedRtf() const override;
    bool replaceSelectionRtf(const QString &rtf, QString *error = nullptr) override;
    bool loadFile(const QString &path, SurfaceFileType type, QString *error = nullptr) override;
    bool saveFile(const QString &path, SurfaceFileType type, QString *error = nullptr) const override;

    int selStart() const override;
    int selLength() const override;
    void setSelection(int start, int length) override;
    void setSelStart(int start) override;
    void setSelLength(int length) override;
    QString selectedText() const override;
    void replaceSelection(const QString &text) override;

    CharFormat selectionCharFormat() const override;
    void setSelectionCharFormat(const CharFormat &format) override;
    void setRangeCharFormat(int start, int length, const CharFormat &format) override;
    void setDocumentCharFormat(const CharFormat &format) override;
    void applyCharFormats(const QList<FormatSpan> &spans) override;
    void applyColourRuns(int start, int length, const CharFormat &base, const QList<ColourRun> &runs) override;
    void rewriteCharacters(const QList<TextRewrite> &rewrites) override;
    void replaceRanges(const QList<TextReplacement> &replacements, const CharFormat *format = nullptr) override;
    CharFormat rangeCharFormat(int start, int length) const override;

    ParaFormat selectionParaFormat() const override;
    void setSelectionParaFormat(const ParaFormat &format) override;
    ParaFormat paraFormatAt(int position) const override;

    int find(const QString &what, int start, int end, int flags) const override;

    int lineCount() const override;
    int lineIndex(int line) const override;
    int lineLength(int position) const override;
    int lineFromChar(int position) const override;
    int firstVisibleLine() const override;
    void scrollLines(int lines, int columns = 0) override;
    void scrollToPosition(int position) override;
    QRect formattingRect() const override;
    int textOriginX() const override;
    int charFromPoint(const QPoint &point) const override;
    int scrollOffset() const override;
    void setScrollOffset(int pixels) override;

    void span(const QString &set, bool forward = true, bool negate = false) override;
    void upTo(const QString &set, bool forward = true, bool negate = false) override;
    void changeCase(int kind) override;

    bool isModified() const override;
    quint64 revision() const override;
    quint64 rtfGrowthAllowance() const override;
    void setModified(bool modified) override;
    bool canUndo() const override;
    void undo() override;
    void emptyUndoBuffer() override;
    bool markHistoryPoint(std::function<void()> beforeLost) override;
    bool markHistoryPointBeforeLastEdit(std::function<void()> beforeLost, int *undoneCaret) override;
    bool hasHistoryPoint() const override;
    bool readAtHistoryPoint(const std::function<void()> &read) override;
    bool restoreHistoryPoint() override;
    void forgetHistoryPoint() override;

    void cut() override;
    void copy() const override;
    void paste() override;
    void clear() override;
    bool canPaste() const override;

    void setWrap(WrapMode mode, int widthTwips = 0) override;
    WrapMode wrapMode() const override;

    void freeze() override;
    void unfreeze() override;
    int freezeCount() const override;

    bool isReadOnly() const override;
    void setReadOnly(bool readOnly) override;
    int maxLength() const override;
    void setMaxLength(int length) override;
    QFont font() const override;
    void setFont(const QFont &font) override;
    Colour backColor() const override;
    void setBackColor(Colour colour) override;
    bool isEnabled() const override;
    void setEnabled(bool enabled) override;
    int rightMargin() const override;
    void setRightMargin(int twips) override;
    MousePointer mousePointer() const override;
    void setMousePointer(MousePointer pointer) override;
    void setAppearance(int appearance) override;
    void setBorderStyle(int borderStyle) override;
    void setToolTip(const QString &tip) override;
    void setFocus() override;
    void refresh() override;
    quintptr windowHandle() const override;
    QWidget *widget() const override;
    void print(QPagedPaintDevice *device) const override;
    std::optional<DocumentPage> documentPage() const override;
    int renderPages(QPagedPaintDevice *device, const PageRenderRequest &request,
                    QString *error = nullptr) const override;

    void setListener(SurfaceListener *listener) override;

    void setDecorations(DecorationLayer layer, const QList<TextSpan> &spans) override;
    QList<TextSpan> decorations(DecorationLayer layer) const override;
    TextSpan paragraphAt(int position) const override;
    int charAtGlobalPoint(const QPoint &globalPoint) const override;
    void addContentsObserver(ContentsObserver observer) override;
    void setAccessibleDescription(const QString &description) override;

private:
    QTextCursor cursor() const;
    void setCursor(const QTextCursor &cursor);
    /// A cursor selecting [start, start + length) clamped to the document (-1 = to the end).
    QTextCursor rangeCursor(int start, int length) const;
    int clamp(int position) const;
    /// Runs a widget operation on the current selection while frozen (the widget acts on its
    /// own cursor, so the surface's cursor is handed over and taken back).
    template <typename Operation>
    void withWidgetCursor(Operation operation) const;
    void markLinesDirty() { m_linesDirty = true; }
    /// Closes the edit that collects a frozen stretch's changes and opens a new one, so that
    /// layout, the undo stack and the modified flag catch up before a query that needs them.
    void flushBatch() const;
    /// Closes the frozen stretch's edit for an operation that manages the document itself
    /// (replacing it whole, undo); reopened by `resumeBatch`.
    void pauseBatch();
    void resumeBatch();
    /// The display-line index: first line of each block, with the total at the end.
    const QVector<int> &lineStarts() const;
    /// The paragraph holding \a position, laid out (with those before it) if it was not yet.
    QTextBlock layOutBlockAt(int position) const;
    /// The y coordinate (document pixels) of a line's top.
    int lineTop(int line) const;
    /// The line at a document y coordinate.
    int lineAtY(int y) const;
    void applyWrap();
    /// Calls the history point's `beforeLost` (once) and forgets the point: the history it
    /// needs is about to go.
    void letGoOfHistoryPoint();
    /// Undoes whole edits of the document until its history stands at the point. \return false
    /// when it cannot land exactly there (the document is then brought back to where it was).
    bool rollBackToHistoryPoint();
    /// Empties the document's whole edit history and the one-step undo.
    void clearHistory();
    /// Forgets what is known of the last step: the history moved other than by an edit.
    void resyncLastStep();
    void onContentsChange(int from, int removed, int added);
    void onCursorMoved();
    /// Hands the decoration spans in view to the widget, in layer order (later layers paint on
    /// top). The stretch in view is found again (a hit test over the layout) only when
    /// \a findView is true or it is not known; edits move the remembered one.
    void applyDecorations(bool findView = true);
    /// Moves the decoration spans for an edit; spans the edit touched are dropped.
    void moveDecorations(int position, int removed, int added);
    /// See `SurfaceTextEdit::MisspeltStretch`: read from the misspelling decoration.
    bool misspeltStretch(int position, int limit, int *start, int *end) const;
    /// True when links are painted in the palette's link colour (a dark palette).
    bool paintsLinks() const;
    /// True when anything is painted over the text: a decoration layer or the links.
    bool decorating() const;
    /// The look of a layer's spans in the widget's current palette.
    QTextCharFormat decorationFormat(DecorationLayer layer) const;

    SurfaceTextEdit *m_edit = nullptr;
    /// Each decoration layer's spans, moved by every edit. Only the spans in view become the
    /// widget's extra selections (a long document may have thousands), again on each scroll.
    QMap<int, QList<TextSpan>> m_decorations;
    int m_viewStart = 0;  ///< the text in view when decorations were last painted
    int m_viewEnd = -1;   ///< -1: not known
    bool m_decorationsStale = false; ///< an edit changed a shown span: hand them over again
    QList<ContentsObserver> m_contentsObservers;
    SurfaceListener *m_listener = nullptr;
    QTextCursor m_frozenCursor;
    mutable QTextCursor m_batch;  ///< holds the edit block open while frozen
    bool m_batchOpen = false;
    int m_freezeCount = 0;
    /// Counts document changes; see `revision`.
    mutable quint64 m_revision = 0;
    /// See `rtfGrowthAllowance`.
    mutable quint64 m_rtfAllowance = 0;
    bool m_modified = false;
    bool m_lastWasUndo = false;   ///< the next undo redoes
    bool m_undoing = false;
    /// The history point: the number of undo steps of the document at that state, -1 for none.
    int m_historyPoint = -1;
    /// The history below the point was lost without warning (an edit after stepping below it).
    bool m_historyPointBroken = false;
    std::function<void()> m_beforeHistoryPointLost;
    /// Undo steps at the last `emptyUndoBuffer` while a point was held: the one-step undo
    /// never goes below it.
    int m_undoFloor = 0;
    /// A history round trip is running: its changes are not reported.
    bool m_quietHistory = false;
    /// \brief The last step an edit added to the history, as far as the surface saw it.
    struct LastStep {
        int start = -1;       ///< undo steps before it
        int end = -1;         ///< undo steps after it
        int changes = 0;      ///< document changes reported since it was added
        int undoneCaret = -1; ///< where undoing it leaves the caret; -1 when not known
        int fitted = 0;       ///< undo steps of border room fitted after the edit, joined to it
    };
    LastStep m_lastStep;
    int m_stepsAtLastStepEnd = 0; ///< undo steps when the last step was added
    WrapMode m_wrapMode = WrapMode::Window;
    int m_wrapWidth = 0;
    int m_rightMargin = 0;
    MousePointer m_pointer = MousePointer::Default;
    int m_lastSelStart = -1;
    int m_lastSelLength = -1;
    mutable bool m_linesDirty = true;
    mutable QVector<int> m_lineStarts;
};

} // namespace kvrtb
