// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ReservedPort.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QTcpSocket>

namespace LocalServices {

ReservedPort::ReservedPort()
    : m_socket(std::make_unique<QTcpSocket>())
{
    m_socket->setProxy(QNetworkProxy::NoProxy);
    if (!m_socket->bind(QHostAddress::LocalHost, 0, QAbstractSocket::ReuseAddressHint))
        qFatal("local services: cannot reserve a port: %s", qPrintable(m_socket->errorString()));
}

ReservedPort::~ReservedPort() = default;

quint16 ReservedPort::number() const
{
    return m_socket->localPort();
}

QUrl ReservedPort::url() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(number()));
}

} // namespace LocalServices
