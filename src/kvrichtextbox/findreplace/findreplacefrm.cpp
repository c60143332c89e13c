#include "findreplace/findreplacefrm.h"

#include "core/controlcore.h"
#include "findreplace/findreplace.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvrtb {

namespace {

QPushButton *makeButton(const QString &name, const QString &text, QWidget *parent)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

QCheckBox *makeCheck(const QString &name, const QString &text, QWidget *parent)
{
    auto *check = new QCheckBox(text, parent);
    check->setObjectName(name);
    return check;
}

} // namespace

FindReplaceFrm::FindReplaceFrm(ControlCore &core, QWidget *parent) : QDialog(parent), m_core(core)
{
    setObjectName(QStringLiteral("FindReplaceFrm"));
    setWindowTitle(QStringLiteral("Find / Replace"));
    setModal(false);

    m_findText = new QLineEdit(this);
    m_findText->setObjectName(QStringLiteral("FindTxt"));
    m_replacementText = new QLineEdit(this);
    m_replacementText->setObjectName(QStringLiteral("ReplacementTxt"));
    auto *findLabel = new QLabel(QStringLiteral("Find what:"), this);
    findLabel->setBuddy(m_findText);
    auto *replaceLabel = new QLabel(QStringLiteral("Replace with:"), this);
    replaceLabel->setBuddy(m_replacementText);

    auto *optionsFrame = new QGroupBox(QStringLiteral("Find / Replace Options"), this);
    m_wholeWord = makeCheck(QStringLiteral("WholeWordCheck"), QStringLiteral("Whole word"), optionsFrame);
    m_matchCase = makeCheck(QStringLiteral("MatchCaseCheck"), QStringLiteral("Match case"), optionsFrame);
    // Made in the order Tab visits them: down the first column, then down the second.
    m_regex = makeCheck(QStringLiteral("RegexCheck"), QStringLiteral("Regular expression"), optionsFrame);
    m_wrapAround = makeCheck(QStringLiteral("WrapAroundCheck"), QStringLiteral("Wrap around"), optionsFrame);
    m_wrapAround->setChecked(true);
    m_highlightAll =
        makeCheck(QStringLiteral("HighlightAllCheck"), QStringLiteral("Highlight all matches"), optionsFrame);
    m_highlightAll->setChecked(true);
    m_inSelection = makeCheck(QStringLiteral("InSelectionCheck"), QStringLiteral("Find in selection"), optionsFrame);
    m_applyFontColour =
        makeCheck(QStringLiteral("ApplyFontColorCheck"), QStringLiteral("Apply font color"), optionsFrame);
    m_fontColourButton = makeButton(QStringLiteral("FontColorButton"), QStringLiteral("Font Color..."), optionsFrame);
    auto *optionsLayout = new QGridLayout(optionsFrame);
    optionsLayout->addWidget(m_wholeWord, 0, 0);
    optionsLayout->addWidget(m_matchCase, 1, 0);
    optionsLayout->addWidget(m_regex, 2, 0);
    optionsLayout->addWidget(m_wrapAround, 3, 0);
    optionsLayout->addWidget(m_highlightAll, 0, 1);
    optionsLayout->addWidget(m_inSelection, 1, 1);
    optionsLayout->addWidget(m_applyFontColour, 2, 1);
    optionsLayout->addWidget(m_fontColourButton, 3, 1);

    // The labels take no focus and have no fixed accessible name: their text is their name,
    // so assistive technology announces each new count and message.
    m_countLabel = new QLabel(this);
    m_countLabel->setObjectName(QStringLiteral("MatchCountLabel"));
    m_statusLabel = new QLabel(this);
    m_statusLabel->setObjectName(QStringLiteral("StatusLabel"));
    m_statusLabel->setWordWrap(true);

    m_findNextButton = makeButton(QStringLiteral("FindNextButton"), QStringLiteral("Find Next"), this);
    m_findNextButton->setDefault(true);
    m_findPreviousButton = makeButton(QStringLiteral("FindPreviousButton"), QStringLiteral("Find Previous"), this);
    m_replaceButton = makeButton(QStringLiteral("ReplaceButton"), QStringLiteral("Replace"), this);
    m_replaceAllButton = makeButton(QStringLiteral("ReplaceAllButton"), QStringLiteral("Replace All"), this);
    QPushButton *closeButton = makeButton(QStringLiteral("CloseButton"), QStringLiteral("Close"), this);

    auto *fields = new QGridLayout;
    fields->addWidget(findLabel, 0, 0);
    fields->addWidget(m_findText, 0, 1);
    fields->addWidget(replaceLabel, 1, 0);
    fields->addWidget(m_replacementText, 1, 1);
    auto *left = new QVBoxLayout;
    left->addLayout(fields);
    left->addWidget(optionsFrame);
    left->addWidget(m_countLabel);
    left->addWidget(m_statusLabel);
    left->addStretch();
    auto *buttons = new QVBoxLayout;
    for (QPushButton *button : {m_findNextButton, m_findPreviousButton, m_replaceButton, m_replaceAllButton, closeButton})
        buttons->addWidget(button);
    buttons->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);

    m_session = new FindSession(core, this);
    connect(m_session, &FindSession::countChanged, this, &FindReplaceFrm::updateCount);
    connect(m_session, &FindSession::rangeLost, this, [this] {
        const QSignalBlocker blocker(m_inSelection);
        m_inSelection->setChecked(false);
        m_statusLabel->setText(QStringLiteral("The text searched in was replaced, so the whole document is searched."));
    });
    connect(m_findText, &QLineEdit::textChanged, this, &FindReplaceFrm::updateButtons);
    connect(m_findText, &QLineEdit::textChanged, this, &FindReplaceFrm::updateQuery);
    for (QCheckBox *check : {m_wholeWord, m_matchCase, m_regex})
        connect(check, &QCheckBox::toggled, this, &FindReplaceFrm::updateQuery);
    connect(m_wrapAround, &QCheckBox::toggled, m_session, &FindSession::setWrapAround);
    connect(m_highlightAll, &QCheckBox::toggled, m_session, &FindSession::setHighlightAll);
    connect(m_inSelection, &QCheckBox::toggled, this, &FindReplaceFrm::toggleInSelection);
    connect(m_findNextButton, &QPushButton::clicked, this, &FindReplaceFrm::findNext);
    connect(m_findPreviousButton, &QPushButton::clicked, this, &FindReplaceFrm::findPrevious);
    connect(m_replaceButton, &QPushButton::clicked, this, &FindReplaceFrm::replaceNext);
    connect(m_replaceAllButton, &QPushButton::clicked, this, &FindReplaceFrm::replaceAll);
    connect(m_fontColourButton, &QPushButton::clicked, this, &FindReplaceFrm::chooseFontColour);
    connect(closeButton, &QPushButton::clicked, this, &FindReplaceFrm::close);
    updateButtons();
    updateQuery();
}

void FindReplaceFrm::setFindText(const QString &text)
{
    m_findText->setText(text);
    m_findText->selectAll();
}

std::optional<Colour> FindReplaceFrm::replacementColour() const
{
    if (m_applyFontColour->isChecked())
        return m_fontColour;
    return std::nullopt;
}

void FindReplaceFrm::updateButtons()
{
    const bool any = !m_findText->text().isEmpty();
    for (QPushButton *button : {m_findNextButton, m_findPreviousButton, m_replaceButton, m_replaceAllButton})
        button->setEnabled(any);
}

void FindReplaceFrm::tell(const QString &message)
{
    m_core.services().messageBox(message, MessageButtons::OK, MessageIcon::Information, messageTitle());
}

QString FindReplaceFrm::notFound(const QString &ending) const
{
    return QStringLiteral("The text: ''") + m_findText->text() + QStringLiteral("''") + ending;
}

void FindReplaceFrm::updateQuery()
{
    m_session->setQuery({m_findText->text(), m_regex->isChecked(), m_wholeWord->isChecked(), m_matchCase->isChecked()});
    const FindQuery &query = m_session->query();
    m_statusLabel->setText(query.isValid() || m_findText->text().isEmpty() ? QString() : query.errorMessage());
}

void FindReplaceFrm::updateCount()
{
    m_countLabel->setText(m_session->countText());
    if (m_session->countTooComplex())
        m_statusLabel->setText(tooComplexMessage());
}

void FindReplaceFrm::toggleInSelection(bool on)
{
    if (m_session->setInSelection(on) == on) {
        m_statusLabel->clear();
        return;
    }
    const QSignalBlocker blocker(m_inSelection);
    m_inSelection->setChecked(false);
    m_statusLabel->setText(QStringLiteral("Select the text to search in first."));
}

QString FindReplaceFrm::wrapNote(bool forward) const
{
    if (m_session->inSelection()) {
        return forward ? QStringLiteral("Passed the end of the selection; continued from its start.")
                       : QStringLiteral("Passed the start of the selection; continued from its end.");
    }
    return forward ? QStringLiteral("Passed the end of the document; continued from the start.")
                   : QStringLiteral("Passed the start of the document; continued from the end.");
}

QString FindReplaceFrm::tooComplexMessage()
{
    return QStringLiteral("The regular expression needs too many steps on this text, so the search stopped. "
                          "Make it simpler.");
}

void FindReplaceFrm::report(FindSession::Outcome outcome, bool forward, const QString &ending)
{
    switch (outcome) {
    case FindSession::Outcome::Found:
        m_statusLabel->clear();
        break;
    case FindSession::Outcome::Wrapped:
        m_statusLabel->setText(wrapNote(forward));
        break;
    case FindSession::Outcome::Invalid:
        m_statusLabel->setText(m_session->query().errorMessage());
        break;
    case FindSession::Outcome::TooComplex:
        m_statusLabel->setText(tooComplexMessage());
        break;
    case FindSession::Outcome::NotFound:
        m_statusLabel->clear();
        tell(notFound(ending));
        break;
    }
}

void FindReplaceFrm::findNext()
{
    if (m_findText->text().isEmpty())
        return;
    report(m_session->findNext().outcome, true, QStringLiteral(" not found after cursor location."));
}

void FindReplaceFrm::findPrevious()
{
    if (m_findText->text().isEmpty())
        return;
    report(m_session->findPrevious().outcome, false, QStringLiteral(" not found ahead of cursor location."));
}

void FindReplaceFrm::replaceNext()
{
    if (m_findText->text().isEmpty())
        return;
    const FindSession::Result result = m_session->replaceNext(m_replacementText->text(), replacementColour(), nullptr);
    report(result.outcome, true, QStringLiteral(" not found after cursor location."));
}

void FindReplaceFrm::replaceAll()
{
    if (m_findText->text().isEmpty())
        return;
    FindSession::Outcome outcome = FindSession::Outcome::Found;
    const int count = m_session->replaceAll(m_replacementText->text(), replacementColour(), &outcome);
    if (outcome != FindSession::Outcome::Found) {
        report(outcome, true, QString());
        return;
    }
    m_statusLabel->clear();
    const bool inSelection = m_session->inSelection();
    if (count == 0)
        tell(notFound(inSelection ? QStringLiteral(" not found in the selection.") : QStringLiteral(" not found in this document.")));
    else
        tell(QString::number(count)
             + (inSelection ? QStringLiteral(" replacements made in the selection.")
                            : QStringLiteral(" replacements made to this document.")));
}

void FindReplaceFrm::chooseFontColour()
{
    const ColourDialogResult chosen = m_core.services().colourDialog(m_fontColour);
    if (!chosen.accepted)
        return;
    m_fontColour = chosen.colour;
    m_applyFontColour->setChecked(true);
}

void FindReplaceFrm::closeEvent(QCloseEvent *event)
{
    m_core.findReplace().ExitFindRep();
    QDialog::closeEvent(event);
}

void FindReplaceFrm::reject()
{
    m_core.findReplace().ExitFindRep();
    QDialog::reject();
}

void FindReplaceFrm::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    m_session->activate();
}

void FindReplaceFrm::hideEvent(QHideEvent *event)
{
    m_session->deactivate();
    QDialog::hideEvent(event);
}

void FindReplaceFrm::keyPressEvent(QKeyEvent *event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && (event->modifiers() & Qt::ShiftModifier)) {
        if (m_findPreviousButton->isEnabled())
            findPrevious();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace kvrtb
