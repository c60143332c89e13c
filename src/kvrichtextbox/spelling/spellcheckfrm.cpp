#include "spelling/spellcheckfrm.h"

#include "core/controlcore.h"
#include "core/threadstate.h"
#include "spelling/suggestions.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>

namespace kvrtb {

namespace {

QPushButton *makeButton(QWidget *parent, const QString &name, const QString &text)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setAutoDefault(false);
    return button;
}

} // namespace

SpellCheckFrm::SpellCheckFrm(ControlCore &core, QWidget *parent)
    : QDialog(parent), m_core(core), m_session(core, m_userWords)
{
    setObjectName(QStringLiteral("SpellCheckFrm"));
    setWindowTitle(title());

    auto *notFound = new QLabel(QStringLiteral("Not in dictionary:"), this);
    m_context = new QLabel(this);
    m_context->setAccessibleName(QStringLiteral("Not in dictionary"));
    m_context->setObjectName(QStringLiteral("ContextLB"));
    m_context->setTextFormat(Qt::RichText);
    m_context->setWordWrap(true);
    m_context->setFrameShape(QFrame::StyledPanel);
    m_context->setMinimumHeight(m_context->fontMetrics().lineSpacing() * 4);
    m_context->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto *changeToLabel = new QLabel(QStringLiteral("Change to:"), this);
    m_changeTo = new QLineEdit(this);
    m_changeTo->setObjectName(QStringLiteral("ChangeToTxt"));
    m_changeTo->setAccessibleName(QStringLiteral("Change to"));
    changeToLabel->setBuddy(m_changeTo);

    auto *suggestionsLabel = new QLabel(QStringLiteral("Suggestions:"), this);
    m_suggestions = new QListWidget(this);
    m_suggestions->setObjectName(QStringLiteral("SuggestionsList"));
    m_suggestions->setAccessibleName(QStringLiteral("Suggestions"));
    suggestionsLabel->setBuddy(m_suggestions);

    auto *accuracyLabel = new QLabel(QStringLiteral("Accuracy:"), this);
    m_accuracy = new QSpinBox(this);
    m_accuracy->setObjectName(QStringLiteral("AccuracySpin"));
    m_accuracy->setAccessibleName(QStringLiteral("Accuracy"));
    m_accuracy->setRange(-50, 110);
    m_accuracy->setSingleStep(10);
    m_accuracy->setValue(Suggestions::kDefaultAccuracy);
    m_accuracy->setToolTip(QStringLiteral("Higher: fewer suggestions, closer to the word"));
    accuracyLabel->setBuddy(m_accuracy);

    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("ProgressBar"));
    m_progress->setAccessibleName(QStringLiteral("Progress"));
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("StatusLB"));

    m_ignoreButton = makeButton(this, QStringLiteral("IgnoreButton"), QStringLiteral("&Ignore"));
    m_ignoreAllButton = makeButton(this, QStringLiteral("IgnoreAllButton"), QStringLiteral("I&gnore All"));
    m_addButton = makeButton(this, QStringLiteral("AddButton"), QStringLiteral("&Add to Dictionary"));
    m_changeButton = makeButton(this, QStringLiteral("ChangeButton"), QStringLiteral("&Change"));
    m_changeAllButton = makeButton(this, QStringLiteral("ChangeAllButton"), QStringLiteral("Change A&ll"));
    m_cancelButton = makeButton(this, QStringLiteral("CancelButton"), QStringLiteral("Cancel"));
    m_closeButton = makeButton(this, QStringLiteral("CloseButton"), QStringLiteral("Close"));
    m_changeButton->setDefault(true);

    auto *grid = new QGridLayout;
    grid->addWidget(notFound, 0, 0, 1, 2);
    grid->addWidget(m_context, 1, 0, 1, 2);
    grid->addWidget(changeToLabel, 2, 0);
    grid->addWidget(m_changeTo, 2, 1);
    grid->addWidget(suggestionsLabel, 3, 0, Qt::AlignTop);
    grid->addWidget(m_suggestions, 3, 1);
    grid->addWidget(accuracyLabel, 4, 0);
    grid->addWidget(m_accuracy, 4, 1, Qt::AlignLeft);
    auto *buttons = new QVBoxLayout;
    for (QPushButton *button : {m_ignoreButton, m_ignoreAllButton, m_addButton, m_changeButton, m_changeAllButton})
        buttons->addWidget(button);
    buttons->addStretch();
    buttons->addWidget(m_closeButton);
    auto *top = new QHBoxLayout;
    top->addLayout(grid, 1);
    top->addLayout(buttons);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_progress, 1);
    bottom->addWidget(m_status, 1);
    bottom->addWidget(m_cancelButton);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(bottom);

    using Session = SpellCheckSession;
    connect(m_changeButton, &QPushButton::clicked, this, [this] { answer(&Session::change); });
    connect(m_changeAllButton, &QPushButton::clicked, this, [this] { answer(&Session::changeAll); });
    connect(m_ignoreButton, &QPushButton::clicked, this, [this] {
        m_session.ignore();
        showState();
    });
    connect(m_ignoreAllButton, &QPushButton::clicked, this, [this] {
        m_session.ignoreAll();
        showState();
    });
    connect(m_addButton, &QPushButton::clicked, this, &SpellCheckFrm::addWord);
    connect(m_cancelButton, &QPushButton::clicked, this, [this] { m_cancelRequested = true; });
    connect(m_closeButton, &QPushButton::clicked, this, &SpellCheckFrm::close);
    connect(m_suggestions, &QListWidget::currentTextChanged, this, [this](const QString &text) {
        if (!text.isEmpty())
            m_changeTo->setText(text);
    });
    connect(m_suggestions, &QListWidget::itemDoubleClicked, this, [this] { answer(&Session::change); });
    connect(m_accuracy, &QSpinBox::valueChanged, this, &SpellCheckFrm::fillSuggestions);

    QString error;
    if (!m_userWords.load(&error)) {
        // Reported once the dialog is up, not from inside its construction.
        QTimer::singleShot(0, this, [this, error] {
            tell(QStringLiteral("The user word list \"%1\" could not be read: %2. The check goes on without it.")
                     .arg(m_userWords.path(), error),
                 true);
        });
    }
    showState();
}

SpellCheckFrm::~SpellCheckFrm() = default;

SpellCheckFrm *SpellCheckFrm::showFor(ControlCore &core)
{
    QWidget *editor = core.surface().widget();
    SpellCheckFrm *dialog = editor->findChild<SpellCheckFrm *>(QString(), Qt::FindDirectChildrenOnly);
    if (!dialog || dialog->m_closeRequested) {
        dialog = new SpellCheckFrm(core, editor);
        dialog->setWindowFlag(Qt::Window);
        QTimer::singleShot(0, dialog, &SpellCheckFrm::startCheck);
    }
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

void SpellCheckFrm::startCheck()
{
    if (m_scanning)
        return;
    m_scanning = true;
    m_cancelRequested = false;
    m_stoppedAtWord = false;
    m_progress->setValue(0);
    showState();
    m_status->setText(QStringLiteral("Checking the document..."));
    Misspellings::Observer observer;
    observer.isCancelled = [this] { return m_cancelRequested; };
    observer.progress = [this](int counter, int total) {
        m_progress->setMaximum(std::max(total, 1));
        m_progress->setValue(counter);
        emit progressChanged(counter, total);
    };
    m_session.start(observer);
    m_scanning = false;
    if (m_closeRequested) {
        deleteLater();
        return;
    }
    showState();
}

void SpellCheckFrm::answer(SpellCheckSession::State (SpellCheckSession::*action)(const QString &))
{
    const QString replacement = m_changeTo->text();
    if (replacement.isEmpty())
        return;
    (m_session.*action)(replacement);
    showState();
}

void SpellCheckFrm::addWord()
{
    const QString word = m_session.currentWord();
    QString error;
    m_session.addToDictionary(&error);
    if (!error.isEmpty()) {
        tell(QStringLiteral("\"%1\" could not be added to the user word list \"%2\": %3. It is accepted until the "
                            "check ends.").arg(word, m_userWords.path(), error),
             true);
    }
    showState();
}

void SpellCheckFrm::showState()
{
    using State = SpellCheckSession::State;
    const State state = m_session.state();
    const bool atWord = state == State::Word;
    for (QWidget *w : std::initializer_list<QWidget *>{m_changeButton, m_changeAllButton, m_ignoreButton,
                                                      m_ignoreAllButton, m_addButton, m_changeTo, m_suggestions,
                                                      m_accuracy})
        w->setEnabled(atWord);
    m_cancelButton->setEnabled(m_scanning);
    m_progress->setVisible(m_scanning);

    if (atWord) {
        m_stoppedAtWord = true;
        int offset = 0;
        const QString sentence = m_session.context(&offset);
        const int length = static_cast<int>(m_session.currentWord().size());
        m_context->setText(sentence.left(offset).toHtmlEscaped() + QStringLiteral("<b><font color=\"#c00000\">")
                           + sentence.mid(offset, length).toHtmlEscaped() + QStringLiteral("</font></b>")
                           + sentence.mid(offset + length).toHtmlEscaped());
        m_status->setText(QStringLiteral("Misspelt word found."));
        fillSuggestions();
    } else {
        m_context->clear();
        m_suggestions->clear();
        m_changeTo->clear();
    }
    switch (state) {
    case State::Idle:
    case State::Checking:
    case State::Word:
        break;
    case State::Cancelled:
        m_status->setText(QStringLiteral("The check was cancelled."));
        break;
    case State::Done:
        m_status->setText(QStringLiteral("The check is complete."));
        tell(m_stoppedAtWord ? QStringLiteral("The spelling check is complete.")
                             : QStringLiteral("No misspelt words were found."),
             false);
        break;
    }
    if (state != State::Checking && state != State::Idle)
        emit stateChanged();
}

void SpellCheckFrm::fillSuggestions()
{
    const QString word = m_session.currentWord();
    const QStringList found = m_session.suggestions(static_cast<qint16>(m_accuracy->value()));
    m_suggestions->clear();
    m_suggestions->addItems(found);
    if (found.isEmpty()) {
        m_changeTo->setText(word);
    } else {
        m_suggestions->setCurrentRow(0);
        m_changeTo->setText(found.first());
    }
}

void SpellCheckFrm::tell(const QString &message, bool warning)
{
    m_core.services().messageBox(message, MessageButtons::OK,
                                 warning ? MessageIcon::Exclamation : MessageIcon::Information, title());
}

void SpellCheckFrm::closeEvent(QCloseEvent *event)
{
    // The stop flag ends a scan that is still running; the dialog goes once the scan has
    // returned, never from under it.
    threadState().cancelRequested = true;
    m_cancelRequested = true;
    m_closeRequested = true;
    if (m_scanning) {
        hide();
        event->ignore();
        return;
    }
    event->accept();
    deleteLater();
}

void SpellCheckFrm::reject()
{
    close();
}

} // namespace kvrtb
