// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QImage>
#include <QString>

/**
 * The text as a QR code on a white card with the margin that scanners want, fit for any background.
 *
 * @param side the most pixels of the card's side, those of the screen. The card is as large as whole
 * pixels for each module allow; show it as it is, without scaling.
 * @return a null image when the text is empty, too long for a code, or too long for this size
 */
QImage qrCard(const QString &text, int side);
