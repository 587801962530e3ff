// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/**
 * Exports a class or function from the library. Everything without this macro is hidden.
 *
 * @since 0.1.0
 */
#if defined(ZYBASE_BUILDING)
#define ZYBASE_EXPORT Q_DECL_EXPORT
#else
#define ZYBASE_EXPORT Q_DECL_IMPORT
#endif
