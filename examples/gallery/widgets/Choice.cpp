// SPDX-License-Identifier: 0BSD

#include "Choice.h"

#include "../Appearance.h"

#include <QPainter>
#include <QStyledItemDelegate>

namespace {

constexpr double distanceFromRight = 16;
constexpr double halfWidth = 4;
constexpr double penWidth = 1.6;

} // namespace

Choice::Choice(const QStringList &items, const char *name, QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(QLatin1String(name));
    setItemDelegate(new QStyledItemDelegate(this)); // the default delegate ignores the style sheet
    addItems(items);
}

void Choice::paintEvent(QPaintEvent *event)
{
    QComboBox::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(currentColours().quiet, penWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF tip(width() - distanceFromRight, height() / 2.0 + halfWidth / 2);
    const QPointF arrow[] = {tip - QPointF(halfWidth, halfWidth), tip, tip + QPointF(halfWidth, -halfWidth)};
    painter.drawPolyline(arrow, 3);
}
