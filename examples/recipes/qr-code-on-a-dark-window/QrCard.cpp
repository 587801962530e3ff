// SPDX-License-Identifier: LGPL-2.1-or-later

#include "QrCard.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QPainter>
#include <QSize>

namespace {

constexpr int quietZone = 4; // modules of white on each side of the symbol
constexpr int smallestModule = 3; // pixels that a camera can tell apart
constexpr int largestWidth = 177; // modules of the largest symbol
constexpr int finderWidth = 7; // modules of the pattern in three of the corners

QImage symbolOf(const QString &text, int side)
{
    return ZyBase::CSystemUtils::GenerateQRCode(text, QSize(side, side));
}

bool differs(const QImage &image, int x, int y)
{
    return image.pixel(x, y) != image.pixel(x - 1, y);
}

// How many modules wide the symbol of the text is; 0 where it has none. The seventh row tells: between two
// finders its modules alternate, so all but thirteen of them begin with a change of colour.
int widthInModules(const QString &text)
{
    const QImage image = symbolOf(text, 2 * largestWidth);
    if (image.isNull())
        return 0;
    int finder = 1;
    while (!differs(image, finder, 0))
        ++finder;
    const int seventhRow = finder * (2 * finderWidth - 1) / (2 * finderWidth);
    int changes = 0;
    for (int x = 1; x < image.width(); ++x)
        changes += differs(image, x, seventhRow) ? 1 : 0;
    return changes + 2 * finderWidth - 1;
}

} // namespace

QImage qrCard(const QString &text, int side)
{
    const int width = widthInModules(text);
    const int pixels = side / (width + 2 * quietZone); // a module
    if (width == 0 || pixels < smallestModule)
        return QImage();
    const int cardSide = (width + 2 * quietZone) * pixels;
    QImage card(cardSide, cardSide, QImage::Format_RGB32);
    card.fill(Qt::white);
    QPainter(&card).drawImage(quietZone * pixels, quietZone * pixels, symbolOf(text, width * pixels));
    return card;
}
