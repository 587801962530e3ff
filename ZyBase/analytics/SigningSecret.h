// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

namespace ZyBase {

/**
 * The signing secret of the statistics records: 32 ASCII characters, shared with the backend. This value is
 * a placeholder. The owner of a backend replaces it here and nowhere else.
 */
constexpr const char *pszSigningSecret = "0123456789abcdef0123456789ABCDEF";

} // namespace ZyBase
