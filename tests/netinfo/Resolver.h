// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>

/**
 * Replaces getaddrinfo() in this process and records its calls. Every name resolves until answerWith() sets
 * an error.
 */
namespace Resolver {

/** Makes lookups return @p code, an error of getaddrinfo() or 0 for success. */
void answerWith(int code);

/** Makes lookups block until release(). */
void hold();
void release();

/** Returns the names of all lookups so far. */
QList<QByteArray> lookups();

} // namespace Resolver
