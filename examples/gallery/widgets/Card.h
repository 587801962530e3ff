// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QFrame>
#include <QVBoxLayout>

/** A rounded ground for what belongs together, in a column. */
class Card : public QFrame
{
    Q_OBJECT

public:
    /** An empty @p title is none. */
    explicit Card(const QString &title = QString(), QWidget *parent = nullptr);

    QVBoxLayout *column() const { return m_column; }

    /** A row of its own below what is there. */
    QHBoxLayout *addRow();

private:
    QVBoxLayout *m_column;
};
