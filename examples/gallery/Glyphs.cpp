// SPDX-License-Identifier: 0BSD

#include "Glyphs.h"

#include "Appearance.h"

#include <QPainter>
#include <QPolygonF>

namespace {

constexpr int side = 20;
constexpr int pixelsPerUnit = 2;
constexpr double strokeWidth = 1.7;
constexpr double cornerRadius = 4;
constexpr QRgb iconColour = 0xff4153c9;

using Strokes = QVector<QPolygonF>;

QPolygonF box(double left, double top, double right, double bottom)
{
    return QPolygonF({{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}});
}

QPolygonF line(const QVector<QPointF> &points)
{
    return QPolygonF(points);
}

Strokes strokesOf(Glyph glyph)
{
    switch (glyph) {
    case Glyph::Log:
        return {line({{3, 5}, {17, 5}}), line({{3, 10}, {13, 10}}), line({{3, 15}, {15, 15}})};
    case Glyph::Request:
        return {line({{3, 7}, {17, 7}, {13, 3}}), line({{17, 13}, {3, 13}, {7, 17}})};
    case Glyph::Download:
        return {line({{10, 3}, {10, 13}}), line({{6, 9}, {10, 13}, {14, 9}}),
                line({{3, 14}, {3, 17}, {17, 17}, {17, 14}})};
    case Glyph::Archive:
        return {box(3, 3, 17, 7), line({{4, 7}, {4, 17}, {16, 17}, {16, 7}}), line({{8, 11}, {12, 11}})};
    case Glyph::QrCode:
        return {box(3, 3, 8, 8),
                box(12, 3, 17, 8),
                box(3, 12, 8, 17),
                line({{12, 12}, {12, 14}}),
                line({{12, 17}, {14, 17}}),
                line({{17, 12}, {15, 12}}),
                line({{17, 15}, {17, 17}})};
    case Glyph::Machine:
        return {box(2, 3, 18, 13), line({{10, 13}, {10, 17}}), line({{6, 17}, {14, 17}})};
    case Glyph::Reports:
        return {line({{3, 17}, {17, 17}}), line({{5, 13}, {5, 10}}), line({{10, 13}, {10, 3}}),
                line({{15, 13}, {15, 7}})};
    }
    return {};
}

QPixmap draw(const Strokes &strokes, const QColor &colour, const QColor &background = Qt::transparent)
{
    QPixmap pixmap(side * pixelsPerUnit, side * pixelsPerUnit);
    pixmap.setDevicePixelRatio(pixelsPerUnit);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background);
    painter.drawRoundedRect(0, 0, side, side, cornerRadius, cornerRadius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const QPolygonF &stroke : strokes)
        painter.drawPolyline(stroke);
    return pixmap;
}

} // namespace

QIcon glyphIcon(Glyph glyph)
{
    const Strokes strokes = strokesOf(glyph);
    QIcon icon(draw(strokes, currentColours().quiet));
    icon.addPixmap(draw(strokes, currentColours().accent), QIcon::Selected);
    return icon;
}

QIcon applicationIcon()
{
    const Strokes letter {line({{6, 5}, {14, 5}, {6, 15}, {14, 15}})};
    return QIcon(draw(letter, Qt::white, QColor(iconColour)));
}
