// SPDX-License-Identifier: LGPL-2.1-or-later

#include "TlsSupport.h"

#include <QCoreApplication>
#include <QSslSocket>

QString tlsProblem()
{
    if (QSslSocket::supportsSsl())
        return QString();
    return QCoreApplication::translate(
               "TlsSupport",
               "Secure connections don't work here. They need the OpenSSL library, in a version that goes "
               "with %1; it is missing, or of another version.")
        .arg(QSslSocket::sslLibraryBuildVersionString());
}

QString explainNoAnswer(const QUrl &url)
{
    if (url.scheme() == QLatin1String("https") && !QSslSocket::supportsSsl())
        return tlsProblem();
    return QCoreApplication::translate("TlsSupport", "%1 can't be reached.").arg(url.host());
}
