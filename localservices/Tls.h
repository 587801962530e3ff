// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"

struct ssl_ctx_st;

namespace LocalServices {

/**
 * Returns the context of TLS connections, for all versions that OpenSSL supports. Returns null if the
 * certificate is empty.
 */
std::shared_ptr<ssl_ctx_st> createTls(const Certificate &certificate);

} // namespace LocalServices
