// SPDX-License-Identifier: LGPL-2.1-or-later

// The input is the answer of a service that returns the address, the country or the location.

#include "FakeRequests.h"
#include "Fuzzing.h"

#include <ZyBase/netinfo/CNetworkUtils.h>

namespace {

using GetLocation = bool (*)(QString &, QString &, double &, double &);

void getLocation(GetLocation function)
{
    QString country;
    QString location;
    double latitude = 0;
    double longitude = 0;
    if (function(country, location, latitude, longitude))
        FUZZ_VERIFY(location.count(QLatin1Char(',')) >= 2);
    else
        FUZZ_VERIFY(location.isNull());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    FakeRequests::setAnswer(Input(data, sizeBytes).takeRest());
    getLocation(GetIPInfoMy);
    getLocation(GetIPInfoAPI);
    getLocation(ZyBase::CNetworkUtils::GetIPInfo);
    GetIP();
    QString country;
    QString address;
    if (!ZyBase::CNetworkUtils::GetIPCountryCode(country, address))
        FUZZ_VERIFY(country.isNull() && address.isNull());
    return 0;
}
