// SPDX-License-Identifier: 0BSD

#include "QrCard.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QPainter>
#include <QSize>

namespace {

constexpr int quietZoneInModules = 4; // the white margin on each side
constexpr int minModuleInPixels = 3; // cameras do not read smaller modules
constexpr int maxWidthInModules = 177; // the largest symbol
constexpr int finderInModules = 7; // the pattern in three corners

QImage symbolOf(const QString &text, int sideInPixels)
{
    return ZyBase::CSystemUtils::GenerateQRCode(text, QSize(sideInPixels, sideInPixels));
}

bool differs(const QImage &image, int x, int y)
{
    return image.pixel(x, y) != image.pixel(x - 1, y);
}

// Returns the width of the symbol in modules, or 0 if there is none. In the seventh row the modules between
// the two finder patterns alternate. So all modules except thirteen begin with a change of colour.
int widthInModules(const QString &text)
{
    const QImage image = symbolOf(text, 2 * maxWidthInModules);
    if (image.isNull())
        return 0;
    int finderInPixels = 1;
    while (!differs(image, finderInPixels, 0))
        ++finderInPixels;
    const int seventhRow = finderInPixels * (2 * finderInModules - 1) / (2 * finderInModules);
    int changes = 0;
    for (int x = 1; x < image.width(); ++x)
        changes += differs(image, x, seventhRow) ? 1 : 0;
    return changes + 2 * finderInModules - 1;
}

} // namespace

QImage qrCard(const QString &text, int maxSideInPixels)
{
    const int width = widthInModules(text);
    const int cardWidth = width + 2 * quietZoneInModules;
    const int moduleInPixels = maxSideInPixels / cardWidth;
    if (width == 0 || moduleInPixels < minModuleInPixels)
        return QImage();
    const int margin = quietZoneInModules * moduleInPixels;
    QImage card(cardWidth * moduleInPixels, cardWidth * moduleInPixels, QImage::Format_RGB32);
    card.fill(Qt::white);
    QPainter(&card).drawImage(margin, margin, symbolOf(text, width * moduleInPixels));
    return card;
}
