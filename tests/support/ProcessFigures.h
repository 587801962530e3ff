// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/** Figures that the system reports of this process. */
namespace ProcessFigures {

int threadCount();
int openFileCount();

/** The resident memory of heap and stacks, in bytes. Mapped files are not counted: the system loads and
 *  drops their pages as it likes. */
qint64 residentBytes();

} // namespace ProcessFigures
