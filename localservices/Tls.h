// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"

struct ssl_ctx_st;

namespace LocalServices {

/** What connections under TLS are made from, for any version that OpenSSL knows; null for no certificate. */
std::shared_ptr<ssl_ctx_st> createTls(const Certificate &certificate);

} // namespace LocalServices
