// SPDX-License-Identifier: LGPL-2.1-or-later

// Input: server (1 byte), size of each read (1 byte), the bytes of one connection.

#include "FakeConnections.h"
#include "Fuzzing.h"

#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/RawServer.h>
#include <localservices/StatisticsBackend.h>

#include <QRegularExpression>

using namespace LocalServices;

namespace {

// The client chooses how many bytes some paths send. Large numbers only cost time.
bool hasLargeNumber(const QByteArray &request)
{
    static const QRegularExpression number(QStringLiteral("[0-9]{7}"));
    return QString::fromLatin1(request.left(request.indexOf('\n'))).contains(number);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    Input input(data, sizeBytes);
    const std::uint8_t server = input.takeByte();
    const int pieceSizeBytes = input.takeByte() * 64 + 1;
    const QByteArray request = input.takeRest();
    if (hasLargeNumber(request))
        return 0;

    const auto connect = [&] { return FakeConnections::connectClient(request, pieceSizeBytes); };
    FakeConnections::Result result;
    switch (server % 5) {
    case 0: {
        const HttpServer httpServer;
        result = connect();
        break;
    }
    case 1: {
        const GaCollector collector;
        result = connect();
        break;
    }
    case 2: {
        const StatisticsBackend backend("secret");
        result = connect();
        break;
    }
    case 3: {
        Proxy proxy([](const QString &) { return Certificate(); });
        proxy.routeAll(QUrl(QStringLiteral("http://127.0.0.1:1")));
        result = connect();
        break;
    }
    default: {
        RawServer rawServer(RawServer::answerWith("answer"));
        result = connect();
        FUZZ_VERIFY(result.toClient.isEmpty() == rawServer.requests().isEmpty());
    }
    }
    FUZZ_VERIFY(result.toClient.isEmpty() || result.toClient.startsWith("HTTP/1.1 "));
    return 0;
}
