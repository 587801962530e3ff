// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

// The public services that the room asks, each one line to replace. What each must answer and what is
// sent to it stands in docs/services.md.

namespace ZyBase {
namespace Services {

/** Answers a POST to "/json" over plain HTTP with a JSON object that tells the location. */
constexpr const char *pszGeolocationHost = "ip-api.com";

/** Its front page over HTTPS has the location in the cells of a table. */
constexpr const char *pszGeolocationPageHost = "www.ipaddress.my";

/** Answers "?format=json" over HTTPS with a JSON object that has the address as "ip". */
constexpr const char *pszAddressHost = "api.ipify.org";

/** Answers "/all.json" over HTTPS with a JSON object that has "country_code" and "ip". */
constexpr const char *pszCountryHost = "ifconfig.io";

/** A name that resolves wherever there is a network; nothing is sent there. */
constexpr const char *pszProbeName = "www.bing.com";

} // namespace Services
} // namespace ZyBase
