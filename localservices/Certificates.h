// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <memory>

namespace LocalServices {

/** A certificate and its key, both as PEM; empty for none. */
struct Certificate
{
    QByteArray certificate;
    QByteArray privateKey;
};

/** A certificate authority that lives as long as the object; nobody trusts it unless told so. */
class Authority
{
public:
    Authority();
    ~Authority();

    /** The authority's own certificate, as PEM. */
    QByteArray certificate() const;

    /** A certificate for the host name or IP address @p host, valid from yesterday to @p until. */
    Certificate issue(const QString &host, const QDateTime &until = defaultEnd()) const;

    /** A certificate that stands for itself alone. */
    static Certificate selfSigned(const QString &host);

    static QDateTime defaultEnd();

private:
    Q_DISABLE_COPY(Authority)
    struct Identity;

    std::unique_ptr<Identity> m_identity;
};

} // namespace LocalServices
