// SPDX-License-Identifier: 0BSD

#pragma once

#include <QDialog>

/** Shows a note as a QR code, for example to read it with a phone. */
class QrDialog : public QDialog
{
    Q_OBJECT

public:
    explicit QrDialog(const QString &note, QWidget *parent = nullptr);
};
