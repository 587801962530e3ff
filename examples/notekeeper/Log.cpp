// SPDX-License-Identifier: 0BSD

#include "Log.h"

Q_LOGGING_CATEGORY(notekeeper, "notekeeper")
