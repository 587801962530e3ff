// SPDX-License-Identifier: 0BSD

#pragma once

#include <QLabel>

/** A short state in the colour of its tone. */
class Pill : public QLabel
{
    Q_OBJECT

public:
    enum Tone { Neutral, Busy, Good, Warning, Bad };

    Pill(const QString &text, const char *name, QWidget *parent = nullptr);

    void setState(Tone tone, const QString &text);
};
