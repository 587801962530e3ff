// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Page.h"

#include <QImage>
#include <QMap>

class Pill;
class QLabel;
class QLineEdit;
class QSlider;

/** A text as a QR code, at any size. */
class QrCodePage : public Page
{
    Q_OBJECT

public:
    explicit QrCodePage(QWidget *parent = nullptr);

private:
    QWidget *createChoices();
    QWidget *createStage();
    void forget();
    void showCode();
    void tellState(bool hasCode);
    QImage codeOf(int side);

    QMap<int, QImage> m_codes; ///< those of the text, by their side
    QLineEdit *m_text;
    Pill *m_state;
    QSlider *m_size;
    QLabel *m_sizeText;
    QLabel *m_code;
};
