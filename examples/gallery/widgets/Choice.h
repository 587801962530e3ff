// SPDX-License-Identifier: 0BSD

#pragma once

#include <QComboBox>

/** A drop-down list whose arrow has the colours of the theme. */
class Choice : public QComboBox
{
    Q_OBJECT

public:
    Choice(const QStringList &items, const char *name, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
