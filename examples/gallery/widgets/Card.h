// SPDX-License-Identifier: 0BSD

#pragma once

#include <QFrame>
#include <QVBoxLayout>

/** A rounded frame with a column of related widgets. */
class Card : public QFrame
{
    Q_OBJECT

public:
    /** @param title no title if empty */
    explicit Card(const QString &title = QString(), QWidget *parent = nullptr);

    QVBoxLayout *column() const { return m_column; }

    /** Adds a row at the end of the column. */
    QHBoxLayout *addRow();

private:
    QVBoxLayout *m_column;
};
