#include "help/whatsthishelp.h"

#include "core/controlcore.h"
#include "help/helpfile.h"

#include <QFileInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QUrl>
#include <QWhatsThis>
#include <QWhatsThisClickedEvent>
#include <QWidget>

namespace kvrtb {

WhatsThisHelp::WhatsThisHelp(ControlCore &core) : m_core(core)
{
    if (QWidget *editor = m_core.surface().widget())
        editor->installEventFilter(this);
}

WhatsThisHelp::~WhatsThisHelp() = default;

void WhatsThisHelp::PointToWhatsThisHelpFile()
{
    m_core.properties().WhatsThisHelpFile = HelpFile::GetHelpFile(true);
    m_core.events().propertyChanged(QStringLiteral("WhatsThisHelpFile"));
}

QString WhatsThisHelp::helpAddress() const
{
    const QString chosen = m_core.properties().WhatsThisHelpFile.trimmed();
    if (chosen.isEmpty())
        return HelpFile::GetHelpFile(false);
    // A path becomes a file address (a relative one is taken from the working folder when the
    // file is there); an address is taken as it stands.
    const QFileInfo file(chosen);
    if (file.isAbsolute() || file.exists())
        return QUrl::fromLocalFile(file.absoluteFilePath()).toString();
    return chosen;
}

bool WhatsThisHelp::showHelp(QString *error)
{
    const QString address = helpAddress();
    if (address.isEmpty()) {
        if (error)
            *error = QStringLiteral("The control has no help document.");
        return false;
    }
    return m_core.services().openAddress(address, error);
}

QString WhatsThisHelp::whatsThisText() const
{
    QString text = QStringLiteral(
        "<p><b>Rich-text editor</b></p>"
        "<p>Type and format text here. Right-click for the editing commands: cut, copy and paste, "
        "font and colours, synonyms and spelling. Web and e-mail addresses in the text are "
        "marked as links.</p>");
    const QString address = helpAddress();
    if (!address.isEmpty())
        text += QStringLiteral("<p><a href=\"%1\">Open the help</a></p>").arg(address.toHtmlEscaped());
    return text;
}

bool WhatsThisHelp::eventFilter(QObject *watched, QEvent *event)
{
    auto *editor = qobject_cast<QWidget *>(watched);
    if (!editor)
        return QObject::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::QueryWhatsThis:
    case QEvent::WhatsThis:
        // The text follows WhatsThisHelpFile, which the host may change at any time.
        editor->setWhatsThis(whatsThisText());
        break;
    case QEvent::WhatsThisClicked: {
        const QString href = static_cast<QWhatsThisClickedEvent *>(event)->href();
        if (!href.isEmpty()) {
            QWhatsThis::hideText();
            m_core.services().openAddress(href);
        }
        return true;
    }
    case QEvent::KeyPress: {
        auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::WhatsThis)) {
            editor->setWhatsThis(whatsThisText());
            QWhatsThis::showText(editor->mapToGlobal(editor->rect().center()), editor->whatsThis(), editor);
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace kvrtb
