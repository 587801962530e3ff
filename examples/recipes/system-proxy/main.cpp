// SPDX-License-Identifier: 0BSD

// Sends a request through the proxy of the user's system, and prints the proxy.
//
//     http_proxy=http://proxy.example.org:3128 recipe-system-proxy [--plainly] ADDRESS
//
// With --plainly it uses Qt's own default.

#include "../PrintLine.h"
#include "SystemProxy.h"

#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.removeAll(QStringLiteral("--plainly")) == 0)
        useSystemProxy();

    const QUrl url(arguments.value(0));
    const QString proxy = proxyFor(url);
    printLine(proxy.isNull() ? QStringLiteral("No proxy") : QStringLiteral("Proxy %1").arg(proxy));

    ZyBase::CHttpPostRequest request;
    QByteArray answer;
    const bool isInTime = request.StartGetRequestSync(url, answer);
    printLine(isInTime && !answer.isEmpty() ? QString::fromUtf8(answer) : QStringLiteral("No answer"));
}
