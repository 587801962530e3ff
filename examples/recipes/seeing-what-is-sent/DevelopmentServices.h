// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/** Where the running scripts/local-services stands in for what the host talks to in the world. */
struct DevelopmentServices
{
    QString statistics; ///< the address for CGaReportManager::InitXdData
    QString downloads; ///< the address below which files lie
};

/**
 * Leads a development build of a host to the services that the environment variable LOCAL_SERVICES names:
 * all that it sends goes through their proxy, whose authority is trusted. Without the variable nothing
 * changes and the addresses are empty. Call it once, at the start of main().
 */
DevelopmentServices useDevelopmentServices();
