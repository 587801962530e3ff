// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QImage>
#include <QString>

/** Pictures of the gallery in the build folder, and those of them that docs/pictures shows. */
namespace Pictures {

/** Keeps it as NAME.png. @return false where the build folder is another user's */
bool keep(const QImage &picture, const QString &name);

/**
 * What tells the picture from docs/pictures/NAME.png, small differences in the drawing of letters aside;
 * empty when nothing does.
 */
QString difference(const QImage &picture, const QString &name);

} // namespace Pictures
