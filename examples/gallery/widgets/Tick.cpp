// SPDX-License-Identifier: 0BSD

#include "Tick.h"

#include "../Appearance.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace {

constexpr double penWidth = 1.8;

} // namespace

Tick::Tick(const QString &text, const char *name, QWidget *parent)
    : QCheckBox(text, parent)
{
    setObjectName(QLatin1String(name));
}

void Tick::paintEvent(QPaintEvent *event)
{
    QCheckBox::paintEvent(event);
    if (!isChecked())
        return;
    QStyleOptionButton option;
    initStyleOption(&option);
    const QRectF box = style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, this);
    const QPointF middle = box.center();
    const QPointF mark[] = {middle + QPointF(-4, 0), middle + QPointF(-1, 3), middle + QPointF(4, -3)};
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(currentColours().onaccent, penWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(mark, 3);
}
