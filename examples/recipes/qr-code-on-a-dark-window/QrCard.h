// SPDX-License-Identifier: 0BSD

#pragma once

#include <QImage>
#include <QString>

/**
 * Returns the string as a QR code on a white card with the margin that scanners need.
 *
 * Each module is a whole number of pixels wide, so the card is usually smaller than @p maxSideInPixels. Show
 * it without scaling.
 *
 * @param maxSideInPixels the largest side of the card, in pixels of the screen
 * @return a null image if the string is empty, or too long for a QR code or for this size
 */
QImage qrCard(const QString &text, int maxSideInPixels);
