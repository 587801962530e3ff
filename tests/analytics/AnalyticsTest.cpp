// SPDX-License-Identifier: LGPL-2.1-or-later

#include "AnalyticsTest.h"

#include "Utf8.h"

#include <ZyBase/base/LoggerObjectPrivate.h>

#include <QMetaMethod>
#include <QNetworkProxy>

void AnalyticsTest::useProxy(int port)
{
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), quint16(port)));
}

void AnalyticsTest::addEscapedStrings()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("empty") << QStringLiteral("") << QByteArray("\"\"");
    QTest::newRow("null") << QString() << QByteArray("\"\"");
    QTest::newRow("quotes") << utf8("say \"hi\"") << QByteArray("\"say \\\"hi\\\"\"");
    QTest::newRow("line feed") << utf8("a\nb") << QByteArray("\"a\\nb\"");
    QTest::newRow("backslash") << utf8("a\\b") << QByteArray("\"a\\\\b\"");
    QTest::newRow("control character") << utf8("a\x01") << QByteArray("\"a\\u0001\"");
    QTest::newRow("other characters") << utf8("Größe 文件") << QByteArray("\"Größe 文件\"");
    QTest::newRow("beyond the BMP") << utf8("😀") << QByteArray("\"😀\"");
    QTest::newRow("single surrogate") << QString(QChar(0xd83d)) << QByteArray("\"\\ud83d\"");
    QTest::newRow("ampersand and percent") << utf8("a&b=%1%20") << QByteArray("\"a&b=%1%20\"");
    QTest::newRow("any string") << utf8("not one of our words") << QByteArray("\"not one of our words\"");
    QTest::newRow("long") << QString(100000, QLatin1Char('x')) << '"' + QByteArray(100000, 'x') + '"';
}

void AnalyticsTest::init()
{
    m_output = std::make_unique<OutputCapture>();
    m_network = std::make_unique<FakeNetwork>();
    if (usesProxy())
        m_network->install();
}

void AnalyticsTest::cleanup()
{
    m_network.reset();
    QCOMPARE(OutputCapture::take(m_output), QString());
    QVERIFY(!LoggerObjectPrivate::s_pLogger); // the log is not used
}

bool sendSync(CGoogleAnalytics &analytics, const Event &event)
{
    return analytics.StartRequestSync(event.clientId, event.measurementId, event.apiSecret, event.name,
                                      event.category, event.label);
}

void sendAsync(CGoogleAnalytics &analytics, const Event &event)
{
    analytics.StartRequestAsync(event.clientId, event.measurementId, event.apiSecret, event.name,
                                event.category, event.label);
}

WatchedEvent::WatchedEvent()
    : m_analytics(std::make_unique<CGoogleAnalytics>())
{
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestTimeout, this,
            [this] { addOutcome(timedOut); });
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestCancel, this,
            [this] { addOutcome(cancelled); });
    connect(m_analytics.get(), &CGoogleAnalytics::SignalRequestResult, this,
            [this](const QByteArray &data) { addOutcome(result(Form::PostAsync, data, -1)); });
    checkThreadOf(m_analytics.get(), &CGoogleAnalytics::SignalRequestTimeout);
    checkThreadOf(m_analytics.get(), &CGoogleAnalytics::SignalRequestCancel);
    checkThreadOf(m_analytics.get(), &CGoogleAnalytics::SignalRequestResult);
}

WatchedEvent::~WatchedEvent()
{
    stopAll();
    retire(std::move(m_analytics));
}

void WatchedEvent::start(const Event &event)
{
    addRequest();
    sendAsync(*m_analytics, event);
}

QStringList ownMethods(const QMetaObject &meta)
{
    QStringList signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const char *const kind = method.methodType() == QMetaMethod::Signal ? "signal " : "slot ";
        signatures << QString::fromLatin1(kind + method.methodSignature());
    }
    return signatures;
}
