// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Browser.h"

#include "Files.h"
#include "Requests.h"

#include <localservices/HttpStatus.h>

#include <QDir>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace HttpStatus = LocalServices::HttpStatus;

namespace {

constexpr int timeoutMs = 120000;

const QString browserName = QStringLiteral("chromium");
const QString driverName = QStringLiteral("chromedriver");

// The key of an element's reference in the protocol.
const QString elementKey = QStringLiteral("element-6066-11e4-a52e-4f735466cecf");

QStringList flags(const QString &home)
{
    QStringList list {QStringLiteral("--headless"),
                      QStringLiteral("--disable-gpu"),
                      QStringLiteral("--disable-quic"),
                      QStringLiteral("--no-first-run"),
                      QStringLiteral("--no-proxy-server"),
                      QStringLiteral("--disable-background-networking"),
                      QStringLiteral("--disable-component-update"),
                      QStringLiteral("--disable-sync"),
                      QStringLiteral("--disable-dev-shm-usage"),
                      QStringLiteral("--hide-scrollbars"),
                      QStringLiteral("--user-data-dir=") + home};
    if (::geteuid() == 0)
        list << QStringLiteral("--no-sandbox"); // the sandbox does not work as root
    return list;
}

QProcessEnvironment environment(const QString &home)
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"})
        result.insert(QLatin1String(name), home);
    // The sanitizers must not check the browser.
    for (const char *name : {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LD_PRELOAD"})
        result.remove(QLatin1String(name));
    return result;
}

// Returns the path of a script that starts Chromium so that it ends with chromedriver.
QString createLauncher(const QString &home)
{
    const QString path = home + QStringLiteral("/launcher");
    writeFile(path, "#!/bin/sh\nexec setpriv --pdeathsig KILL "
                        + QFile::encodeName(QStandardPaths::findExecutable(browserName)) + " \"$@\"\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::ExeOwner);
    return path;
}

} // namespace

void EndingProcess::setupChildProcess()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

bool Browser::isAvailable()
{
    return !QStandardPaths::findExecutable(browserName).isEmpty()
           && !QStandardPaths::findExecutable(driverName).isEmpty();
}

Browser::Browser() = default;

Browser::~Browser()
{
    if (!m_session.isEmpty())
        send("DELETE", QString());
    m_driver.terminate();
    if (!m_driver.waitForFinished(timeoutMs))
        m_driver.kill();
    m_driver.waitForFinished(timeoutMs);
}

// Returns the port, or an empty string after a failure.
QString Browser::startDriver()
{
    m_driver.start(driverName, {QStringLiteral("--port=0")});
    const QRegularExpression form(QStringLiteral("started successfully(?: on port ([0-9]+))?\\."));
    QRegularExpressionMatch started;
    m_error.clear();
    const auto hasAnswered = [&] {
        m_error += QString::fromUtf8(m_driver.readAll());
        started = form.match(m_error);
        return started.hasMatch() || m_driver.state() == QProcess::NotRunning;
    };
    if (!QTest::qWaitFor(hasAnswered, timeoutMs))
        return QString();
    m_printsPort = !started.hasMatch() || !started.captured(1).isEmpty();
    return started.captured(1);
}

bool Browser::start()
{
    m_driver.setProcessEnvironment(environment(m_home.path()));
    m_driver.setProcessChannelMode(QProcess::MergedChannels);
    QString port = startDriver();
    // The driver ends if the port that the system chose for IPv4 is in use for IPv6.
    if (m_driver.state() == QProcess::NotRunning)
        port = startDriver();
    if (port.isEmpty())
        return false;
    m_address = QUrl(QStringLiteral("http://127.0.0.1:%1/session").arg(port));
    const QJsonObject options {{QStringLiteral("binary"), createLauncher(m_home.path())},
                               {QStringLiteral("args"), QJsonArray::fromStringList(flags(m_home.path()))}};
    const QJsonObject wanted {{QStringLiteral("goog:chromeOptions"), options},
                              {QStringLiteral("goog:loggingPrefs"),
                               QJsonObject {{QStringLiteral("browser"), QStringLiteral("ALL")}}}};
    const QJsonObject created =
        send("POST", QString(),
             {{QStringLiteral("capabilities"), QJsonObject {{QStringLiteral("alwaysMatch"), wanted}}}})
            .toObject();
    m_session = created.value(QStringLiteral("sessionId")).toString();
    return !m_session.isEmpty();
}

QJsonValue Browser::send(const QByteArray &method, const QString &path, const QJsonObject &body)
{
    const QString session = m_session.isEmpty() ? QString() : QLatin1Char('/') + m_session;
    const Answer answer =
        request(method, QUrl(m_address.toString() + session + path),
                method == "POST" ? QJsonDocument(body).toJson(QJsonDocument::Compact) : QByteArray());
    if (answer.status != HttpStatus::Ok)
        m_error = QString::fromUtf8(answer.body);
    return QJsonDocument::fromJson(answer.body).object().value(QStringLiteral("value"));
}

bool Browser::open(const QUrl &url)
{
    m_error.clear();
    send("POST", QStringLiteral("/url"), {{QStringLiteral("url"), url.toString()}});
    return m_error.isEmpty();
}

QJsonValue Browser::run(const QString &script, const QJsonArray &arguments)
{
    return send("POST", QStringLiteral("/execute/sync"),
                {{QStringLiteral("script"), script}, {QStringLiteral("args"), arguments}});
}

bool Browser::waitFor(const QString &script, const QJsonValue &value)
{
    QJsonValue last;
    const bool isThere = QTest::qWaitFor([&] { return (last = run(script)) == value; }, timeoutMs);
    if (!isThere)
        qWarning().noquote() << script << "returns" << last;
    return isThere;
}

QString Browser::elementPath(const QString &selector)
{
    const QJsonObject found =
        send("POST", QStringLiteral("/element"),
             {{QStringLiteral("using"), QStringLiteral("css selector")}, {QStringLiteral("value"), selector}})
            .toObject();
    return QStringLiteral("/element/") + found.value(elementKey).toString();
}

bool Browser::click(const QString &selector)
{
    m_error.clear();
    send("POST", elementPath(selector) + QStringLiteral("/click"));
    return m_error.isEmpty();
}

bool Browser::type(const QString &selector, const QString &text)
{
    m_error.clear();
    const QString path = elementPath(selector);
    send("POST", path + QStringLiteral("/value"), {{QStringLiteral("text"), text}});
    return m_error.isEmpty();
}

void Browser::emulate(const QString &command, const QJsonObject &parameters)
{
    send("POST", QStringLiteral("/goog/cdp/execute"),
         {{QStringLiteral("cmd"), QLatin1String("Emulation.") + command},
          {QStringLiteral("params"), parameters}});
}

void Browser::setColorScheme(const QString &scheme)
{
    const QJsonObject feature {{QStringLiteral("name"), QStringLiteral("prefers-color-scheme")},
                               {QStringLiteral("value"), scheme}};
    emulate(QStringLiteral("setEmulatedMedia"), {{QStringLiteral("features"), QJsonArray {feature}}});
}

void Browser::setSize(int width, int height)
{
    emulate(QStringLiteral("setDeviceMetricsOverride"), {{QStringLiteral("width"), width},
                                                         {QStringLiteral("height"), height},
                                                         {QStringLiteral("deviceScaleFactor"), 1},
                                                         {QStringLiteral("mobile"), false}});
}

QByteArray Browser::screenshot()
{
    return QByteArray::fromBase64(send("GET", QStringLiteral("/screenshot")).toString().toLatin1());
}

QStringList Browser::errors()
{
    const QJsonArray entries =
        send("POST", QStringLiteral("/se/log"), {{QStringLiteral("type"), QStringLiteral("browser")}})
            .toArray();
    QStringList result;
    for (const QJsonValue &entry : entries) {
        if (entry.toObject().value(QStringLiteral("level")).toString() == QLatin1String("SEVERE"))
            result << entry.toObject().value(QStringLiteral("message")).toString();
    }
    return result;
}
