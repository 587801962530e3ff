// SPDX-License-Identifier: 0BSD

#pragma once

#include <QDir>

class Report;

// One function for each service, in the order of the tour. Each writes its files to the given directory.

void showLog(Report &report, const QDir &directory);
void showJson(Report &report, const QDir &directory);
void showFiles(Report &report, const QDir &directory);
void showZip(Report &report, const QDir &directory);
void showHttp(Report &report, const QDir &directory);
void showIdentity(Report &report, const QDir &directory);
void showSystem(Report &report, const QDir &directory);
void showTheme(Report &report, const QDir &directory);
void showDefaultApplication(Report &report, const QDir &directory);
void showQrCode(Report &report, const QDir &directory);
void showLocation(Report &report, const QDir &directory);
void showReports(Report &report, const QDir &directory);
