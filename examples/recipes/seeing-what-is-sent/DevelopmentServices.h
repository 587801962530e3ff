// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/** Where the running scripts/local-services stands in for what the host talks to in the world. */
struct DevelopmentServices
{
    QString statistics; ///< the address for CGaReportManager::InitXdData
    QString downloads; ///< the address below which files lie
    QString page; ///< the web page that shows what was sent
};

/**
 * Leads a development build of a host to the services that the environment variable LOCAL_SERVICES names:
 * all that it sends goes through their proxy, whose authority is trusted. Without the variable nothing
 * changes and the addresses are empty. Call it once, at the start of main().
 *
 * Where the variable names a file that doesn't tell of services, the process ends with a message: a
 * developer who wants to see what is sent doesn't want it to go out to the world.
 */
DevelopmentServices useDevelopmentServices();
