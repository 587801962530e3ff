// SPDX-License-Identifier: 0BSD

#pragma once

#include <QTreeWidget>

/** A table of texts that says what will be in it while it is empty. */
class Table : public QTreeWidget
{
    Q_OBJECT

public:
    /** The last column is as wide as its content; the others share the remaining width. */
    Table(const QStringList &columns, const QString &placeholder, const char *name,
          QWidget *parent = nullptr);

    /** Inserts a row. Tool tips show the texts that are too long for their columns. */
    QTreeWidgetItem *insert(int row, const QStringList &texts);
    static void setText(QTreeWidgetItem *item, int column, const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const QString m_placeholder;
};
