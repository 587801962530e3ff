// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QUrl>

/**
 * Leads all requests of this process through the proxy that the user's system names. Call it once, at the
 * start of main(): it may change environment variables, which other threads must not read meanwhile.
 */
void useSystemProxy();

/** The proxy through which @p url is asked, as "host:port"; null when it is asked straight. */
QString proxyFor(const QUrl &url);
