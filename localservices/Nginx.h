// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Certificates.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

namespace LocalServices {

/** A real nginx on loopback that serves a folder of its own, in a configuration of its own. */
class Nginx
{
public:
    /** False where nginx isn't installed. */
    static bool isAvailable();

    /**
     * Starts it, under TLS where a certificate is given.
     *
     * @param protocols nginx's "ssl_protocols", such as "TLSv1.2"
     */
    explicit Nginx(const Certificate &certificate = {},
                   const QString &protocols = QStringLiteral("TLSv1.2 TLSv1.3"));
    ~Nginx();

    bool isRunning() const { return m_isRunning; }

    QUrl url(const QString &path) const;

    /** Where the file @p name of the served folder lies. */
    QString filePath(const QString &name) const;

private:
    Q_DISABLE_COPY(Nginx)
    bool start();
    bool waitUntilItAnswers();

    QTemporaryDir m_directory;
    const Certificate m_certificate;
    const QString m_protocols;
    quint16 m_port = 0;
    QProcess m_process;
    bool m_isRunning = false;
};

} // namespace LocalServices
