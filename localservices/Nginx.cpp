// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Nginx.h"

#include <QDir>
#include <QHostAddress>
#include <QStandardPaths>
#include <QTcpSocket>

namespace LocalServices {

namespace {

constexpr int timeoutMs = 20000;

// The search path of ordinary users may lack the directories of servers.
QString program()
{
    QString found = QStandardPaths::findExecutable(QStringLiteral("nginx"));
    if (!found.isEmpty())
        return found;
    return QStandardPaths::findExecutable(QStringLiteral("nginx"),
                                          {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("local services: cannot write %s", qPrintable(path));
}

} // namespace

bool Nginx::isAvailable()
{
    return !program().isEmpty();
}

Nginx::Nginx(const Certificate &certificate, const QString &protocols)
    : m_certificate(certificate)
    , m_protocols(protocols)
{
    QDir(m_directory.path()).mkdir(QStringLiteral("www"));
    write(m_directory.filePath(QStringLiteral("certificate")), certificate.certificate);
    write(m_directory.filePath(QStringLiteral("key")), certificate.privateKey);
    m_isRunning = start();
}

Nginx::~Nginx()
{
    m_process.kill();
    m_process.waitForFinished();
}

QUrl Nginx::url(const QString &path) const
{
    const QString scheme =
        m_certificate.certificate.isEmpty() ? QStringLiteral("http") : QStringLiteral("https");
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(scheme).arg(m_port.number()).arg(path));
}

QString Nginx::filePath(const QString &name) const
{
    return m_directory.filePath(QStringLiteral("www/") + name);
}

bool Nginx::start()
{
    const QString tls = m_certificate.certificate.isEmpty()
                            ? QString()
                            : QStringLiteral("ssl_certificate %1/certificate; ssl_certificate_key %1/key;"
                                             " ssl_protocols %2;")
                                  .arg(m_directory.path(), m_protocols);
    const QString configuration =
        QStringLiteral("daemon off; master_process off; pid %1/pid; error_log %1/errors;\n"
                       "events { }\n"
                       "http {\n"
                       "  access_log off; sendfile on;\n"
                       "  client_body_temp_path %1/body; proxy_temp_path %1/proxy;\n"
                       "  fastcgi_temp_path %1/fastcgi; uwsgi_temp_path %1/uwsgi; scgi_temp_path %1/scgi;\n"
                       "  server { listen 127.0.0.1:%2%3; root %1/www; %4 }\n"
                       "}\n")
            .arg(m_directory.path())
            .arg(m_port.number())
            .arg(tls.isEmpty() ? QString() : QStringLiteral(" ssl"), tls);
    const QString path = m_directory.filePath(QStringLiteral("configuration"));
    write(path, configuration.toUtf8());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(program(), {QStringLiteral("-c"), path, QStringLiteral("-p"), m_directory.path()});
    return m_process.waitForStarted(timeoutMs) && waitForConnection();
}

bool Nginx::waitForConnection()
{
    constexpr int pauseMs = 10;
    for (int waited = 0; waited < timeoutMs; waited += pauseMs) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, m_port.number());
        if (socket.waitForConnected(timeoutMs))
            return true;
        if (m_process.waitForFinished(pauseMs))
            return false;
    }
    return false;
}

} // namespace LocalServices
