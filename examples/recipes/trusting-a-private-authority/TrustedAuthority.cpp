// SPDX-License-Identifier: 0BSD

#include "TrustedAuthority.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QSslCertificate>
#include <QSslConfiguration>

QString trustAuthority(const QString &pemFile)
{
    const QList<QSslCertificate> authorities = QSslCertificate::fromPath(pemFile);
    if (authorities.isEmpty())
        return QCoreApplication::translate("TrustedAuthority", "%1 contains no certificate.").arg(pemFile);
    for (const QSslCertificate &authority : authorities) {
        if (authority.expiryDate() < QDateTime::currentDateTime())
            return QCoreApplication::translate("TrustedAuthority", "A certificate in %1 has expired.")
                .arg(pemFile);
    }
    QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
    trusting.setCaCertificates(trusting.caCertificates() + authorities);
    QSslConfiguration::setDefaultConfiguration(trusting);
    return QString();
}
