// SPDX-License-Identifier: LGPL-2.1-or-later

// The input is a catalogue of events. Every event is looked up and reported.

#include "Fuzzing.h"
#include "MemoryFile.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/files/CJsonReader.h>

#include <QJsonArray>

#include <memory>

using ZyBase::CGaReportManager;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    static MemoryFile file;
    file.write(Input(data, sizeBytes).takeRest());
    const std::unique_ptr<CGaReportManager> manager(CGaReportManager::getInstance(nullptr));
    manager->InitGaData(file.path(), QStringLiteral("client"), QStringLiteral("G-1"),
                        QStringLiteral("secret"));

    const QJsonArray events = ZyBase::CJsonReader::ParseJsonFileToArray(file.path());
    for (const QJsonValue &event : events) {
        const QString key = event.toObject().value(QLatin1String("event_key")).toString();
        const QJsonObject found = manager->GetGaData(key);
        FUZZ_VERIFY(found.value(QLatin1String("event_key")).toString() == key);
        manager->SendGaReport(key, QString(), true);
        manager->SendGaReport(key, key, true);
    }
    if (!events.isEmpty())
        manager->SendXdReport(events.first().toString(), QString());
    CGaReportManager::ReleaseReport();
    CGaReportManager::s_instance = nullptr;
    return 0;
}
