#include "findreplace/findreplacefrm.h"

#include "core/controlcore.h"
#include "findreplace/findreplace.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
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
    m_applyFontColour =
        makeCheck(QStringLiteral("ApplyFontColorCheck"), QStringLiteral("Apply font color"), optionsFrame);
    m_fontColourButton = makeButton(QStringLiteral("FontColorButton"), QStringLiteral("Font Color..."), optionsFrame);
    auto *optionsLayout = new QGridLayout(optionsFrame);
    optionsLayout->addWidget(m_wholeWord, 0, 0);
    optionsLayout->addWidget(m_matchCase, 1, 0);
    optionsLayout->addWidget(m_applyFontColour, 0, 1);
    optionsLayout->addWidget(m_fontColourButton, 1, 1);

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
    left->addStretch();
    auto *buttons = new QVBoxLayout;
    for (QPushButton *button : {m_findNextButton, m_findPreviousButton, m_replaceButton, m_replaceAllButton, closeButton})
        buttons->addWidget(button);
    buttons->addStretch();
    auto *layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);

    connect(m_findText, &QLineEdit::textChanged, this, &FindReplaceFrm::updateButtons);
    connect(m_findNextButton, &QPushButton::clicked, this, &FindReplaceFrm::findNext);
    connect(m_findPreviousButton, &QPushButton::clicked, this, &FindReplaceFrm::findPrevious);
    connect(m_replaceButton, &QPushButton::clicked, this, &FindReplaceFrm::replaceNext);
    connect(m_replaceAllButton, &QPushButton::clicked, this, &FindReplaceFrm::replaceAll);
    connect(m_fontColourButton, &QPushButton::clicked, this, &FindReplaceFrm::chooseFontColour);
    connect(closeButton, &QPushButton::clicked, this, &FindReplaceFrm::close);
    updateButtons();
}

void FindReplaceFrm::setFindText(const QString &text)
{
    m_findText->setText(text);
    m_findText->selectAll();
}

FindOptionsQ FindReplaceFrm::options() const
{
    return FindOptionsQ((m_wholeWord->isChecked() ? WholeWord : 0) | (m_matchCase->isChecked() ? MatchCase : 0));
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

void FindReplaceFrm::findNext()
{
    const QString text = m_findText->text();
    if (text.isEmpty())
        return;
    if (m_core.findReplace().Find2(text, FindNext, options()) < 0)
        tell(notFound(QStringLiteral(" not found after cursor location.")));
}

void FindReplaceFrm::findPrevious()
{
    const QString text = m_findText->text();
    if (text.isEmpty())
        return;
    if (m_core.findReplace().Find2(text, FindPrevious, options()) < 0)
        tell(notFound(QStringLiteral(" not found ahead of cursor location.")));
}

void FindReplaceFrm::replaceNext()
{
    const QString text = m_findText->text();
    if (text.isEmpty())
        return;
    if (m_core.findReplace().ReplaceNext(text, m_replacementText->text(), options(), replacementColour()) < 0)
        tell(notFound(QStringLiteral(" not found after cursor location.")));
}

void FindReplaceFrm::replaceAll()
{
    const QString text = m_findText->text();
    if (text.isEmpty())
        return;
    const int count = m_core.findReplace().ReplaceAll(text, m_replacementText->text(), options(), replacementColour());
    if (count == 0)
        tell(notFound(QStringLiteral(" not found in this document.")));
    else
        tell(QString::number(count) + QStringLiteral(" replacements made to this document."));
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

} // namespace kvrtb
