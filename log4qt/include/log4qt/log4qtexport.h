// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

#if defined(LOG4QT_BUILDING)
#define LOG4QT_EXPORT Q_DECL_EXPORT
#else
#define LOG4QT_EXPORT Q_DECL_IMPORT
#endif

/**
 * @namespace Log4Qt
 * The classes stand in the inline namespace `zy`: a host writes `Log4Qt::Logger` as ever, but no
 * symbol of this library has the name of one in another log4qt. Desktop plug-ins bring such
 * libraries into a host's process, and two of them under the same names would run each other's code.
 */
