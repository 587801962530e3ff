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

constexpr int nSmallestVersion = 2;
constexpr int nCaseSensitive = 1;
constexpr unsigned char nBlackBit = 1;
constexpr int nSmallestFilledSidePixels = 3;
constexpr QRgb nBlack = 0xff000000;
constexpr QRgb nWhite = 0xffffffff;

// The modules of a symbol, one byte each, in rows from the top.
struct Modules
{
    const unsigned char *pBytes;
    int nWidth;

    const unsigned char *row(int nRow) const { return pBytes + ptrdiff_t(nRow) * nWidth; }
    static bool isBlack(unsigned char nByte) { return (nByte & nBlackBit) != 0; }
};

// Draws each black module by itself on a white background. Needed for sides of one or two pixels: modules are
// then so small that QPainter colours other pixels than those whose centres they cover.
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

// Returns the first pixel of each module of a row or column, and the end after the last one. A pixel belongs
// to the module under its centre. No centre is on the border of two modules, because a symbol's width is odd.
QVector<int> moduleEdges(int nSide, int nWidth)
{
    QVector<int> edges;
    edges.reserve(nWidth + 1);
    for (qint64 i = 0; i <= nWidth; ++i)
        edges.append(int((2 * i * nSide + nWidth) / (2 * qint64(nWidth))));
    return edges;
}

// Sets the same pixels as paint() in less time: without antialiasing, QPainter colours the pixels whose
// centres a rectangle covers.
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
            std::fill(pLine + edges[x], pLine + edges[x + 1], Modules::isBlack(pRow[x]) ? nBlack : nWhite);
        for (int nLine = edges[y] + 1; nLine < edges[y + 1]; ++nLine)
            std::copy_n(pLine, nSide, reinterpret_cast<QRgb *>(pImage->scanLine(nLine)));
    }
}

QImage imageOf(const Modules &modules, int nSide)
{
    QImage image(nSide, nSide, QImage::Format_ARGB32);
    if (image.isNull())
        return image;
    if (nSide < nSmallestFilledSidePixels)
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
        QRcode_encodeString(strUtf8.c_str(), nSmallestVersion, QR_ECLEVEL_Q, QR_MODE_8, nCaseSensitive);
    if (!pSymbol) {
        qInfo("%d", errno);
        return QImage();
    }
    const Modules modules {pSymbol->data, std::max(pSymbol->width, 1)};
    QImage image = imageOf(modules, std::min(size.width(), size.height()));
    // Releases only the record, not by QRcode_free(): the modules stay allocated.
    ::operator delete(pSymbol);
    return image;
}

} // namespace ZyBase
