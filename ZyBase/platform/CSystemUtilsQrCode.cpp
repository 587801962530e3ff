// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CSystemUtils.h"

#include <QPainter>
#include <QVector>

#include <qrencode.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <new>
#include <string>

namespace ZyBase {

namespace {

constexpr int s_nSmallestVersion = 2;
constexpr int s_nCaseSensitive = 1;
constexpr unsigned char s_nBlackBit = 1;
constexpr int s_nSmallestFilledSide = 3; // pixels
constexpr QRgb s_black = 0xff000000;
constexpr QRgb s_white = 0xffffffff;

// The modules of a symbol: a byte each, in rows from the top.
struct Modules
{
    const unsigned char *pBytes;
    int nWidth;

    const unsigned char *row(int nRow) const { return pBytes + ptrdiff_t(nRow) * nWidth; }
    static bool isBlack(unsigned char nByte) { return (nByte & s_nBlackBit) != 0; }
};

// White, then each black module by itself. What Qt makes of modules a small part of a pixel wide is its
// own affair.
void paint(QImage *pImage, const Modules &modules)
{
    const int nSide = pImage->width();
    const double dScale = double(nSide) / modules.nWidth;
    QPainter painter(pImage);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRect(0, 0, nSide, nSide);
    painter.setBrush(Qt::black);
    for (int y = 0; y < modules.nWidth; ++y) {
        for (int x = 0; x < modules.nWidth; ++x) {
            const QRectF rect(dScale * x, dScale * y, dScale, dScale);
            if (Modules::isBlack(modules.row(y)[x]))
                painter.drawRects(&rect, 1);
        }
    }
}

// The first pixel of each module of a row or column, and the end behind the last: a pixel belongs to the
// module under its centre. No centre lies between two modules, since a symbol's width is odd.
QVector<int> moduleEdges(int nSide, int nWidth)
{
    QVector<int> edges;
    edges.reserve(nWidth + 1);
    for (qint64 i = 0; i <= nWidth; ++i)
        edges.append(int((2 * i * nSide + nWidth) / (2 * qint64(nWidth))));
    return edges;
}

// Gives the pixels of paint() in less time: without antialiasing, QPainter colours the pixels whose centres
// a rectangle covers.
void fill(QImage *pImage, const Modules &modules)
{
    const int nSide = pImage->width();
    const QVector<int> edges = moduleEdges(nSide, modules.nWidth);
    for (int y = 0; y < modules.nWidth; ++y) {
        if (edges[y] == edges[y + 1])
            continue;
        auto *const pLine = reinterpret_cast<QRgb *>(pImage->scanLine(edges[y]));
        const unsigned char *const pRow = modules.row(y);
        for (int x = 0; x < modules.nWidth; ++x)
            std::fill(pLine + edges[x], pLine + edges[x + 1], Modules::isBlack(pRow[x]) ? s_black : s_white);
        for (int nLine = edges[y] + 1; nLine < edges[y + 1]; ++nLine)
            std::copy_n(pLine, nSide, reinterpret_cast<QRgb *>(pImage->scanLine(nLine)));
    }
}

QImage imageOf(const Modules &modules, int nSide)
{
    QImage image(nSide, nSide, QImage::Format_ARGB32);
    if (image.isNull())
        return image;
    if (nSide < s_nSmallestFilledSide)
        paint(&image, modules);
    else
        fill(&image, modules);
    return image;
}

} // namespace

QImage CSystemUtils::GenerateQRCode(const QString &strText, const QSize &size)
{
    if (strText.isEmpty())
        return QImage();
    const std::string strUtf8 = strText.toStdString();
    QRcode *const pSymbol =
        QRcode_encodeString(strUtf8.c_str(), s_nSmallestVersion, QR_ECLEVEL_Q, QR_MODE_8, s_nCaseSensitive);
    if (!pSymbol) {
        qInfo("%d", errno);
        return QImage();
    }
    const Modules modules {pSymbol->data, std::max(pSymbol->width, 1)};
    QImage image = imageOf(modules, std::min(size.width(), size.height()));
    // The record alone, and not by QRcode_free(): the modules stay allocated.
    ::operator delete(pSymbol);
    return image;
}

} // namespace ZyBase
