// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"
#include "ReservedPort.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace LocalServices {

/** An nginx process on loopback with its own configuration, for the files of a temporary directory. */
class Nginx
{
public:
    /** Returns false if nginx is not installed. */
    static bool isAvailable();

    /**
     * Starts nginx, with TLS if a certificate is passed.
     *
     * @param protocols the value of "ssl_protocols", for example "TLSv1.2"
     */
    explicit Nginx(const Certificate &certificate = {},
                   const QString &protocols = QStringLiteral("TLSv1.2 TLSv1.3"));
    ~Nginx();

    /** Returns false if nginx could not be started. */
    bool isRunning() const { return m_isRunning; }

    QUrl url(const QString &path) const;

    /** Returns the path of the file @p name in the temporary directory. */
    QString filePath(const QString &name) const;

private:
    Q_DISABLE_COPY(Nginx)
    bool start();
    bool waitForConnection();

    QTemporaryDir m_directory;
    const Certificate m_certificate;
    const QString m_protocols;
    const ReservedPort m_port;
    QProcess m_process;
    bool m_isRunning = false;
};

} // namespace LocalServices
