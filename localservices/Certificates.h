// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

namespace LocalServices {

/** A certificate and its private key, both as PEM. Both are empty if there is no certificate. */
struct Certificate
{
    QByteArray certificate;
    QByteArray privateKey;
};

/** A temporary certificate authority. Clients trust it only if its certificate is added to theirs. */
class Authority
{
public:
    Authority();
    ~Authority();

    /** Returns the authority's own certificate, as PEM. */
    QByteArray certificate() const;

    /** Returns a certificate for a host name or IP address, valid from yesterday to @p until. */
    Certificate issue(const QString &host, const QDateTime &until = defaultEnd()) const;

    /** Returns a self-signed certificate. */
    static Certificate selfSigned(const QString &host);

    /** Returns the default end of a certificate: 30 days from now. */
    static QDateTime defaultEnd();

private:
    Q_DISABLE_COPY(Authority)
    struct Identity;

    std::unique_ptr<Identity> m_identity;
};

} // namespace LocalServices
