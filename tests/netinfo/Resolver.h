// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QList>

/**
 * Replaces getaddrinfo() in this process. Every name resolves until answerWith() says otherwise, and all
 * names are recorded.
 */
namespace Resolver {

/** Makes lookups return @p code, an error of getaddrinfo() or 0 for success. */
void answerWith(int code);

/** Makes lookups block until release(). */
void hold();
void release();

/** The names of all lookups so far. */
QList<QByteArray> asked();

} // namespace Resolver
