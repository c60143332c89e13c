#include "surface/surfacetextedit.h"

#include "core/editorsurface.h"
#include "surface/rtf/rtfreader.h"
#include "surface/rtf/rtfwriter.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTextCursor>
#include <QTextDocument>

namespace kvrtb {

namespace {

const QString kRtfMime = QStringLiteral("text/rtf");
const QString kRtfMimeAlt = QStringLiteral("application/rtf");

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

int SurfaceTextEdit::virtualKeyCode(int key)
{
    if (key >= Qt::Key_A && key <= Qt::Key_Z)
        return key; // same codes, 65..90
    if (key >= Qt::Key_0 && key <= Qt::Key_9)
        return key; // 48..57
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24)
        return 112 + (key - Qt::Key_F1);
    switch (key) {
    case Qt::Key_Backspace: return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab: return 9;
    case Qt::Key_Return:
    case Qt::Key_Enter: return 13;
    case Qt::Key_Shift: return 16;
    case Qt::Key_Control: return 17;
    case Qt::Key_Alt: return 18;
    case Qt::Key_Pause: return 19;
    case Qt::Key_CapsLock: return 20;
    case Qt::Key_Escape: return 27;
    case Qt::Key_Space: return 32;
    case Qt::Key_PageUp: return 33;
    case Qt::Key_PageDown: return 34;
    case Qt::Key_End: return 35;
    case Qt::Key_Home: return 36;
    case Qt::Key_Left: return 37;
    case Qt::Key_Up: return 38;
    case Qt::Key_Right: return 39;
    case Qt::Key_Down: return 40;
    case Qt::Key_Insert: return 45;
    case Qt::Key_Delete: return 46;
    case Qt::Key_Meta: return 91;
    case Qt::Key_Menu: return 93;
    case Qt::Key_NumLock: return 144;
    case Qt::Key_ScrollLock: return 145;
    case Qt::Key_Semicolon:
    case Qt::Key_Colon: return 186;
    case Qt::Key_Equal:
    case Qt::Key_Plus: return 187;
    case Qt::Key_Comma:
    case Qt::Key_Less: return 188;
    case Qt::Key_Minus:
    case Qt::Key_Underscore: return 189;
    case Qt::Key_Period:
    case Qt::Key_Greater: return 190;
    case Qt::Key_Slash:
    case Qt::Key_Question: return 191;
    case Qt::Key_QuoteLeft:
    case Qt::Key_AsciiTilde: return 192;
    case Qt::Key_BracketLeft:
    case Qt::Key_BraceLeft: return 219;
    case Qt::Key_Backslash:
    case Qt::Key_Bar: return 220;
    case Qt::Key_BracketRight:
    case Qt::Key_BraceRight: return 221;
    case Qt::Key_Apostrophe:
    case Qt::Key_QuoteDbl: return 222;
    // Shifted digits arrive as their symbols; the platform reports the digit key.
    case Qt::Key_Exclam: return '1';
    case Qt::Key_At: return '2';
    case Qt::Key_NumberSign: return '3';
    case Qt::Key_Dollar: return '4';
    case Qt::Key_Percent: return '5';
    case Qt::Key_AsciiCircum: return '6';
    case Qt::Key_Ampersand: return '7';
    case Qt::Key_Asterisk: return '8';
    case Qt::Key_ParenLeft: return '9';
    case Qt::Key_ParenRight: return '0';
    default: return 0;
    }
}

int SurfaceTextEdit::shiftState(Qt::KeyboardModifiers modifiers)
{
    int state = 0;
    if (modifiers & Qt::ShiftModifier)
        state |= 1;
    if (modifiers & Qt::ControlModifier)
        state |= 2;
    if (modifiers & Qt::AltModifier)
        state |= 4;
    return state;
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
    int keyCode = virtualKeyCode(event->key());
    int shift = shiftState(event->modifiers());
    const int originalCode = keyCode;
    if (m_listener && keyCode != 0) {
        m_listener->keyDown(keyCode, shift);
        if (keyCode == 0) {
            event->accept();
            return;
        }
    }
    QString text = event->text();
    const bool typesCharacter = !text.isEmpty() && text.at(0).isPrint() &&
                                !(event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier));
    const bool typesBreak = keyCode == 13 || keyCode == 9;
    if (typesCharacter || typesBreak) {
        if (m_listener) {
            int keyAscii = typesBreak ? keyCode : text.at(0).unicode();
            m_listener->keyPress(keyAscii);
            if (keyAscii == 0) {
                event->accept();
                return;
            }
            if (typesCharacter && keyAscii != text.at(0).unicode())
                text = QString(QChar(keyAscii));
        }
        const int room = roomLeft();
        if (room == 0) {
            QApplication::beep();
            event->accept();
            return;
        }
        if (typesCharacter && text != event->text()) {
            QKeyEvent changed(event->type(), event->key(), event->modifiers(), text, event->isAutoRepeat());
            QTextEdit::keyPressEvent(&changed);
            return;
        }
    }
    if (keyCode != originalCode) {
        // The listener turned the key into another one; let the editor act on that one.
        QKeyEvent changed(event->type(), keyCode, event->modifiers(), event->text(), event->isAutoRepeat());
        QTextEdit::keyPressEvent(&changed);
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void SurfaceTextEdit::keyReleaseEvent(QKeyEvent *event)
{
    int keyCode = virtualKeyCode(event->key());
    int shift = shiftState(event->modifiers());
    if (m_listener && keyCode != 0)
        m_listener->keyUp(keyCode, shift);
    QTextEdit::keyReleaseEvent(event);
}

void SurfaceTextEdit::mousePressEvent(QMouseEvent *event)
{
    if (m_listener) {
        int button = mouseButtonCode(event->button());
        int shift = shiftState(event->modifiers());
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
        int shift = shiftState(event->modifiers());
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
        int shift = shiftState(event->modifiers());
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
    QMimeData *data = QTextEdit::createMimeDataFromSelection();
    const QTextCursor cursor = textCursor();
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

} // namespace kvrtb
