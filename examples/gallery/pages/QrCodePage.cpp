// SPDX-License-Identifier: LGPL-2.1-or-later

#include "QrCodePage.h"

#include "../widgets/Card.h"
#include "../widgets/Pill.h"
#include "../widgets/controls.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QSlider>

namespace {

constexpr int smallest = 120;
constexpr int first = 260;
constexpr int largest = 320;
constexpr int step = 20;
constexpr int mostBytes = 1663;
constexpr int choicesWidth = 272;

// Scanners want a margin of four modules; the smallest symbol has 25 of them to a side.
int marginOf(int side)
{
    return side * 4 / 25;
}

} // namespace

QrCodePage::QrCodePage(QWidget *parent)
    : Page(tr("QR code"),
           tr("A text as an image, from edge to edge: the white margin around it is the host's."),
           "ZyBase/platform/CSystemUtils.h", parent)
    , m_text(field(QStringLiteral("https://www.example.org"), tr("A text"), "qrText"))
    , m_state(new Pill(QString(), "qrState"))
    , m_size(new QSlider(Qt::Horizontal))
    , m_sizeText(hint(QString(), "qrSizeText"))
    , m_code(new QLabel)
{
    m_size->setObjectName(QStringLiteral("qrSize"));
    m_size->setRange(smallest / step, largest / step);
    m_size->setPageStep(1);
    m_size->setValue(first / step);

    auto *const row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(createChoices());
    row->addWidget(createStage(), 1);
    column()->addLayout(row, 1);

    connect(m_text, &QLineEdit::textChanged, this, &QrCodePage::forget);
    connect(m_size, &QSlider::valueChanged, this, &QrCodePage::showCode);
    showCode();
}

QWidget *QrCodePage::createChoices()
{
    auto *const card = new Card;
    card->setFixedWidth(choicesWidth);
    card->column()->addWidget(heading(tr("Text")));
    card->column()->addWidget(m_text);
    card->column()->addWidget(m_state);
    card->column()->addSpacing(12);
    card->column()->addWidget(heading(tr("Size")));
    card->column()->addWidget(m_size);
    card->column()->addWidget(m_sizeText);
    card->column()->addStretch(1);
    return card;
}

// The code's own ground is white in the dark as well: that is how scanners know it.
QWidget *QrCodePage::createStage()
{
    auto *const card = new Card;
    m_code->setObjectName(QStringLiteral("qrCode"));
    m_code->setAlignment(Qt::AlignCenter);
    card->column()->addWidget(m_code, 0, Qt::AlignCenter);
    return card;
}

void QrCodePage::forget()
{
    m_codes.clear();
    showCode();
}

void QrCodePage::showCode()
{
    const int side = m_size->value() * step;
    const int ground = side + 2 * marginOf(side);
    const QImage code = codeOf(side);
    m_code->setVisible(!code.isNull());
    m_code->setPixmap(QPixmap::fromImage(code));
    m_code->setFixedSize(ground, ground);
    m_sizeText->setText(tr("%1 × %1 pixels\nwith its margin %2 × %2").arg(side).arg(ground));
    tellState(!code.isNull());
}

void QrCodePage::tellState(bool hasCode)
{
    const int size = m_text->text().toUtf8().size();
    if (hasCode)
        m_state->tell(Pill::Good, tr("%1 of at most %2 bytes").arg(size).arg(mostBytes));
    else if (size == 0)
        m_state->tell(Pill::Neutral, tr("No text, no code"));
    else
        m_state->tell(Pill::Bad, tr("Too long: %1 bytes").arg(size));
}

// Each image that is made takes memory for good, so one that is shown again is kept.
QImage QrCodePage::codeOf(int side)
{
    if (!m_codes.contains(side))
        m_codes.insert(side, ZyBase::CSystemUtils::GenerateQRCode(m_text->text(), QSize(side, side)));
    return m_codes.value(side);
}
