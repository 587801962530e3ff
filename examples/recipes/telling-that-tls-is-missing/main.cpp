// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows what a host tells its user when a request has no answer: that the server can't be reached, or that
// this machine can't speak https at all.
//
//     recipe-telling-that-tls-is-missing ADDRESS

#include "TlsSupport.h"

#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>
#include <QSslSocket>
#include <QTextStream>
#include <QTimer>

using ZyBase::CHttpPostRequest;

namespace {

// The request's thread still takes its last steps when its outcome is told.
constexpr int lastStepsMs = 200;

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

void showOutcome(const QUrl &url, const QByteArray &answer, int status)
{
    say(QStringLiteral("Status %1 with %2 bytes").arg(status).arg(answer.size()));
    say(status == 0 ? explainNoAnswer(url) : QString::fromUtf8(answer));
}

void quit(int exitCode)
{
    QTimer::singleShot(lastStepsMs, qApp, [exitCode] { QCoreApplication::exit(exitCode); });
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QUrl url(QCoreApplication::arguments().value(1));
    say(QStringLiteral("TLS by %1").arg(QSslSocket::sslLibraryVersionString()));

    CHttpPostRequest request;
    QObject::connect(&request, &CHttpPostRequest::SignalRequestResultAndStatusCode, &application,
                     [url](const QByteArray &answer, int status) {
                         showOutcome(url, answer, status);
                         quit(status == 0 ? EXIT_FAILURE : EXIT_SUCCESS);
                     });
    QObject::connect(&request, &CHttpPostRequest::SignalRequestTimeout, &application, [] {
        say(QStringLiteral("No answer within ten seconds"));
        quit(EXIT_FAILURE);
    });
    request.StartGetRequestAndStatusCode(url, QString());
    return QCoreApplication::exec();
}
