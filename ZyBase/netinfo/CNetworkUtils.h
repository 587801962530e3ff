// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

/**
 * @file
 * Declares ZyBase::CNetworkUtils and the functions GetIPInfoAPI(), GetIPInfoMy(), GetIP() and
 * ParseTdValue().
 */

namespace ZyBase {

/**
 * Queries the public IP address and the location of the machine, and tests the name lookup.
 *
 * The data comes from free public web services, which @ref services "docs/services.md" lists. They see the
 * user's IP address, can limit the number of requests, and can disappear. Do not use them for anything
 * important.
 *
 * @code
 * // In a worker thread, or in a program without windows:
 * QString country, location;
 * double latitude = 0, longitude = 0;
 * if (ZyBase::CNetworkUtils::GetIPInfo(country, location, latitude, longitude))
 *     show(location);   // "Berlin, Land Berlin, Germany"
 * @endcode
 *
 * Every call sends a new request. Nothing is cached, repeated or logged.
 *
 * **Threads.** All functions are thread-safe. They may be called from the GUI thread, where they do not
 * freeze the windows: see Blocking.
 *
 * **Blocking.** Each request blocks for at most 10 seconds; Qt's coarse timer can extend this to 10.5
 * seconds. GetIPInfo() can send two requests. IsNetWorkOnline() blocks until the system's name lookup ends,
 * without a limit. All run a nested event loop: other events of the calling thread are delivered meanwhile,
 * so the same slot can be entered again and a window can be closed.
 *
 * **Failures.** Failures are reported only by the return value. If the application quits during a call, the
 * call returns at once and reports a failure.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class.
 *
 * @warning Anyone on the network path can change the answers: GetIPInfoAPI() uses plain HTTP, and
 * certificates are not checked. Show the values as plain text, never as HTML or rich text.
 *
 * @warning A QCoreApplication object must exist. Without one, these functions never return and use a whole
 * processor core. If the system has no thread left for Qt's network code (EAGAIN), they do not return
 * within ten seconds.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CNetworkUtils
{
public:
    /**
     * Returns the location of the machine.
     *
     * Calls GetIPInfoAPI() and, if that fails, GetIPInfoMy(). Blocks for two requests at most.
     *
     * @param strCountry receives the country's name, as the service spells it
     * @param strLocation receives city, region and country, separated by ", "
     * @param dLatitude receives the latitude in degrees
     * @param dLongitude receives the longitude in degrees
     * @return true if one of the services answered; any string may be empty and any number 0.0. False if both
     * failed; @p strCountry may have changed, the others are unchanged.
     */
    static bool GetIPInfo(QString &strCountry, QString &strLocation, double &dLatitude, double &dLongitude);

    /**
     * Returns the public IP address and its country code. Sends one request.
     *
     * @param strCountryCode receives the country code, such as "DE"
     * @param strIp receives the IP address
     * @return true if the service answered with a JSON object that is not empty, also with a refusal such as
     * HTTP 429. False otherwise; both strings are unchanged.
     *
     * @warning After true, a string that the answer did not contain is null. Check both strings.
     */
    static bool GetIPCountryCode(QString &strCountryCode, QString &strIp);

    /**
     * Returns whether the name of a large public site can be resolved. Nothing is sent to the site.
     *
     * @return true if the name was resolved; false if not, or if the application quits during the call
     *
     * @warning True does not mean that the internet can be reached. The result is also true if a resolver
     * answers from its cache, and on the login page of a network. Qt caches a resolved name for a minute. To
     * be certain, send the request that you need.
     *
     * @warning If no name server answers, the call blocks until the system ends the lookup, which can take a
     * minute. Call it in a worker thread.
     *
     * @warning In a thread that runs no event loop afterwards, each call leaks some hundred bytes.
     */
    static bool IsNetWorkOnline();
};

} // namespace ZyBase

/**
 * Returns the location of the machine from the JSON service, over plain HTTP.
 *
 * @param strCountry receives the country's name, as the service spells it
 * @param strLocation receives city, region and country, separated by ", "
 * @param dLatitude receives the latitude in degrees
 * @param dLongitude receives the longitude in degrees
 * @return true if the service answered with the status "success"; strings that the answer does not contain
 * are empty, numbers 0.0. False otherwise; all four arguments are unchanged.
 *
 * **Threads.** This function is thread-safe.
 *
 * **Blocking.** Blocks for one request in a nested event loop: at most 10 seconds, or 10.5 seconds with Qt's
 * coarse timer. The rules and warnings of ZyBase::CNetworkUtils apply.
 *
 * @see ZyBase::CNetworkUtils::GetIPInfo()
 * @since 0.1.0
 */
ZYBASE_EXPORT bool GetIPInfoAPI(QString &strCountry, QString &strLocation, double &dLatitude,
                                double &dLongitude);

/**
 * Returns the location of the machine from the web page of another service.
 *
 * The page has five entries: city, country, state, latitude and longitude. At least five entries must be
 * found; a repeated entry counts again and replaces the value. Values are not decoded: an entity such as
 * "&amp;" stays.
 *
 * @param strCountry receives the country's name, as the service spells it
 * @param strLocation receives city, state and country, separated by ", "
 * @param dLatitude receives the latitude in degrees; 0.0 if it is not a number
 * @param dLongitude receives the longitude in degrees; 0.0 if it is not a number
 * @return true if five entries were found; a value that was missing is empty or 0.0. False otherwise; @p
 * strCountry has changed if the page contained a country, the others are unchanged.
 *
 * **Threads.** This function is thread-safe.
 *
 * **Blocking.** Blocks for one request in a nested event loop: at most 10 seconds, or 10.5 seconds with Qt's
 * coarse timer. The rules and warnings of ZyBase::CNetworkUtils apply.
 *
 * @see ZyBase::CNetworkUtils::GetIPInfo()
 * @since 0.1.0
 */
ZYBASE_EXPORT bool GetIPInfoMy(QString &strCountry, QString &strLocation, double &dLatitude,
                               double &dLongitude);

/**
 * Returns the public IP address of the machine.
 *
 * @return the IP address; an empty string if the service did not answer with a JSON object; a null string if
 * the object contains no address
 *
 * **Threads.** This function is thread-safe.
 *
 * **Blocking.** Blocks for one request in a nested event loop: at most 10 seconds, or 10.5 seconds with Qt's
 * coarse timer. The rules and warnings of ZyBase::CNetworkUtils apply.
 *
 * @warning The address is not verified: a service or anyone on the network path can return any string. Show
 * it as plain text.
 *
 * @since 0.1.0
 */
ZYBASE_EXPORT QString GetIP();

/**
 * Returns the content of the first cell in a line of HTML: "Berlin" for "<td>Berlin</td>".
 *
 * The result is the part between the first ">" and the next "<". If there is no ">", it begins at the start
 * of the line; if there is no "<" after it, it extends to the end. Nothing is trimmed or decoded. Sends no
 * request.
 *
 * @param strLine the line
 * @return the content of the cell; an empty string if nothing follows the first ">"
 *
 * **Threads.** This function is thread-safe. **Blocking.** Never blocks.
 *
 * @since 0.1.0
 */
ZYBASE_EXPORT QString ParseTdValue(const QString &strLine);
