// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/** Values that the system reports about this process. */
namespace ProcessFigures {

int threadCount();
int openFileCount();
int childCount();

/**
 * Returns the resident memory of heap and stacks. Mapped files are not counted, because the system loads
 * and drops their pages at any time.
 */
qint64 residentBytes();

} // namespace ProcessFigures
