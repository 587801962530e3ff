// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/analytics/CGaReport.h>
#include <ZyBase/analytics/CGoogleAnalytics.h>
#include <ZyBase/analytics/CXdReport.h>
#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QJsonObject>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>

#include <sys/stat.h>

#include <functional>
#include <system_error>

using ZyBase::CHttpPostRequest;

namespace {

constexpr int longestRequestMs = 15000;
constexpr int threadEndMs = 300; // the first request of a process starts a thread of Qt that stays

const QJsonObject body {{QStringLiteral("key"), QStringLiteral("value")}};

QJsonObject returned(bool result, const QByteArray &data)
{
    return {{QStringLiteral("returned"), result}, {QStringLiteral("data"), QString::fromUtf8(data)}};
}

// Each thread is a directory, which is a link of the directory above it. Opens no file.
int threadCount()
{
    struct stat status
    {
    };
    return ::stat("/proc/self/task", &status) == 0 ? int(status.st_nlink) : 0;
}

// Runs the event loop. A timer wakes it, because the end of a thread is no event.
void processEventsWhile(int limitMs, const std::function<bool()> &condition)
{
    QObject timers;
    timers.startTimer(2);
    const QDeadlineTimer deadline(limitMs);
    while (condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

// The outcome signals of a background request.
class Signals
{
public:
    template <typename Request> void record(Request *request)
    {
        QObject::connect(request, &Request::SignalRequestTimeout, qApp,
                         [this] { m_names << QStringLiteral("timeout"); });
        QObject::connect(request, &Request::SignalRequestCancel, qApp,
                         [this] { m_names << QStringLiteral("cancel"); });
        QObject::connect(request, &Request::SignalRequestResult, qApp, [this](const QByteArray &data) {
            m_names << QStringLiteral("result");
            m_data = data;
        });
    }
    void recordStatus(CHttpPostRequest *request)
    {
        QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, qApp,
                         [this](const QByteArray &data, int status) {
                             m_names << QStringLiteral("result");
                             m_data = data;
                             m_status = status;
                         });
    }

    // Starts the request, and waits for its outcome and for the end of its thread.
    template <typename Start> QJsonObject waitFor(Start start)
    {
        const int threadsBefore = threadCount();
        try {
            start();
        } catch (const std::system_error &) {
            return {{QStringLiteral("exception"), QStringLiteral("system_error")}};
        }
        processEventsWhile(longestRequestMs, [this] { return m_names.isEmpty(); });
        processEventsWhile(threadEndMs, [&] { return threadCount() > threadsBefore; });
        QJsonObject outcome {{QStringLiteral("signals"), m_names.join(QLatin1Char(' '))},
                             {QStringLiteral("data"), QString::fromUtf8(m_data)}};
        if (m_status >= 0)
            outcome.insert(QStringLiteral("status"), m_status);
        return outcome;
    }

private:
    QStringList m_names;
    QByteArray m_data;
    int m_status = -1;
};

// The arguments are the name of a function and the URL. Returns its result, or its outcome signals.
QJsonValue request(const QJsonArray &arguments)
{
    const QString form = arguments.at(0).toString();
    const QUrl url(arguments.at(1).toString());
    CHttpPostRequest request;
    QByteArray data = QByteArrayLiteral("unchanged");
    if (form == QLatin1String("StartRequestSync")) {
        const bool isInTime = request.StartRequestSync(url, body, data);
        return returned(isInTime, data);
    }
    if (form == QLatin1String("StartGetRequestSync")) {
        const bool isInTime = request.StartGetRequestSync(url, data);
        return returned(isInTime, data);
    }
    Signals outcome;
    outcome.record(&request);
    outcome.recordStatus(&request);
    return outcome.waitFor([&] {
        if (form == QLatin1String("StartRequestAsync"))
            request.StartRequestAsync(url, body, QString());
        else if (form == QLatin1String("StartGetRequest"))
            request.StartGetRequest(url, QString());
        else
            request.StartGetRequestAndStatusCode(url, QString());
    });
}

// The argument is whether to wait. Sends an event and returns its result, or its outcome signals.
QJsonValue event(const QJsonArray &arguments)
{
    const QString text = QStringLiteral("x");
    CGoogleAnalytics analytics;
    if (arguments.at(0).toBool())
        return returned(analytics.StartRequestSync(text, text, text, text, text, text), QByteArray());
    Signals outcome;
    outcome.record(&analytics);
    return outcome.waitFor([&] { analytics.StartRequestAsync(text, text, text, text, text, text); });
}

// Waits until the requests of a reporter have deleted themselves. Returns the number of those that are left.
template <typename Start> QJsonValue remainingRequests(const QObject &reporter, Start start)
{
    const int threadsBefore = threadCount();
    try {
        start();
    } catch (const std::system_error &) {
        return QJsonObject {{QStringLiteral("exception"), QStringLiteral("system_error")}};
    }
    processEventsWhile(longestRequestMs, [&] { return !reporter.children().isEmpty(); });
    processEventsWhile(threadEndMs, [&] { return threadCount() > threadsBefore; });
    return QJsonObject {{QStringLiteral("remaining"), reporter.children().size()}};
}

QJsonValue report(const QJsonArray &)
{
    CGaReport reporter;
    const QString text = QStringLiteral("x");
    reporter.InitData(text, text, text);
    return remainingRequests(reporter, [&] { reporter.ReportGaData(text, text, text, false); });
}

// The argument is the URL.
QJsonValue record(const QJsonArray &arguments)
{
    CXdReport reporter;
    const QString text = QStringLiteral("x");
    reporter.InitData(arguments.at(0).toString(), text, text, text, text);
    return remainingRequests(reporter, [&] { reporter.ReportXdData(text, text); });
}

// The arguments are the port of an HTTP proxy and the path of a certificate, which alone is trusted.
QJsonValue useProxy(const QJsonArray &arguments)
{
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"),
                                                     quint16(arguments.at(0).toInt())));
    QFile file(arguments.at(1).toString());
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromDevice(&file));
    QSslConfiguration::setDefaultConfiguration(configuration);
    return true;
}

} // namespace

Commands requestCommands()
{
    return {{QStringLiteral("requests.request"), request},
            {QStringLiteral("requests.event"), event},
            {QStringLiteral("requests.report"), report},
            {QStringLiteral("requests.record"), record},
            {QStringLiteral("requests.useProxy"), useProxy}};
}
