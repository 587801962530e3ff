// SPDX-License-Identifier: 0BSD

#include "Pill.h"

#include <QStyle>
#include <QVariant>

Pill::Pill(const QString &text, const char *name, QWidget *parent)
    : QLabel(parent)
{
    setObjectName(QLatin1String(name));
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Maximum);
    setState(Neutral, text);
}

void Pill::setState(Tone tone, const QString &text)
{
    static constexpr const char *names[] = {"neutral", "busy", "good", "warning", "bad"};
    setText(text);
    setProperty("tone", QLatin1String(names[tone]));
    style()->unpolish(this); // applies the style sheet to the new property
    style()->polish(this);
}
