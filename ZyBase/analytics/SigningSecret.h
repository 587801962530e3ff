// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

/**
 * The secret of the statistics records, 32 ASCII characters that the backend knows as well. A
 * placeholder: the owner of a backend replaces it here and nowhere else.
 */
constexpr const char *szSigningSecret = "0123456789abcdef0123456789ABCDEF";
