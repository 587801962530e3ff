// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/** What the system counts of this process. */
namespace ProcessFigures {

int threadCount();
int openFileCount();

/** The memory in use, in bytes. */
qint64 residentBytes();

/** Forgets the peak so far; false where the system doesn't let it be forgotten. */
bool resetPeak();

/** The most memory in use since resetPeak(), in bytes. */
qint64 peakBytes();

} // namespace ProcessFigures
