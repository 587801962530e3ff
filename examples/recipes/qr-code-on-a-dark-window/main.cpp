// SPDX-License-Identifier: 0BSD
//
// Draws a dark window with a readable QR code to an image file.
//
//     recipe-qr-code-on-a-dark-window TEXT IMAGE.png [SIDE]    SIDE: of the window in pixels, 400 by default

#include "../PrintLine.h"
#include "QrCard.h"

#include <QFile>
#include <QPainter>

namespace {

constexpr int minFrameInPixels = 8; // the dark frame around the card

QImage darkWindow(const QImage &card, int side)
{
    QImage window(side, side, QImage::Format_RGB32);
    window.fill(QColor(0x1e, 0x1e, 0x1e));
    QPainter(&window).drawImage((side - card.width()) / 2, (side - card.height()) / 2, card);
    return window;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 3) {
        printLine(QStringLiteral("recipe-qr-code-on-a-dark-window TEXT IMAGE.png [SIDE]"));
        return 2;
    }
    const int side = argc > 3 ? QByteArray(argv[3]).toInt() : 400;
    const QImage card = qrCard(QString::fromLocal8Bit(argv[1]), side - 2 * minFrameInPixels);
    if (card.isNull()) {
        printLine(QStringLiteral("the code does not fit: show the string instead"));
        return 1;
    }
    if (!darkWindow(card, side).save(QFile::decodeName(argv[2])))
        return 1;
    printLine(QStringLiteral("a card of %1 pixels in a window of %2").arg(card.width()).arg(side));
    return 0;
}
