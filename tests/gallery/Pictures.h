// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QImage>
#include <QString>

/** Saves pictures of the gallery in the build directory and compares them with docs/pictures. */
namespace Pictures {

/** Saves the picture as NAME.png. @return false if the directory is not writable */
bool save(const QImage &picture, const QString &name);

/**
 * Returns how the picture differs from docs/pictures/NAME.png, or an empty string. Small differences in the
 * drawing of characters are ignored.
 */
QString difference(const QImage &picture, const QString &name);

} // namespace Pictures
