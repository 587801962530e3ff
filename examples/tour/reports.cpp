// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/analytics/SigningSecret.h>

#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/StatisticsBackend.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QFile>
#include <QNetworkProxy>
#include <QSslConfiguration>
#include <QTimer>

using LocalServices::Authority;
using LocalServices::GaCollector;
using LocalServices::Proxy;
using LocalServices::StatisticsBackend;
using ZyBase::CGaReportManager;

namespace {

constexpr int patienceMs = 10000;
constexpr int lastMomentMs = 200;

const QByteArray catalogue = QByteArrayLiteral(R"([
    {"event_key": "open",  "event_name": "open_file",  "event_category": "file", "event_label": "pdf"},
    {"event_key": "print", "event_name": "print_file", "event_category": "file", "event_label": ""}
])");

// The world as the library is to see it: all names lead to the tour's own collector.
class LocalWorld
{
public:
    LocalWorld()
        : m_proxy(m_authority)
    {
        QSslConfiguration trusting = m_configuration;
        trusting.setCaCertificates(QSslCertificate::fromData(m_authority.certificate()));
        QSslConfiguration::setDefaultConfiguration(trusting);
        m_proxy.leadAll(m_collector.url());
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), m_proxy.port()));
    }
    ~LocalWorld()
    {
        QNetworkProxy::setApplicationProxy(m_applicationProxy);
        QSslConfiguration::setDefaultConfiguration(m_configuration);
    }

    const GaCollector &collector() const { return m_collector; }

private:
    Q_DISABLE_COPY(LocalWorld)

    const QSslConfiguration m_configuration = QSslConfiguration::defaultConfiguration();
    const QNetworkProxy m_applicationProxy = QNetworkProxy::applicationProxy();
    Authority m_authority;
    GaCollector m_collector;
    Proxy m_proxy;
};

template <typename Condition> bool runUntil(Condition condition)
{
    for (const QDeadlineTimer deadline(patienceMs); !condition() && !deadline.hasExpired();)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    return condition();
}

void showEvents(Report &report, CGaReportManager *manager, const QDir &directory)
{
    const LocalWorld world;
    const QString path = directory.filePath(QStringLiteral("events.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(catalogue) != catalogue.size())
        return report.promise(QStringLiteral("the catalogue can be written"), false);
    file.close();

    manager->InitGaData(path, QStringLiteral("device"), QStringLiteral("G-TOUR"), QStringLiteral("secret"));
    manager->SendGaReport(QStringLiteral("open"), QString(), true);
    manager->SendGaReport(QStringLiteral("print"), QStringLiteral("laser"), false);
    manager->SendGaReport(QStringLiteral("print"), QString(), false); // has no label
    manager->SendGaReport(QStringLiteral("no such event"), QString(), false);
    const bool haveArrived = runUntil([&] { return world.collector().events().size() == 2; });

    bool areGood = haveArrived;
    const QList<GaCollector::Event> events = world.collector().events();
    for (const GaCollector::Event &event : events) {
        report.line(QStringLiteral("the collector got"), QString::fromLatin1(event.request.target));
        report.excerpt(QString::fromUtf8(event.request.body.trimmed()).split(QLatin1Char('\n')));
        areGood = areGood && event.problems.isEmpty();
    }
    report.promise(QStringLiteral("one event waited for and one in the background pass the validation"),
                   areGood);
}

void showRecord(Report &report, CGaReportManager *manager)
{
    const StatisticsBackend backend(szSigningSecret);
    manager->InitXdData(backend.url().toString(), QStringLiteral("device"), QStringLiteral("tour"),
                        QStringLiteral("1.0"), QStringLiteral("home"));
    manager->SendXdReport(QStringLiteral("install"), QStringLiteral("end"));
    if (!runUntil([&] { return !backend.records().isEmpty(); }))
        return report.promise(QStringLiteral("the record arrives"), false);
    const StatisticsBackend::Record record = backend.records().first();
    report.line(QStringLiteral("the backend got"), QString::fromLatin1(record.request.target));
    report.excerpt({QString::fromUtf8(record.request.body)});
    report.promise(QStringLiteral("the backend, which knows the secret, finds the signature right"),
                   record.problems.isEmpty());
}

} // namespace

void showReports(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Usage reports"), QStringLiteral("ZyBase/analytics/CGaReportManager.h"));
    auto *const manager = CGaReportManager::getInstance(nullptr);
    showEvents(report, manager, directory);
    showRecord(report, manager);
    CGaReportManager::ReleaseReport();
    // What is still under way ends in the event loop.
    QEventLoop loop;
    QTimer::singleShot(lastMomentMs, &loop, &QEventLoop::quit);
    loop.exec();
}
