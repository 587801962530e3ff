// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/** The addresses of the running scripts/local-services, which replace the real services. */
struct DevelopmentServices
{
    QString statistics; ///< the address for CGaReportManager::InitXdData()
    QString downloads; ///< the base address of files to download
    QString page; ///< the web page that shows what was sent
};

/** Returns true if the file describes running services. */
bool describesServices(const QString &path);

/**
 * Routes all requests of a development build to the services that the environment variable LOCAL_SERVICES
 * describes. Call it once, at the start of main().
 *
 * Requests use the proxy of these services, and its certificate authority is trusted. Without the variable
 * nothing changes, and the addresses are empty.
 *
 * If the variable names a file that describes no services, the process ends with a message, so that nothing
 * is sent to the real services by mistake.
 */
DevelopmentServices useDevelopmentServices();
