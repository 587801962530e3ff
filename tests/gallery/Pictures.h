// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QImage>
#include <QString>

/** Pictures of the gallery in the build folder, and those of them that docs/pictures shows. */
namespace Pictures {

/** Keeps it as NAME.png. */
bool keep(const QImage &picture, const QString &name);

/**
 * What tells NAME.png from the picture docs/pictures/COMMITTED.png, small differences in the drawing of
 * letters aside; empty when nothing does.
 */
QString difference(const QString &name, const QString &committed);

} // namespace Pictures
