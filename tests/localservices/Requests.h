// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QMap>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QUrl>

/** The response of a server. */
struct Answer
{
    int status = 0; ///< 0 if there is no response
    QMap<QByteArray, QByteArray> headers; ///< the names are in lower case
    QByteArray body;
};

/** Sends one request without the library and waits for the response. */
Answer request(const QByteArray &method, const QUrl &url, const QByteArray &body = QByteArray(),
               const QNetworkProxy &proxy = QNetworkProxy::NoProxy);

/** Sends these lines followed by an empty one, and waits for the response. */
Answer rawRequest(const QUrl &url, const QByteArray &lines);

/** Sends a record that is signed with the secret and the current time to a statistics backend. */
Answer sendRecord(const QUrl &statistics, const QByteArray &secret,
                  const QByteArray &action = QByteArrayLiteral("install"));

/** Reads server-sent events as a browser does, but does not reconnect. */
class FeedReader
{
public:
    struct Event
    {
        QByteArray id;
        QByteArray name;
        QByteArray data;
    };

    /** Connects. The header "Last-Event-ID" is sent if @p lastEventId is not empty. */
    explicit FeedReader(const QUrl &feed, const QByteArray &lastEventId = QByteArray());

    /** Waits for the next event that has data. Returns an empty event after a timeout. */
    Event next();

    /** Waits for the status line and headers and returns them. */
    QByteArray head();

    /** Waits until the server ends the feed. */
    bool waitForEnd();

    /** Returns the body received so far, without the framing of its chunks. */
    QByteArray body() const;

private:
    Q_DISABLE_COPY(FeedReader)

    bool readMore();

    QTcpSocket m_socket;
    QByteArray m_bytes;
    int m_position = 0; ///< in the body, after the last event
};
