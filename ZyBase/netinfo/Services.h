// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

// The names of the public services, one line each. docs/services.md describes what each receives and what it
// must answer.

namespace ZyBase {

/** Answers a POST to "/json" over plain HTTP with a JSON object that contains the location. */
constexpr const char *pszGeolocationHost = "ip-api.com";

/** Has a front page over HTTPS with the location in the cells of a table. */
constexpr const char *pszGeolocationPageHost = "www.ipaddress.my";

/** Answers "?format=json" over HTTPS with a JSON object that contains the address as "ip". */
constexpr const char *pszAddressHost = "api.ipify.org";

/** Answers "/all.json" over HTTPS with a JSON object that contains "country_code" and "ip". */
constexpr const char *pszCountryHost = "ifconfig.io";

/** Is looked up to test the network. Nothing is sent to this name. */
constexpr const char *pszProbeName = "www.bing.com";

} // namespace ZyBase
