#include "spelling/randomfrm.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvrtb {

RandomFrm::RandomFrm(std::function<RandomWordEntry()> pick, std::function<void()> onClick, QWidget *parent)
    : QDialog(parent), m_pick(std::move(pick)), m_onClick(std::move(onClick))
{
    if (!m_pick)
        m_pick = [] { return RandomWordEntry::pick(); };
    setObjectName(QStringLiteral("RandomFrm"));
    setWindowTitle(QStringLiteral("Random Word"));

    m_word = new QLabel;
    m_word->setObjectName(QStringLiteral("WordLB"));
    m_word->setAlignment(Qt::AlignCenter);
    m_word->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont big = m_word->font();
    big.setPointSizeF(big.pointSizeF() * 1.8);
    big.setBold(true);
    m_word->setFont(big);

    m_synonyms = new QListWidget;
    m_synonyms->setObjectName(QStringLiteral("SynoList"));
    m_synonyms->setAccessibleName(QStringLiteral("Synonyms"));

    auto *another = new QPushButton(QStringLiteral("&Another Word"));
    another->setObjectName(QStringLiteral("NewWordButton"));
    m_copy = new QPushButton(QStringLiteral("&Copy Selected Synonym"));
    m_copy->setObjectName(QStringLiteral("CopyButton"));
    m_copy->setAutoDefault(false);
    auto *buttons = new QDialogButtonBox;
    QPushButton *close = buttons->addButton(QStringLiteral("Close"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("CloseButton"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *actions = new QHBoxLayout;
    actions->addWidget(another);
    actions->addWidget(m_copy);
    actions->addStretch();
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_word);
    layout->addWidget(new QLabel(QStringLiteral("Synonyms:")));
    layout->addWidget(m_synonyms, 1);
    layout->addLayout(actions);
    layout->addWidget(buttons);

    connect(another, &QPushButton::clicked, this, [this] {
        if (m_onClick)
            m_onClick();
        newWord();
    });
    connect(m_copy, &QPushButton::clicked, this, &RandomFrm::copySelected);
    connect(m_synonyms, &QListWidget::itemSelectionChanged, this, [this] {
        m_copy->setEnabled(!m_synonyms->selectedItems().isEmpty() && !m_entry.synonyms.isEmpty());
    });

    newWord();
    resize(360, 340);
}

RandomFrm::~RandomFrm() = default;

void RandomFrm::newWord()
{
    m_entry = m_pick();
    m_word->setText(m_entry.word.isEmpty() ? QStringLiteral("(the dictionary has no words)") : m_entry.word);
    m_synonyms->clear();
    if (m_entry.synonyms.isEmpty()) {
        auto *item = new QListWidgetItem(m_entry.message.isEmpty() ? QStringLiteral("No synonyms found.")
                                                                   : m_entry.message);
        item->setFlags(Qt::NoItemFlags);
        m_synonyms->addItem(item);
    } else {
        m_synonyms->addItems(m_entry.synonyms);
    }
    m_copy->setEnabled(false);
}

void RandomFrm::copySelected()
{
    const QList<QListWidgetItem *> selected = m_synonyms->selectedItems();
    if (selected.isEmpty() || m_entry.synonyms.isEmpty())
        return;
    if (m_onClick)
        m_onClick();
    QGuiApplication::clipboard()->setText(selected.first()->text());
}

} // namespace kvrtb
