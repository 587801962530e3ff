// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "RawServer.h"

namespace LocalServices {

class Proxy;

/**
 * Stands in for the public services that tell address, country and location, each with one answer that
 * is always the same: the address 192.0.2.1, which is in Germany, in Berlin by the first source of
 * locations and in Paris by the page of the second.
 */
class PublicServices
{
public:
    PublicServices();

    /** Leads the services' names in the world here. */
    void route(Proxy &proxy) const;

private:
    Q_DISABLE_COPY(PublicServices)

    RawServer m_address;
    RawServer m_country;
    RawServer m_location;
    RawServer m_locationPage;
};

} // namespace LocalServices
