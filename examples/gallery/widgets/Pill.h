// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QLabel>

/** A short word on how things stand, in the colour of how good that is. */
class Pill : public QLabel
{
    Q_OBJECT

public:
    enum Tone { Neutral, Busy, Good, Warning, Bad };

    Pill(const QString &text, const char *name, QWidget *parent = nullptr);

    void tell(Tone tone, const QString &text);
};
