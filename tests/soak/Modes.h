// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Host.h"

/** Runs 16 threads that log while the month changes, again and again. Verifies that every line is in its
 * file. */
int runMonths(double minutes);

/** One application of runMonths(). */
int runMonthsHost(const QString &baseDirectory);

/** Runs two applications with the same home directory and the same directory for their logs. */
int runTwoHosts(const HostOptions &options);

/** Runs applications that quit with a request in flight, @p runs for each case, and counts the crashes. */
int runQuitting(int runs);

/** One application of runQuitting(). Its arguments are --quit WAY MILLISECONDS ADDRESS. */
int runQuittingHost(int &argc, char **argv);
