// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>

/**
 * The name lookup of this process, as its own function stands before the system's. It knows every name
 * until it is told otherwise, and records what it is asked.
 */
namespace Resolver {

/** @p code is one of getaddrinfo(), 0 for a name that is known. */
void answerWith(int code);

/** From now on lookups wait until release(). */
void hold();
void release();

QList<QByteArray> asked();

} // namespace Resolver
