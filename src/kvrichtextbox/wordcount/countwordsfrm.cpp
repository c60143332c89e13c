#include "wordcount/countwordsfrm.h"

#include <QAbstractListModel>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kvrtb {

/// The counted tokens as list entries, made on demand: a large document lists millions.
class WordCountListModel : public QAbstractListModel {
public:
    using QAbstractListModel::QAbstractListModel;

    void setResult(WordCountResult result)
    {
        beginResetModel();
        m_result = std::move(result);
        endResetModel();
    }
    const WordCountResult &result() const { return m_result; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : m_result.count();
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid() || index.row() >= m_result.count() || role != Qt::DisplayRole)
            return QVariant();
        return m_result.tokenText(index.row());
    }

private:
    WordCountResult m_result;
};

namespace {

struct ModeOption {
    WordCountMode mode;
    const char *name;
    const char *caption;
    const char *countCaption;
};

constexpr ModeOption kOptions[] = {
    {WordCountMode::WordsOnly, "WordsOnlyOpt", "&Words only", "Words"},
    {WordCountMode::WordsAndNumbers, "WordsNumsOpt", "Words &and numbers", "Words and numbers"},
    {WordCountMode::Numbers, "NumsOpt", "&Numbers", "Numbers"},
    {WordCountMode::EmailAddresses, "EmailOpt", "&E-mail addresses", "E-mail addresses"},
    {WordCountMode::WebAddresses, "URLOpt", "We&b addresses", "Web addresses"},
};

QLabel *makeLabel(const QString &text, Qt::Alignment alignment = Qt::AlignLeft)
{
    auto *label = new QLabel(text);
    label->setAlignment(alignment | Qt::AlignVCenter);
    return label;
}

} // namespace

QString readingTimeText(int seconds)
{
    if (seconds <= 0)
        return QStringLiteral("0 min");
    if (seconds < 60)
        return QStringLiteral("< 1 min");
    return QStringLiteral("%1 min").arg((seconds + 30) / 60);
}

CountWordsFrm::CountWordsFrm(WordCount &area, QWidget *parent) : QDialog(parent), m_area(area)
{
    setObjectName(QStringLiteral("CountWordsFrm"));
    setWindowTitle(QStringLiteral("Word Count"));

    auto *optionsFrame = new QGroupBox(QStringLiteral("Word Count Options"));
    auto *optionsLayout = new QVBoxLayout(optionsFrame);
    m_options = new QButtonGroup(this);
    for (const ModeOption &option : kOptions) {
        auto *button = new QRadioButton(QString::fromUtf8(option.caption));
        button->setObjectName(QString::fromLatin1(option.name));
        m_options->addButton(button, int(option.mode));
        optionsLayout->addWidget(button);
    }
    optionsLayout->addStretch();
    m_options->button(int(WordCountMode::WordsOnly))->setChecked(true);

    auto *resultsFrame = new QGroupBox(QStringLiteral("Results"));
    auto *resultsLayout = new QVBoxLayout(resultsFrame);
    m_countLabel = new QLabel;
    m_countLabel->setObjectName(QStringLiteral("WordCountLabel"));
    QFont bold = m_countLabel->font();
    bold.setBold(true);
    m_countLabel->setFont(bold);
    m_model = new WordCountListModel(this);
    m_list = new QListView;
    m_list->setObjectName(QStringLiteral("WCList"));
    m_list->setAccessibleName(QStringLiteral("Words counted"));
    m_list->setModel(m_model);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_linkButton = new QPushButton;
    m_linkButton->setObjectName(QStringLiteral("LinkCmd"));
    m_linkButton->setAutoDefault(false);
    resultsLayout->addWidget(m_countLabel);
    resultsLayout->addWidget(m_list, 1);
    resultsLayout->addWidget(m_linkButton);

    auto *statsFrame = new QGroupBox(QStringLiteral("Statistics"));
    m_statsGrid = new QGridLayout(statsFrame);

    // The separator pattern the count cuts the text with, kept as the dialog's hidden text.
    m_separatorPattern = new QLineEdit(WordCounter::separatorPatternText(), this);
    m_separatorPattern->setObjectName(QStringLiteral("Reg1"));
    m_separatorPattern->hide();

    auto *buttons = new QDialogButtonBox;
    QPushButton *close = buttons->addButton(QStringLiteral("Close"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("CloseButton"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *left = new QVBoxLayout;
    left->addWidget(optionsFrame);
    left->addWidget(statsFrame);
    auto *columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addWidget(resultsFrame, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(columns, 1);
    layout->addWidget(buttons);

    connect(m_options, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
        if (checked) {
            m_mode = WordCountMode(id);
            recount();
        }
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &CountWordsFrm::entrySelected);
    connect(m_list, &QListView::doubleClicked, this, [this](const QModelIndex &index) {
        if (index.isValid())
            m_area.selectToken(m_model->result().token(index.row()));
    });
    connect(m_linkButton, &QPushButton::clicked, this, &CountWordsFrm::openSelectedAddress);

    showStatistics();
    recount();
    resize(560, 420);
}

CountWordsFrm::~CountWordsFrm() = default;

const WordCountResult &CountWordsFrm::result() const
{
    return m_model->result();
}

void CountWordsFrm::setMode(WordCountMode mode)
{
    if (QAbstractButton *button = m_options->button(int(mode)))
        button->setChecked(true);
}

void CountWordsFrm::recount()
{
    m_model->setResult(m_area.count(m_mode));
    for (const ModeOption &option : kOptions) {
        if (option.mode == m_mode)
            m_countLabel->setText(QStringLiteral("%1: %2").arg(QString::fromUtf8(option.countCaption))
                                      .arg(m_model->result().count()));
    }
    const bool addresses = m_mode == WordCountMode::EmailAddresses || m_mode == WordCountMode::WebAddresses;
    m_linkButton->setVisible(addresses);
    m_linkButton->setEnabled(false);
    m_linkButton->setText(WordCount::linkCaption(m_mode, QString()));
}

void CountWordsFrm::showStatistics()
{
    const DocumentStatistics stats = m_area.statistics();
    const auto row = [](const TextStatistics &s) {
        return QList<QString>{QString::number(s.words), QString::number(s.characters),
                              QString::number(s.charactersNoSpaces), QString::number(s.sentences),
                              QString::number(s.paragraphs), QString::number(s.lines),
                              readingTimeText(s.readingSeconds)};
    };
    const QStringList names{QStringLiteral("Words:"), QStringLiteral("Characters (with spaces):"),
                            QStringLiteral("Characters (no spaces):"), QStringLiteral("Sentences:"),
                            QStringLiteral("Paragraphs:"), QStringLiteral("Lines:"),
                            QStringLiteral("Reading time:")};
    const QList<QString> document = row(stats.document);
    const QList<QString> selection = row(stats.selection);
    int column = 1;
    if (stats.hasSelection) {
        m_statsGrid->addWidget(makeLabel(QStringLiteral("Selection"), Qt::AlignRight), 0, column++);
        m_statsGrid->addWidget(makeLabel(QStringLiteral("Document"), Qt::AlignRight), 0, column);
    }
    for (int i = 0; i < names.size(); ++i) {
        m_statsGrid->addWidget(makeLabel(names.at(i)), i + 1, 0);
        QLabel *value = nullptr;
        if (stats.hasSelection) {
            QLabel *selected = makeLabel(selection.at(i), Qt::AlignRight);
            selected->setObjectName(QStringLiteral("SelectionStat%1").arg(i));
            m_statsGrid->addWidget(selected, i + 1, 1);
            value = makeLabel(document.at(i), Qt::AlignRight);
            m_statsGrid->addWidget(value, i + 1, 2);
        } else {
            value = makeLabel(document.at(i), Qt::AlignRight);
            m_statsGrid->addWidget(value, i + 1, 1);
        }
        value->setObjectName(QStringLiteral("DocumentStat%1").arg(i));
    }
}

QString CountWordsFrm::selectedEntry() const
{
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? m_model->result().tokenText(current.row()) : QString();
}

void CountWordsFrm::entrySelected()
{
    if (m_mode != WordCountMode::EmailAddresses && m_mode != WordCountMode::WebAddresses)
        return;
    const QString address = selectedEntry();
    m_linkButton->setText(WordCount::linkCaption(m_mode, address));
    m_linkButton->setEnabled(!address.isEmpty());
}

void CountWordsFrm::openSelectedAddress()
{
    const QString address = selectedEntry();
    if (address.isEmpty())
        return;
    m_area.click();
    m_area.openAddress(m_mode, address);
}

} // namespace kvrtb
