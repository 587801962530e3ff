// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

#include <QImage>
#include <QMap>

class Card;
class Pill;
class QLabel;
class QLineEdit;
class QSlider;

/** Shows a text as a QR code in a selectable size. */
class QrCodePage : public Page
{
    Q_OBJECT

public:
    explicit QrCodePage(QWidget *parent = nullptr);

private:
    void fillChoicesCard(Card *card);
    void fillCodeCard(Card *card);
    void clearCodes();
    void showCode();
    void showState(bool hasCode);
    QImage codeOf(int side);

    QMap<int, QImage> m_codes; ///< of the current text, by their side
    QLineEdit *m_text;
    Pill *m_state;
    QSlider *m_size;
    QLabel *m_sizeText;
    QLabel *m_code;
};
