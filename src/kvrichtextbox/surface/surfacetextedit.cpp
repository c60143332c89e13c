#include "surface/surfacetextedit.h"

#include "surface/drawnformats.h"
#include "surface/paragraphborders.h"

#include "core/editorsurface.h"
#include "core/virtualkeys.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QApplication>
#include <QBuffer>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextDocumentWriter>
#include <QTextLayout>

#include <limits>
#include <memory>
#include <optional>

namespace kvrtb {

namespace {

const QString kRtfMime = QStringLiteral("text/rtf");
const QString kRtfMimeAlt = QStringLiteral("application/rtf");

// The selection as QTextEdit offers it (plain text, HTML, OpenDocument) but with the room for
// paragraph borders taken out of the spacing: taken from a copy of the document, as the room is
// for this control's display only and would reach another program as spacing.
QMimeData *mimeDataWithoutRoom(const QTextDocument &document, const QTextCursor &selection)
{
    std::unique_ptr<QTextDocument> copy(document.clone());
    paragraphborders::takeRoom(*copy);
    QTextCursor same(copy.get());
    same.setPosition(selection.anchor());
    same.setPosition(selection.position(), QTextCursor::KeepAnchor);
    const QTextDocumentFragment fragment(same);
    auto *data = new QMimeData;
    data->setText(fragment.toPlainText());
    data->setHtml(fragment.toHtml());
    QBuffer odf;
    QTextDocumentWriter writer(&odf, "ODF");
    if (writer.write(fragment))
        data->setData(QStringLiteral("application/vnd.oasis.opendocument.text"), odf.data());
    return data;
}

// What the edit a key makes at \a cursor may do to the paragraphs there: split one (a break) or
// join the ones from `joinFrom` to `joinTo` into one (a deletion across a paragraph's edge,
// anything typed over a selection of more than one paragraph). Pastes and drops are fitted where
// they go in (insertFromMimeData).
struct Reshaping {
    bool splits = false;
    int joinFrom = -1;
    int joinTo = -1;

    bool any() const { return splits || joinFrom >= 0; }
};

// Keys that change the text at the selection (a selection moved or copied does not).
bool editsText(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Backspace:
    case Qt::Key_Delete: return true;
    default: break;
    }
    const QString text = key.text();
    return key.matches(QKeySequence::Cut)
           || (!text.isEmpty() && text.at(0).isPrint() && !(key.modifiers() & (Qt::ControlModifier | Qt::MetaModifier)));
}

Reshaping reshapingOf(const QKeyEvent &key, const QTextCursor &cursor)
{
    Reshaping reshaping;
    const QTextDocument *doc = cursor.document();
    if (cursor.hasSelection()) {
        if (editsText(key) && doc->findBlock(cursor.selectionStart()) != doc->findBlock(cursor.selectionEnd()))
            reshaping = {false, cursor.selectionStart(), cursor.selectionEnd()};
        return reshaping;
    }
    const int at = cursor.position();
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: reshaping.splits = true; break;
    case Qt::Key_Backspace:
        if (cursor.atBlockStart() && at > 0)
            reshaping = {false, at - 1, at};
        break;
    case Qt::Key_Delete:
        if (cursor.atBlockEnd() && at < doc->characterCount() - 1)
            reshaping = {false, at, at + 1};
        break;
    default: break;
    }
    return reshaping;
}

int mouseButtonCode(Qt::MouseButtons buttons)
{
    int code = 0;
    if (buttons & Qt::LeftButton)
        code |= 1;
    if (buttons & Qt::RightButton)
        code |= 2;
    if (buttons & Qt::MiddleButton)
        code |= 4;
    return code;
}

} // namespace

SurfaceTextEdit::SurfaceTextEdit(QWidget *parent) : QTextEdit(parent)
{
    // The control shows its own context menu through the listener.
    setContextMenuPolicy(Qt::DefaultContextMenu);
    setAcceptRichText(true);
}

SurfaceTextEdit::~SurfaceTextEdit()
{
    emit aboutToBeDestroyed();
}

int SurfaceTextEdit::roomLeft() const
{
    if (m_maxLength <= 0)
        return -1;
    const QTextCursor cursor = textCursor();
    const int length = document()->characterCount() - 1;
    const int selected = cursor.selectionEnd() - cursor.selectionStart();
    return std::max(0, m_maxLength - (length - selected));
}

void SurfaceTextEdit::keyPressEvent(QKeyEvent *event)
{
    if (!m_listener) {
        QTextEdit::keyPressEvent(event);
        return;
    }
    const int originalCode = KeyTable::fromQt(event->key(), event->modifiers(), event->text());
    const int originalShift = KeyTable::shiftState(event->modifiers());
    int keyCode = originalCode;
    int shift = originalShift;
    if (keyCode != 0) {
        m_listener->keyDown(keyCode, shift);
        if (keyCode == 0) {
            event->accept();
            return;
        }
    }
    // The key the editor acts on: the one pressed, or the one a handler put in its place,
    // translated back through the key table.
    std::optional<QKeyEvent> replaced;
    QKeyEvent *key = event;
    if (keyCode != originalCode || shift != originalShift) {
        const KeyTable::QtKey qtKey = KeyTable::toQt(keyCode, shift);
        if (qtKey.key == 0) {
            event->accept(); // a code with no key stops the key, as 0 does
            return;
        }
        replaced.emplace(event->type(), qtKey.key, qtKey.modifiers, qtKey.text, event->isAutoRepeat());
        key = &*replaced;
    }

    // The editor's own many-step history keys (Alt+Backspace, Ctrl+Shift+Z) would walk the
    // document's history past what the control's one-step undo allows: the control's undo is
    // the only way back.
    if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
        event->accept();
        return;
    }

    QString text = key->text();
    const bool typesCharacter = !text.isEmpty() && text.at(0).isPrint() &&
                                !(key->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    const bool typesBreak = keyCode == VkReturn || keyCode == VkTab;
    if (typesCharacter || typesBreak) {
        int keyAscii = typesBreak ? keyCode : text.at(0).unicode();
        m_listener->keyPress(keyAscii);
        if (keyAscii == 0) {
            event->accept();
            return;
        }
        if (typesCharacter && keyAscii != text.at(0).unicode()) {
            text = QString(QChar(char16_t(keyAscii)));
            replaced.emplace(key->type(), key->key(), key->modifiers(), text, key->isAutoRepeat());
            key = &*replaced;
        }
        if (roomLeft() == 0) {
            QApplication::beep();
            event->accept();
            return;
        }
    }
    const Reshaping reshaping = isReadOnly() ? Reshaping() : reshapingOf(*key, textCursor());
    if (reshaping.any())
        editFittingBoxes([this, key] { QTextEdit::keyPressEvent(key); }, reshaping.joinFrom, reshaping.joinTo);
    else
        QTextEdit::keyPressEvent(key);
    event->setAccepted(key->isAccepted());
}

void SurfaceTextEdit::editFittingBoxes(const std::function<void()> &edit, int joinFrom, int joinTo)
{
    QTextDocument *doc = document();
    const QTextCursor before = textCursor();
    const int from = joinFrom >= 0 ? joinFrom : before.selectionStart();
    const int to = joinFrom >= 0 ? joinTo : before.selectionEnd();
    if (!paragraphborders::nearBox(*doc, from, to)) {
        edit();
        return;
    }
    const int revision = doc->revision();
    if (doc->findBlock(from) != doc->findBlock(to)) {
        // The paragraph the join keeps gets its room first, in the edit's undo step: the step's
        // last change stays the user's, and redoing the step leaves the caret where it left it.
        QTextCursor step(doc);
        step.beginEditBlock();
        paragraphborders::fitRoomForJoin(step, from, to);
        edit();
        step.endEditBlock();
    } else {
        edit();
    }
    if (doc->revision() == revision)
        return; // the edit changed nothing
    // What is left to fit (the halves of a split paragraph, the edges of a paste) joins the edit's
    // undo step; the surface does not count it as a change of the step's text (fittingRoom()).
    m_fittingRoom = true;
    QTextCursor after(doc);
    after.joinPreviousEditBlock();
    paragraphborders::fitRoomAround(after, std::min(from, doc->characterCount() - 1));
    paragraphborders::fitRoomAround(after, textCursor().position());
    after.endEditBlock();
    m_fittingRoom = false;
}

void SurfaceTextEdit::keyReleaseEvent(QKeyEvent *event)
{
    int keyCode = KeyTable::fromQt(event->key(), event->modifiers(), event->text());
    int shift = KeyTable::shiftState(event->modifiers());
    if (m_listener && keyCode != 0)
        m_listener->keyUp(keyCode, shift);
    QTextEdit::keyReleaseEvent(event);
}

void SurfaceTextEdit::mousePressEvent(QMouseEvent *event)
{
    if (m_listener) {
        int button = mouseButtonCode(event->button());
        int shift = KeyTable::shiftState(event->modifiers());
        float x = float(event->position().x());
        float y = float(event->position().y());
        m_listener->mouseDown(button, shift, x, y);
    }
    QTextEdit::mousePressEvent(event);
}

void SurfaceTextEdit::mouseMoveEvent(QMouseEvent *event)
{
    if (m_listener) {
        int button = mouseButtonCode(event->buttons());
        int shift = KeyTable::shiftState(event->modifiers());
        float x = float(event->position().x());
        float y = float(event->position().y());
        m_listener->mouseMove(button, shift, x, y);
    }
    QTextEdit::mouseMoveEvent(event);
}

void SurfaceTextEdit::mouseReleaseEvent(QMouseEvent *event)
{
    QTextEdit::mouseReleaseEvent(event);
    if (m_listener) {
        int button = mouseButtonCode(event->button());
        int shift = KeyTable::shiftState(event->modifiers());
        float x = float(event->position().x());
        float y = float(event->position().y());
        m_listener->mouseUp(button, shift, x, y);
        m_listener->click();
    }
}

void SurfaceTextEdit::mouseDoubleClickEvent(QMouseEvent *event)
{
    QTextEdit::mouseDoubleClickEvent(event);
    if (m_listener)
        m_listener->dblClick();
}

void SurfaceTextEdit::contextMenuEvent(QContextMenuEvent *event)
{
    // Without a listener the editor offers Qt's own menu; with one, the control decides.
    if (!m_listener) {
        QTextEdit::contextMenuEvent(event);
        return;
    }
    event->accept();
    m_listener->contextMenu(event->globalPos());
}

void SurfaceTextEdit::resizeEvent(QResizeEvent *event)
{
    QTextEdit::resizeEvent(event);
    emit viewportResized();
}

bool SurfaceTextEdit::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasFormat(kRtfMime) || source->hasFormat(kRtfMimeAlt) || QTextEdit::canInsertFromMimeData(source);
}

QMimeData *SurfaceTextEdit::createMimeDataFromSelection() const
{
    const QTextCursor cursor = textCursor();
    QMimeData *data = cursor.hasSelection() && paragraphborders::hasRoom(*document())
                          ? mimeDataWithoutRoom(*document(), cursor)
                          : QTextEdit::createMimeDataFromSelection();
    if (cursor.hasSelection()) {
        const QByteArray rtf = rtf::writeRtf(*document(), cursor.selectionStart(), cursor.selectionEnd());
        data->setData(kRtfMime, rtf);
        data->setData(kRtfMimeAlt, rtf);
    }
    return data;
}

void SurfaceTextEdit::insertFromMimeData(const QMimeData *source)
{
    if (isReadOnly())
        return;
    editFittingBoxes([this, source] { insertMimeData(source); });
}

void SurfaceTextEdit::insertMimeData(const QMimeData *source)
{
    const int room = roomLeft();
    if (room >= 0) {
        // With a length limit, only as much plain text as fits goes in.
        QString text = source->text();
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        if (text.size() > room)
            QApplication::beep();
        textCursor().insertText(text.left(room));
        return;
    }
    const QString format = source->hasFormat(kRtfMime) ? kRtfMime : kRtfMimeAlt;
    if (source->hasFormat(format)) {
        QTextCursor cursor = textCursor();
        if (rtf::insertRtf(cursor, source->data(format)).ok) {
            setTextCursor(cursor);
            return;
        }
    }
    QTextEdit::insertFromMimeData(source);
}

namespace {

/// Where paragraph borders may reach: the document's area. Asking a document that is still
/// being laid out in steps for its size would lay all of it out at once, in the middle of a
/// paint; until its last paragraph is laid out the area is left open below (no paragraph painted
/// then is near the bottom) and as wide as the page.
QRectF borderArea(const QTextDocument &document)
{
    const QTextLayout *last = document.lastBlock().layout();
    if (last && last->lineCount() > 0)
        return QRectF(QPointF(0, 0), document.size());
    return QRectF(0, 0, document.pageSize().width(), std::numeric_limits<qreal>::max());
}

} // namespace

void SurfaceTextEdit::paintEvent(QPaintEvent *event)
{
    const QPointF offset(-horizontalScrollBar()->value(), -verticalScrollBar()->value());
    const QRectF area = QRectF(event->rect()).translated(-offset);
    {
        // Under the text: the viewport's background is already filled.
        QPainter painter(viewport());
        painter.translate(offset);
        painter.setClipRect(area);
        drawnformats::paintUnderText(painter, *document(), area);
    }
    QTextEdit::paintEvent(event);
    QPainter painter(viewport());
    painter.translate(offset);
    painter.setClipRect(area);
    drawnformats::paintOverText(painter, *document(), area, borderArea(*document()), palette().color(QPalette::Text));
}

void SurfaceTextEdit::changeEvent(QEvent *event)
{
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        emit paletteChanged();
}

} // namespace kvrtb
