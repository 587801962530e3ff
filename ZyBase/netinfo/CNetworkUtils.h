// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

/**
 * @file
 * ZyBase::CNetworkUtils, and beside it GetIPInfoAPI(), GetIPInfoMy(), GetIP() and ParseTdValue().
 */

namespace ZyBase {

/**
 * Where the machine stands on the public internet, as public web services see it.
 *
 * @code
 * QString country, location;
 * double latitude = 0, longitude = 0;
 * if (ZyBase::CNetworkUtils::GetIPInfo(country, location, latitude, longitude))
 *     show(location);   // "Berlin, Land Berlin, Germany"
 * @endcode
 *
 * Every request is made anew; nothing is remembered, tried twice or logged. The services are free ones of
 * others, told in docs/services.md: they see the user's address, may limit how often they answer, and
 * may vanish. Then a call fails as it does without a network, so let nothing important depend on it.
 *
 * @warning Answers can't be trusted. The location is asked for in plain text, and certificates are not
 * checked: whoever sits on the line can answer what they like. Show what comes back as plain text, never
 * as HTML or rich text.
 *
 * **Threads.** Any that can run an event loop; calls in different threads don't meet.
 *
 * **Blocking.** Ten seconds a request at most, so 20 for GetIPInfo(); IsNetWorkOnline() for as long as
 * the system's name lookup takes. Meanwhile an event loop runs: other events of the calling thread are
 * delivered. Be ready for re-entry, and for the user closing the window that waits.
 */
class ZYBASE_EXPORT CNetworkUtils
{
public:
    /**
     * The location, from GetIPInfoAPI() or, where that fails, from GetIPInfoMy().
     *
     * @param strCountry the country's name as the source words it
     * @param strLocation city, region and country: "%1, %2, %3"
     * @param dLatitude in degrees
     * @param dLongitude in degrees
     * @return whether one of them told it; false when both failed, and @p strCountry may have changed
     * even so
     */
    static bool GetIPInfo(QString &strCountry, QString &strLocation, double &dLatitude, double &dLongitude);

    /**
     * The public address with the code of its country.
     *
     * @param strCountryCode such as "DE"
     * @param strIp the address as text
     * @return false when the service can't be reached or answers nothing of use; both texts are as they
     * were then
     *
     * @warning True says that there was an answer, not that it held both: a text that it lacked is null
     * then. Test them.
     */
    static bool GetIPCountryCode(QString &strCountryCode, QString &strIp);

    /**
     * Whether the name of a large public site can be resolved.
     *
     * @return whether it can; false when the application quits meanwhile
     *
     * @warning That is all it tests: a resolver that answers from its cache or the login page of a network
     * gives true without a way to the internet, and nothing is sent to the site. Qt remembers for a
     * minute that a name was found, so a loss of the network does not show sooner.
     *
     * @warning Where the resolver doesn't answer, the call lasts until the system gives up, which may
     * take a minute: no limit of its own ends it.
     *
     * @warning Qt removes what it made for the lookup in the thread's event loop. A thread that runs none
     * afterwards leaves some hundred bytes behind at each call.
     */
    static bool IsNetWorkOnline();
};

} // namespace ZyBase

/**
 * The location as the geolocation service tells it.
 *
 * @param strCountry,strLocation,dLatitude,dLongitude as for ZyBase::CNetworkUtils::GetIPInfo()
 * @return false when the service can't be reached or doesn't answer with its "success"; no argument is
 * touched then. A success may still lack parts: their texts are empty, their numbers 0.
 *
 * **Threads.** **Blocking.** As for that class: one request, ten seconds at most.
 */
ZYBASE_EXPORT bool GetIPInfoAPI(QString &strCountry, QString &strLocation, double &dLatitude,
                                double &dLongitude);

/**
 * The location as it stands on the page of another service. Values are taken as they stand in the page's
 * source: entities such as "&amp;" stay.
 *
 * @param strCountry,strLocation,dLatitude,dLongitude as for ZyBase::CNetworkUtils::GetIPInfo()
 * @return false when the page can't be had or has less than five of its entries; @p strCountry has
 * changed then if the page had a country, the others are as they were
 *
 * **Threads.** **Blocking.** As for GetIPInfoAPI().
 */
ZYBASE_EXPORT bool GetIPInfoMy(QString &strCountry, QString &strLocation, double &dLatitude,
                               double &dLongitude);

/**
 * The public address as text.
 *
 * @return an empty text when the service can't be reached or answers nothing of use; a null one when
 * its answer lacks the address
 *
 * **Threads.** **Blocking.** As for GetIPInfoAPI().
 */
ZYBASE_EXPORT QString GetIP();

/**
 * What stands between the first ">" of the line and the next "<": the text of the first cell in
 * "<td>Berlin</td>". A missing ">" or "<" widens it to the line's beginning or end. Needs no network.
 *
 * @param strLine the line
 * @return the text as it stands; an empty one where there is nothing behind the first ">"
 *
 * **Threads.** Any. **Blocking.** Never.
 */
ZYBASE_EXPORT QString ParseTdValue(const QString &strLine);
