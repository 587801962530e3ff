// SPDX-License-Identifier: 0BSD

#pragma once

#include <QCheckBox>

/** A check box whose mark has the colours of the theme. */
class Tick : public QCheckBox
{
    Q_OBJECT

public:
    Tick(const QString &text, const char *name, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};
