// SPDX-License-Identifier: 0BSD

// Sends a request and prints a message for the user: the server can't be reached, or this machine has no TLS.
//
//     recipe-telling-that-tls-is-missing ADDRESS

#include "../PrintLine.h"
#include "OwnedRequest.h"
#include "TlsSupport.h"

#include <QCoreApplication>
#include <QSslSocket>

using ZyBase::CHttpPostRequest;

namespace {

void showOutcome(const QUrl &url, const QByteArray &answer, int status)
{
    printLine(QStringLiteral("Status %1 with %2 bytes").arg(status).arg(answer.size()));
    printLine(status == 0 ? explainNoAnswer(url) : QString::fromUtf8(answer));
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QUrl url(QCoreApplication::arguments().value(1));
    printLine(QStringLiteral("TLS library: %1").arg(QSslSocket::sslLibraryVersionString()));

    int exitCode = EXIT_FAILURE;
    CHttpPostRequest *const request = createRequest(&application);
    QObject::connect(request, &CHttpPostRequest::SignalRequestResultAndStatusCode, &application,
                     [&exitCode, url](const QByteArray &answer, int status) {
                         showOutcome(url, answer, status);
                         exitCode = status == 0 ? EXIT_FAILURE : EXIT_SUCCESS;
                     });
    QObject::connect(request, &CHttpPostRequest::SignalRequestTimeout, &application,
                     [] { printLine(QStringLiteral("There was no answer within ten seconds")); });
    QObject::connect(request, &QObject::destroyed, &application, &QCoreApplication::quit);
    request->StartGetRequestAndStatusCode(url, QString());
    QCoreApplication::exec();
    return exitCode;
}
