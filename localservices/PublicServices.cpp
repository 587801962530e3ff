// SPDX-License-Identifier: LGPL-2.1-or-later

#include "PublicServices.h"

#include "Proxy.h"

#include <ZyBase/netinfo/Services.h>

namespace LocalServices {

namespace {

constexpr const char *address = "{\"ip\":\"192.0.2.1\"}";
constexpr const char *country = "{\"country_code\":\"DE\",\"ip\":\"192.0.2.1\"}";
constexpr const char *location =
    "{\"status\":\"success\",\"country\":\"Germany\",\"countryCode\":\"DE\",\"regionName\":\"Land Berlin\","
    "\"city\":\"Berlin\",\"lat\":52.52,\"lon\":13.405,\"query\":\"192.0.2.1\"}";
constexpr const char *locationPage =
    "<tr>\n<td>City:</td>\n<td>Paris</td>\n<td>Country:</td>\n<td>France</td>\n"
    "<td>State:</td>\n<td>Ile-de-France</td>\n<td>Latitude:</td>\n<td>48.85</td>\n"
    "<td>Longitude:</td>\n<td>2.35</td>\n</tr>\n";

} // namespace

PublicServices::PublicServices()
    : m_address(RawServer::answerWith(address))
    , m_country(RawServer::answerWith(country))
    , m_location(RawServer::answerWith(location))
    , m_locationPage(RawServer::answerWith(locationPage))
{
}

void PublicServices::route(Proxy &proxy) const
{
    proxy.route(QLatin1String(ZyBase::pszAddressHost), m_address.url());
    proxy.route(QLatin1String(ZyBase::pszCountryHost), m_country.url());
    proxy.route(QLatin1String(ZyBase::pszGeolocationHost), m_location.url());
    proxy.route(QLatin1String(ZyBase::pszGeolocationPageHost), m_locationPage.url());
}

} // namespace LocalServices
