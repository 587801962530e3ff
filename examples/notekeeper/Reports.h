// SPDX-License-Identifier: 0BSD

#pragma once

#include <UsageReports.h>

// Everything that Note Keeper reports. Nothing is sent without the user's consent.

/** @p statistics the address of the statistics backend; empty for the real one */
UsageReports::Settings reportSettings(const QString &statistics);

void reportStart(UsageReports *reports);
void reportNewNote(UsageReports *reports);
void reportUpdate(UsageReports *reports, bool isExtracted);
