// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "Files.h"
#include "Waiting.h"

#include <localservices/HttpServer.h>

#include <JlCompress.h>
#include <qrencode.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QEventLoop>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPainter>
#include <QProcess>
#include <QTimer>

#include <atomic>
#include <thread>

namespace {

std::atomic<bool> isStopped;

// Sends a POST if there is a body, otherwise a GET. Waits for the answer, or until isStopped.
QByteArray exchange(const QUrl &url, const QByteArray &body)
{
    constexpr std::chrono::milliseconds interval(20);
    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply *const reply = body.isEmpty() ? manager.get(request) : manager.post(request, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, reply, [reply] {
        if (isStopped)
            reply->abort();
    });
    timer.start(interval);
    loop.exec();
    return reply->readAll();
}

std::vector<std::thread> startThreads(int count, const QUrl &url, const QByteArray &body)
{
    std::vector<std::thread> threads;
    while (threads.size() < size_t(count))
        threads.emplace_back([url, body] { exchange(url, body); });
    return threads;
}

bool joinAll(std::vector<std::thread> threads)
{
    for (std::thread &thread : threads)
        thread.join();
    return true;
}

bool sendInThreads(const QUrl &url)
{
    constexpr int requests = 3;
    return joinAll(startThreads(requests, url, "{}"));
}

bool stopRequests()
{
    const LocalServices::HttpServer server;
    std::vector<std::thread> threads = startThreads(manyRequests, server.url(QStringLiteral("/never")), {});
    const bool areInFlight =
        QTest::qWaitFor([&server] { return server.requests().size() == manyRequests; }, beforeTimeLimitMs);
    isStopped = true;
    joinAll(std::move(threads));
    isStopped = false;
    return areInFlight;
}

bool writeLog(const QString &path, int round)
{
    constexpr int messages = 50;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return false;
    for (int i = 0; i < messages; ++i) {
        const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
        file.write(QStringLiteral("%1 INFO   - round %2, message %3\n").arg(time).arg(round).arg(i).toUtf8());
        file.flush();
    }
    return true;
}

// What IsDarkTheme() runs if no desktop has a setting.
bool runTools()
{
    const QString settings = QStringLiteral("gsettings");
    QProcess::execute(QStringLiteral("which"), {settings});
    for (const char *const schema : {"org.gnome.desktop.interface", "org.mate.interface"}) {
        QProcess process;
        process.start(settings, {QStringLiteral("get"), QLatin1String(schema), QStringLiteral("gtk-theme")});
        process.waitForFinished();
    }
    return true;
}

bool useFiles(const QString &path)
{
    const QJsonObject settings {{QStringLiteral("width"), 800}};
    return writeFile(path, QJsonDocument(settings).toJson())
           && QJsonDocument::fromJson(readFile(path)).object() == settings
           && QCryptographicHash::hash(readFile(path), QCryptographicHash::Md5).size() == 16;
}

bool drawSymbol()
{
    constexpr int side = 200;
    QRcode *const symbol = QRcode_encodeString(symbolText, 0, QR_ECLEVEL_Q, QR_MODE_8, 1);
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    for (int i = 0; i < symbol->width * symbol->width; ++i) {
        if (symbol->data[i] & 1)
            painter.fillRect(i % symbol->width, i / symbol->width, 1, 1, Qt::black);
    }
    QRcode_free(symbol);
    return true;
}

bool findEvents(const QString &path)
{
    static QMap<QString, QJsonObject> events;
    const QJsonArray array = QJsonDocument::fromJson(readFile(path)).array();
    for (const QJsonValue &value : array)
        events.insert(value.toObject().value(QLatin1String("event_key")).toString(), value.toObject());
    int found = 0;
    for (int i = 0; i < manyEvents; ++i)
        found += events.value(QStringLiteral("key_%1").arg(i)).size() == 4 ? 1 : 0;
    return found == manyEvents;
}

} // namespace

std::vector<Part> controlParts(const Surroundings &s)
{
    return {
        {"log", [&s, round = 0]() mutable { return writeLog(s.path("control.log"), round++); }},
        {"requests",
         [&s] {
             const QUrl url = s.url("/echo");
             return sendInThreads(url) && !exchange(url, "{}").isEmpty() && !exchange(url, {}).isEmpty();
         }},
        {"downloads",
         [&s] { return writeFile(s.path("file.bin"), exchange(s.url("/bytes/200000/file.bin"), {})); }},
        {"archive", [&s] { return !JlCompress::extractDir(s.archive(), s.path("extracted")).isEmpty(); }},
        {"theme", runTools},
        {"reports", [&s] { return sendInThreads(s.statistics); }},
        {"address", [] { return !exchange(QUrl(QStringLiteral("http://ip-api.com/json")), {}).isEmpty(); }},
        {"files", [&s] { return useFiles(s.path("settings.json")); }},
        {"qrcode", drawSymbol},
        {"in-flight", stopRequests, false},
        {"catalogue", [&s] { return findEvents(s.catalogue(manyEvents)); }, false}};
}
