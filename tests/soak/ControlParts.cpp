// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Part.h"

#include "Files.h"
#include "ProcessFigures.h"

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

#include <atomic>
#include <memory>
#include <thread>

namespace {

// Sends a POST if there is a body, otherwise a GET, and waits for the answer.
QByteArray exchange(const QUrl &url, const QByteArray &body = {},
                    const std::atomic<bool> *isStopped = nullptr)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply *const reply = body.isEmpty() ? manager.get(request) : manager.post(request, body);
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!isStopped) {
        loop.exec();
        return reply->readAll();
    }
    waitUntil([&] { return reply->isFinished() || *isStopped; });
    reply->abort();
    return reply->readAll();
}

// Sends the same request in this many threads at a time.
bool sendInThreads(const QUrl &url, int count)
{
    const auto answers = std::make_shared<std::atomic<int>>(0);
    for (int i = 0; i < count; ++i) {
        std::thread([url, answers] {
            exchange(url, "{}");
            ++*answers;
        }).detach();
    }
    return waitUntil([&] { return *answers == count; });
}

bool stopThreads(const QUrl &url)
{
    constexpr int requests = 500;
    const int threads = ProcessFigures::threadCount();
    const auto isStopped = std::make_shared<std::atomic<bool>>(false);
    for (int i = 0; i < requests; ++i)
        std::thread([url, isStopped] { exchange(url, {}, isStopped.get()); }).detach();
    const bool areInFlight =
        waitUntil([threads] { return ProcessFigures::threadCount() >= threads + requests; }, 9000);
    *isStopped = true;
    return waitUntil([threads] { return ProcessFigures::threadCount() <= threads; }) && areInFlight;
}

std::function<bool()> logPart(const Surroundings &surroundings)
{
    const QString path = surroundings.directory + QStringLiteral("/control.log");
    return [path, round = 0]() mutable {
        constexpr int messages = 50;
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
            return false;
        for (int i = 0; i < messages; ++i) {
            const QString time =
                QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
            file.write(
                QStringLiteral("%1 INFO   - round %2, message %3\n").arg(time).arg(round).arg(i).toUtf8());
            file.flush();
        }
        ++round;
        return true;
    };
}

// What IsDarkTheme() runs if no desktop has a setting.
bool runTools()
{
    const QStringList keys {QStringLiteral("org.gnome.desktop.interface gtk-theme"),
                            QStringLiteral("org.mate.interface gtk-theme")};
    QProcess::execute(QStringLiteral("which"), {QStringLiteral("gsettings")});
    for (const QString &key : keys) {
        QProcess process;
        process.start(QStringLiteral("gsettings"),
                      QStringList {QStringLiteral("get")} + key.split(QLatin1Char(' ')));
        process.waitForFinished();
    }
    return true;
}

bool useFiles(const QString &directory)
{
    const QString path = directory + QStringLiteral("/control.json");
    const QJsonObject settings {{QStringLiteral("width"), 800}};
    return writeFile(path, QJsonDocument(settings).toJson())
           && QJsonDocument::fromJson(readFile(path)).object() == settings
           && QCryptographicHash::hash(readFile(path), QCryptographicHash::Md5).size() == 16;
}

bool drawSymbol()
{
    constexpr int side = 200;
    QRcode *const symbol = QRcode_encodeString("https://example.org/soak", 0, QR_ECLEVEL_Q, QR_MODE_8, 1);
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

bool readCatalogue(const QString &path)
{
    constexpr int events = 100000;
    if (!QFile::exists(path) && !writeCatalogue(path, events))
        return false;
    static QMap<QString, QJsonObject> map;
    const QJsonArray array = QJsonDocument::fromJson(readFile(path)).array();
    for (const QJsonValue &value : array)
        map.insert(value.toObject().value(QLatin1String("event_key")).toString(), value.toObject());
    for (int i = 0; i < events; ++i) {
        if (map.value(QStringLiteral("key%1").arg(i)).size() != 4)
            return false;
    }
    return true;
}

} // namespace

std::vector<Part> controlParts(const Surroundings &surroundings)
{
    const QString &directory = surroundings.directory;
    const auto path = [&](const char *name) {
        return surroundings.server.resolved(QUrl(QLatin1String(name)));
    };
    const QString archive = directory + QStringLiteral("/archive.zip");
    return {{QStringLiteral("log"), logPart(surroundings)},
            {QStringLiteral("requests"),
             [url = path("/echo")] {
                 return sendInThreads(url, 3) && !exchange(url, "{}").isEmpty() && !exchange(url).isEmpty();
             }},
            {QStringLiteral("downloads"),
             [url = path("/bytes/200000/file.bin"), directory] {
                 return writeFile(directory + QStringLiteral("/file.bin"), exchange(url));
             }},
            {QStringLiteral("archive"),
             [archive, directory] {
                 return !JlCompress::extractDir(archive, directory + QStringLiteral("/extracted")).isEmpty();
             }},
            {QStringLiteral("theme"), runTools},
            {QStringLiteral("reports"), [url = surroundings.statistics] { return sendInThreads(url, 3); }},
            {QStringLiteral("address"),
             [] { return !exchange(QUrl(QStringLiteral("http://ip-api.com/json")), "{}").isEmpty(); }},
            {QStringLiteral("files"), [directory] { return useFiles(directory); }},
            {QStringLiteral("qrcode"), drawSymbol},
            {QStringLiteral("in-flight"), [url = path("/never")] { return stopThreads(url); }},
            {QStringLiteral("catalogue"),
             [file = directory + QStringLiteral("/catalogue.json")] { return readCatalogue(file); }}};
}
