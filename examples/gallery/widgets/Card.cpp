// SPDX-License-Identifier: 0BSD

#include "Card.h"

#include "controls.h"

Card::Card(const QString &title, QWidget *parent)
    : QFrame(parent)
    , m_column(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("card"));
    m_column->setContentsMargins(18, 14, 18, 16);
    m_column->setSpacing(10);
    if (!title.isEmpty())
        m_column->addWidget(heading(title));
}

QHBoxLayout *Card::addRow()
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(10);
    m_column->addLayout(row);
    return row;
}
