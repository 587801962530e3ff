// SPDX-License-Identifier: LGPL-2.1-or-later

// Has no code: only the libraries are loaded that the library needs too.
