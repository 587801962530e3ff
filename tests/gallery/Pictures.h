// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QImage>
#include <QString>

/** Saves pictures of the gallery in the build directory and compares them with docs/pictures. */
namespace Pictures {

/** Saves the picture as NAME.png. @return false if the directory is not writable */
bool save(const QImage &picture, const QString &name);

/** One picture of an animation, and how long it is shown. */
struct Frame
{
    QImage picture;
    int durationMs;
};

/** Saves an animated PNG as NAME.png. All pictures have the same size. */
bool saveAnimation(const QList<Frame> &frames, const QString &name);

/**
 * Returns how the picture differs from docs/pictures/NAME.png, or an empty string. Small differences in the
 * drawing of characters are ignored.
 */
QString difference(const QImage &picture, const QString &name);

} // namespace Pictures
