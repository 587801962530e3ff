// SPDX-License-Identifier: 0BSD

#include "QrCodePage.h"

#include "../widgets/Card.h"
#include "../widgets/Pill.h"
#include "../widgets/controls.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QSlider>

namespace {

constexpr int minSide = 120;
constexpr int initialSide = 260;
constexpr int maxSide = 320;
constexpr int step = 20;
constexpr int maxBytes = 1663;

//! [code]
// Scanners need a margin of four modules; the side of the smallest symbol has 25.
int marginOf(int side)
{
    return side * 4 / 25;
}
//! [code]

} // namespace

QrCodePage::QrCodePage(QWidget *parent)
    : Page(tr("QR code"),
           tr("Creates an image without a margin. The application adds the white margin for scanners."),
           "ZyBase/platform/CSystemUtils.h", "QrCodePage.cpp", parent)
    , m_text(field(QStringLiteral("https://www.example.org"), tr("Text of the code"), "qrText"))
    , m_state(new Pill(QString(), "qrState"))
    , m_size(new QSlider(Qt::Horizontal))
    , m_sizeText(quiet(QString()))
    , m_code(new QLabel)
{
    m_sizeText->setObjectName(QStringLiteral("qrSizeText"));
    m_size->setObjectName(QStringLiteral("qrSize"));
    m_size->setRange(minSide / step, maxSide / step);
    m_size->setPageStep(1);
    m_size->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding); // as high as the text field
    m_size->setValue(initialSide / step);

    fillChoicesCard(addCard());
    fillCodeCard(addCard(QString(), 1));

    connect(m_text, &QLineEdit::textChanged, this, &QrCodePage::clearCodes);
    connect(m_size, &QSlider::valueChanged, this, &QrCodePage::showCode);
    showCode();
}

void QrCodePage::fillChoicesCard(Card *card)
{
    QHBoxLayout *const choices = card->addRow();
    choices->addLayout(labelled(tr("&Text"), m_text), 2);
    choices->addLayout(labelled(tr("Si&ze"), m_size), 1);
    QHBoxLayout *const states = card->addRow();
    states->addWidget(m_state);
    states->addStretch(1);
    states->addWidget(m_sizeText);
}

void QrCodePage::fillCodeCard(Card *card)
{
    m_code->setObjectName(QStringLiteral("qrCode"));
    m_code->setAccessibleName(tr("QR code"));
    m_code->setAlignment(Qt::AlignCenter);
    card->column()->addWidget(m_code, 1, Qt::AlignCenter);
}

void QrCodePage::clearCodes()
{
    m_codes.clear();
    showCode();
}

//! [code]
// The label has a white background in the dark theme too, because scanners need it.
void QrCodePage::showCode()
{
    const int side = m_size->value() * step;
    const int sideWithMargin = side + 2 * marginOf(side);
    const QImage code = codeOf(side);
    m_code->setVisible(!code.isNull());
    m_code->setPixmap(QPixmap::fromImage(code));
    m_code->setFixedSize(sideWithMargin, sideWithMargin);
    m_sizeText->setText(tr("%1 × %1 pixels, with margin %2 × %2").arg(side).arg(sideWithMargin));
    showState(!code.isNull());
}

// GenerateQRCode() leaks some memory for each image, so images are kept.
QImage QrCodePage::codeOf(int side)
{
    if (!m_codes.contains(side))
        m_codes.insert(side, ZyBase::CSystemUtils::GenerateQRCode(m_text->text(), QSize(side, side)));
    return m_codes.value(side);
}
//! [code]

void QrCodePage::showState(bool hasCode)
{
    const int size = m_text->text().toUtf8().size();
    if (hasCode)
        m_state->setState(Pill::Good, tr("%1 of at most %2 bytes").arg(size).arg(maxBytes));
    else if (size == 0)
        m_state->setState(Pill::Neutral, tr("Enter a text"));
    else
        m_state->setState(Pill::Bad, tr("Too long: %1 bytes").arg(size));
}
