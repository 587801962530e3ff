// SPDX-License-Identifier: 0BSD

#include "TlsSupport.h"

#include <QCoreApplication>
#include <QSslSocket>

QString tlsProblem()
{
    if (QSslSocket::supportsSsl())
        return QString();
    return QCoreApplication::translate("TlsSupport", "Secure connections don't work on this machine. They "
                                                     "need an OpenSSL library that is compatible "
                                                     "with %1. It is missing or has another version.")
        .arg(QSslSocket::sslLibraryBuildVersionString());
}

QString explainNoAnswer(const QUrl &url)
{
    if (url.scheme() == QLatin1String("https") && !QSslSocket::supportsSsl())
        return tlsProblem();
    return QCoreApplication::translate("TlsSupport", "%1 can't be reached.").arg(url.host());
}
