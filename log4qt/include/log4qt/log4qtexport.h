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
 * A small log4qt: the part of its interface that a file log needs.
 *
 * The classes are in the inline namespace `zy`. Code uses `Log4Qt::Logger`, but no symbol has the name of a
 * symbol in another log4qt. Desktop plug-ins load such libraries into applications, and two libraries with
 * the same symbols would call each other's code.
 */
