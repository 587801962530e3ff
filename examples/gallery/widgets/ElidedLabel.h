// SPDX-License-Identifier: 0BSD

#pragma once

#include <QLabel>

/** A label of one line that shortens its text in the middle. The tool tip shows the whole text. */
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    ElidedLabel(const QString &text, const char *kind, const char *name, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
