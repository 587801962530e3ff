// SPDX-License-Identifier: 0BSD

#include "ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>
#include <QVariant>

namespace {

constexpr int minCharacters = 8;

} // namespace

ElidedLabel::ElidedLabel(const QString &text, const char *kind, const char *name, QWidget *parent)
    : QLabel(text, parent)
{
    setObjectName(QLatin1String(name));
    setTextFormat(Qt::PlainText);
    setProperty("kind", QLatin1String(kind));
}

QSize ElidedLabel::minimumSizeHint() const
{
    const int width = minCharacters * fontMetrics().averageCharWidth();
    return QLabel::minimumSizeHint().boundedTo(QSize(width, QWIDGETSIZE_MAX));
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip)
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text(), this);
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, area.width());
    style()->drawItemText(&painter, area, int(alignment()), palette(), isEnabled(), shown, foregroundRole());
}
