// SPDX-License-Identifier: 0BSD

#pragma once

#include <QLoggingCategory>

// The messages of Note Keeper in the log.
Q_DECLARE_LOGGING_CATEGORY(notekeeper)
