// SPDX-License-Identifier: LGPL-2.1-or-later

// Shows a request that goes through the proxy of the user's system, and which one that is.
//
//     http_proxy=http://proxy.example.org:3128 recipe-system-proxy [--plainly] ADDRESS
//
// With --plainly it relies on what Qt does by itself.

#include "SystemProxy.h"

#include <ZyBase/http/CHttpPostRequest.h>

#include <QCoreApplication>
#include <QTextStream>

namespace {

void say(const QString &line)
{
    QTextStream(stdout) << line << '\n';
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.removeAll(QStringLiteral("--plainly")) == 0)
        useSystemProxy();

    const QUrl url(arguments.value(0));
    const QString proxy = proxyFor(url);
    say(proxy.isNull() ? QStringLiteral("Asked straight") : QStringLiteral("Asked through %1").arg(proxy));

    ZyBase::CHttpPostRequest request;
    QByteArray answer;
    const bool isInTime = request.StartGetRequestSync(url, answer);
    say(isInTime && !answer.isEmpty() ? QString::fromUtf8(answer) : QStringLiteral("No answer"));
}
