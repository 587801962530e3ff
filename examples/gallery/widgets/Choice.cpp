// SPDX-License-Identifier: 0BSD

#include "Choice.h"

#include <QStyledItemDelegate>

Choice::Choice(const QStringList &items, const char *name, QWidget *parent)
    : QComboBox(parent)
{
    setObjectName(QLatin1String(name));
    setItemDelegate(new QStyledItemDelegate(this)); // the default delegate ignores the style sheet
    addItems(items);
}
