// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/** Marks what hosts are linked against; all else stays inside the library. */
#if defined(ZYBASE_BUILDING)
#define ZYBASE_EXPORT Q_DECL_EXPORT
#else
#define ZYBASE_EXPORT Q_DECL_IMPORT
#endif
