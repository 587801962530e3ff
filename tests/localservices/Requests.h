// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QMap>
#include <QNetworkProxy>
#include <QTcpSocket>
#include <QUrl>

/** What a server answers. */
struct Answer
{
    int status = 0; ///< 0 for none
    QMap<QByteArray, QByteArray> headers; ///< by names in small letters
    QByteArray body;
};

/** One request of this test's own, past the library; @p method such as "GET". */
Answer request(const QByteArray &method, const QUrl &url, const QByteArray &body = QByteArray(),
               const QNetworkProxy &proxy = QNetworkProxy::NoProxy);

/** One request whose lines are all given, but for the last empty one. */
Answer rawRequest(const QUrl &url, const QByteArray &lines);

/** What a statistics backend takes for a record that was signed under the secret just now. */
Answer sendRecord(const QUrl &statistics, const QByteArray &secret,
                  const QByteArray &action = QByteArrayLiteral("install"));

/** Reads a feed of server-sent events like a browser, without its connecting again. */
class FeedReader
{
public:
    struct Event
    {
        QByteArray id;
        QByteArray name;
        QByteArray data;
    };

    /** An empty @p lastEventId sends no such header. */
    explicit FeedReader(const QUrl &feed, const QByteArray &lastEventId = QByteArray());

    /** Waits for the next event that has data; empty where none comes. */
    Event next();

    /** The answer's first line and headers, once they have come. */
    QByteArray head();

    /** Waits until the server ends the feed. */
    bool waitForEnd();

    /** All bytes of the body so far, its chunks joined. */
    QByteArray body() const;

private:
    Q_DISABLE_COPY(FeedReader)

    bool readMore();

    QTcpSocket m_socket;
    QByteArray m_bytes;
    int m_position = 0; ///< in the body, behind the last event
};
