// SPDX-License-Identifier: 0BSD

#include "Table.h"

#include "../Appearance.h"

#include <QHeaderView>
#include <QPainter>

namespace {

constexpr int minLines = 6;
constexpr int margin = 12;

} // namespace

Table::Table(const QStringList &columns, const QString &placeholder, const char *name, QWidget *parent)
    : QTreeWidget(parent)
    , m_placeholder(placeholder)
{
    setObjectName(QLatin1String(name));
    setHeaderLabels(columns);
    setRootIsDecorated(false);
    setAllColumnsShowFocus(true);
    setTextElideMode(Qt::ElideMiddle);
    setMinimumHeight(minLines * fontMetrics().lineSpacing());
    header()->setStretchLastSection(false);
    header()->setSectionsClickable(false);
    header()->setSectionResizeMode(QHeaderView::Stretch);
    header()->setSectionResizeMode(columns.size() - 1, QHeaderView::ResizeToContents);
}

QTreeWidgetItem *Table::insert(int row, const QStringList &texts)
{
    auto *const item = new QTreeWidgetItem;
    for (int column = 0; column < texts.size(); ++column)
        setText(item, column, texts.at(column));
    insertTopLevelItem(row, item);
    return item;
}

void Table::setText(QTreeWidgetItem *item, int column, const QString &text)
{
    item->setText(column, text);
    item->setToolTip(column, text);
}

void Table::paintEvent(QPaintEvent *event)
{
    QTreeWidget::paintEvent(event);
    if (topLevelItemCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(currentColours().quiet);
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignCenter | Qt::TextWordWrap, m_placeholder);
}
