// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "RawServer.h"

namespace LocalServices {

class Proxy;

/**
 * Local servers for the public services that return address, country and location. Each one has a fixed
 * response: the address is 192.0.2.1, the country Germany, and the location Berlin from the first service
 * and Paris from the page of the second.
 */
class PublicServices
{
public:
    PublicServices();

    /** Routes the real host names of the services to these servers. */
    void route(Proxy &proxy) const;

private:
    Q_DISABLE_COPY(PublicServices)

    RawServer m_address;
    RawServer m_country;
    RawServer m_location;
    RawServer m_locationPage;
};

} // namespace LocalServices
