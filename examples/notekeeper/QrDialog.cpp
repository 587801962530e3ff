// SPDX-License-Identifier: 0BSD

#include "QrDialog.h"

#include <QrCard.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int maxSide = 480; // in pixels of the window, which can be several pixels of the screen

} // namespace

QrDialog::QrDialog(const QString &note, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("QR Code"));
    setAttribute(Qt::WA_DeleteOnClose);

    const qreal ratio = devicePixelRatioF();
    QImage card = qrCard(note, int(maxSide * ratio));
    card.setDevicePixelRatio(ratio);

    auto *const code = new QLabel;
    code->setAlignment(Qt::AlignCenter);
    code->setMargin(fontMetrics().height());
    if (card.isNull()) {
        code->setText(note.isEmpty() ? tr("The note is empty.") : tr("The note is too long for a QR code."));
    } else {
        code->setPixmap(QPixmap::fromImage(card));
        code->setAccessibleName(tr("QR code of the note"));
    }

    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(code);
    layout->addWidget(buttons);
}
