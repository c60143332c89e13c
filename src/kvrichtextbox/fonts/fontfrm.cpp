#include "fonts/fontfrm.h"

#include "core/platformservices.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleValidator>
#include <QFontComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace kvrtb {

namespace {

const int kSizes[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72};

QIcon swatch(const QColor &colour)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(colour.isValid() ? colour : QColor(Qt::black));
    return QIcon(pixmap);
}

} // namespace

FontFrm::FontFrm(PlatformServices &services, const FontChoice &initial, QWidget *parent)
    : QDialog(parent), m_services(services), m_choice(initial)
{
    setObjectName(QStringLiteral("FontFrm"));
    setWindowTitle(QStringLiteral("Font"));

    m_family = new QFontComboBox;
    m_family->setObjectName(QStringLiteral("FontCombo"));
    m_style = new QListWidget;
    m_style->setObjectName(QStringLiteral("StyleList"));
    m_style->setAccessibleName(QStringLiteral("Font style"));
    m_style->addItems(FontChoice::styleNames());
    m_style->setMaximumHeight(m_style->sizeHintForRow(0) * 4 + 2 * m_style->frameWidth() + 4);
    m_size = new QComboBox;
    m_size->setObjectName(QStringLiteral("SizeCombo"));
    m_size->setEditable(true);
    m_size->setInsertPolicy(QComboBox::NoInsert);
    for (const int size : kSizes)
        m_size->addItem(QString::number(size));
    auto *validator = new QDoubleValidator(1, 1638, 1, m_size);
    validator->setNotation(QDoubleValidator::StandardNotation);
    m_size->setValidator(validator);

    m_strike = new QCheckBox(QStringLiteral("Stri&keout"));
    m_strike->setObjectName(QStringLiteral("StrikeCheck"));
    m_underline = new QCheckBox(QStringLiteral("&Underline"));
    m_underline->setObjectName(QStringLiteral("UnderlineCheck"));
    m_colour = new QPushButton(QStringLiteral("&Color..."));
    m_colour->setObjectName(QStringLiteral("ColorButton"));
    m_colour->setAutoDefault(false);

    m_sample = new QLabel(QStringLiteral("AaBbYyZz"));
    m_sample->setObjectName(QStringLiteral("SampleLB"));
    m_sample->setAlignment(Qt::AlignCenter);
    m_sample->setMinimumSize(220, 64);
    m_sample->setAutoFillBackground(true);
    QPalette samplePalette = m_sample->palette();
    samplePalette.setColor(QPalette::Window, Qt::white);
    m_sample->setPalette(samplePalette);

    auto *grid = new QGridLayout;
    grid->addWidget(new QLabel(QStringLiteral("&Font:")), 0, 0);
    grid->addWidget(new QLabel(QStringLiteral("Font st&yle:")), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("&Size:")), 0, 2);
    grid->addWidget(m_family, 1, 0, Qt::AlignTop);
    grid->addWidget(m_style, 1, 1);
    grid->addWidget(m_size, 1, 2, Qt::AlignTop);
    static_cast<QLabel *>(grid->itemAtPosition(0, 0)->widget())->setBuddy(m_family);
    static_cast<QLabel *>(grid->itemAtPosition(0, 1)->widget())->setBuddy(m_style);
    static_cast<QLabel *>(grid->itemAtPosition(0, 2)->widget())->setBuddy(m_size);

    auto *effects = new QGroupBox(QStringLiteral("Effects"));
    auto *effectsLayout = new QVBoxLayout(effects);
    effectsLayout->addWidget(m_strike);
    effectsLayout->addWidget(m_underline);
    effectsLayout->addWidget(m_colour);
    auto *sampleFrame = new QGroupBox(QStringLiteral("Sample"));
    auto *sampleLayout = new QVBoxLayout(sampleFrame);
    sampleLayout->addWidget(m_sample);
    auto *lower = new QHBoxLayout;
    lower->addWidget(effects);
    lower->addWidget(sampleFrame, 1);

    auto *buttons = new QDialogButtonBox;
    QPushButton *ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("OKButton"));
    QPushButton *cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("CancelButton"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(lower);
    layout->addWidget(buttons);

    display(initial);

    connect(m_family, &QFontComboBox::currentFontChanged, this, [this](const QFont &font) {
        m_choice.family = font.family();
        updateSample();
    });
    connect(m_style, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            m_choice.setStyleName(FontChoice::styleNames().at(row));
        updateSample();
    });
    connect(m_size, &QComboBox::currentTextChanged, this, &FontFrm::sizeEdited);
    connect(m_strike, &QCheckBox::toggled, this, [this](bool on) {
        m_choice.strikeThrough = on;
        updateSample();
    });
    connect(m_underline, &QCheckBox::toggled, this, [this](bool on) {
        m_choice.underline = on;
        updateSample();
    });
    connect(m_colour, &QPushButton::clicked, this, &FontFrm::chooseColour);
}

FontFrm::~FontFrm() = default;

void FontFrm::display(const FontChoice &choice)
{
    const QSignalBlocker blockFamily(m_family);
    const QSignalBlocker blockStyle(m_style);
    const QSignalBlocker blockSize(m_size);
    m_family->setCurrentFont(QFont(choice.family));
    // A family the desktop does not have stays the choice; the box shows its nearest match.
    m_family->setEditText(choice.family);
    m_style->setCurrentRow(int(FontChoice::styleNames().indexOf(choice.styleName())));
    m_size->setEditText(QString::number(choice.size));
    m_strike->setChecked(choice.strikeThrough);
    m_underline->setChecked(choice.underline);
    updateSample();
}

void FontFrm::sizeEdited(const QString &text)
{
    bool ok = false;
    const double size = QLocale().toDouble(text, &ok);
    const double plain = ok ? size : text.toDouble(&ok);
    if (ok && plain >= 1 && plain <= 1638) {
        m_choice.size = plain;
        updateSample();
    }
}

void FontFrm::chooseColour()
{
    const ColourDialogResult result = m_services.colourDialog(m_choice.colour.value_or(0));
    if (!result.accepted)
        return;
    m_choice.colour = result.colour;
    updateSample();
}

void FontFrm::updateSample()
{
    QFont font = m_choice.toFont();
    // The sample shows the look, within the room it has.
    font.setPointSizeF(qMin(m_choice.size, 36.0));
    m_sample->setFont(font);
    QPalette palette = m_sample->palette();
    const QColor colour = m_choice.colour ? toQColor(*m_choice.colour) : QColor(Qt::black);
    palette.setColor(QPalette::WindowText, colour.isValid() ? colour : QColor(Qt::black));
    m_sample->setPalette(palette);
    m_colour->setIcon(swatch(colour));
}

} // namespace kvrtb
