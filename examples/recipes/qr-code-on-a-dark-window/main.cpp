// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Draws a dark window with a QR code that scans, into a file.
//
//     recipe-qr-code-on-a-dark-window TEXT IMAGE.png [SIDE]    SIDE: pixels of the window, 400 by default

#include "QrCard.h"

#include <QFile>
#include <QPainter>
#include <QTextStream>

namespace {

constexpr int frame = 8; // pixels of the window that stay dark around the card at least

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
    QTextStream out(stdout);
    if (argc < 3) {
        out << "recipe-qr-code-on-a-dark-window TEXT IMAGE.png [SIDE]\n";
        return 2;
    }
    const int side = argc > 3 ? QByteArray(argv[3]).toInt() : 400;
    const QImage card = qrCard(QString::fromLocal8Bit(argv[1]), side - 2 * frame);
    if (card.isNull()) {
        out << "no code of this text has room here: show the text instead\n";
        return 1;
    }
    if (!darkWindow(card, side).save(QFile::decodeName(argv[2])))
        return 1;
    out << "a card of " << card.width() << " pixels in a window of " << side << '\n';
    return 0;
}
