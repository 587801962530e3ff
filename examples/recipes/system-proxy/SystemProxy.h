// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>
#include <QUrl>

/**
 * Routes all requests of this process through the proxy of the user's system.
 *
 * Call it once, at the start of main(). It may change environment variables, so no other thread may run yet.
 */
void useSystemProxy();

/** Returns the proxy for @p url as "name:port", or null if the request uses no proxy. */
QString proxyFor(const QUrl &url);
