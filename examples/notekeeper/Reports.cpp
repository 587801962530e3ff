// SPDX-License-Identifier: 0BSD

#include "Reports.h"

#include <QCoreApplication>

UsageReports::Settings reportSettings(const QString &statistics)
{
    UsageReports::Settings settings;
    settings.product = QStringLiteral("notekeeper");
    settings.version = QCoreApplication::applicationVersion();
    settings.catalogue = QStringLiteral(":/events.json");
    settings.measurementId = QStringLiteral("G-NOTEKEEPER");
    settings.apiSecret = QStringLiteral("secret");
    settings.statistics =
        statistics.isEmpty() ? QStringLiteral("https://stat.example.org/report") : statistics;
    return settings;
}

void reportStart(UsageReports *reports)
{
    reports->sendEvent(QStringLiteral("start"));
    reports->sendRecord(QStringLiteral("server_run"), QStringLiteral("start"));
}

void reportNewNote(UsageReports *reports)
{
    reports->sendEvent(QStringLiteral("note"));
}

void reportUpdate(UsageReports *reports, bool isExtracted)
{
    reports->sendEvent(QStringLiteral("update"),
                       isExtracted ? QStringLiteral("extracted") : QStringLiteral("failed"));
    reports->sendRecord(QStringLiteral("update"),
                        isExtracted ? QStringLiteral("end") : QStringLiteral("fail"));
}
