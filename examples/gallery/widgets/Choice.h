// SPDX-License-Identifier: 0BSD

#pragma once

#include <QComboBox>

/** A drop-down list whose items follow the style sheet. */
class Choice : public QComboBox
{
    Q_OBJECT

public:
    Choice(const QStringList &items, const char *name, QWidget *parent = nullptr);
};
