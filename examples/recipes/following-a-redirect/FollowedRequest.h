// SPDX-License-Identifier: 0BSD

#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>

/**
 * A request that follows redirects: at most five, never from https to http, and all within ten seconds.
 *
 * Use ZyBase::CHttpPostRequest for addresses that do not redirect. Unlike there, certificates are checked
 * here.
 *
 * Runs one request at a time, in a thread with an event loop. The object may be deleted while a request runs;
 * in a slot of its signals, use deleteLater().
 */
class FollowedRequest : public QObject
{
    Q_OBJECT

public:
    explicit FollowedRequest(QObject *parent = nullptr);

    void get(const QUrl &url) { start(QNetworkAccessManager::GetOperation, url); }

    /** Posts JSON. After status 301, 302 or 303 the answer is fetched with GET. */
    void post(const QUrl &url, const QByteArray &json)
    {
        start(QNetworkAccessManager::PostOperation, url, json);
    }

    /** Finds the final address without its content, for example before a download. */
    void locate(const QUrl &url) { start(QNetworkAccessManager::HeadOperation, url); }

Q_SIGNALS:
    /** The first answer that is not a redirect, with any status. @p url is the address that sent it. */
    void answered(const QUrl &url, int status, const QByteArray &body);

    /** There was no answer, or a redirect was not followed. */
    void failed(const QString &reason);

private:
    void start(QNetworkAccessManager::Operation operation, const QUrl &url, const QByteArray &json = {});
    void send(const QUrl &url);
    QNetworkReply *replyFrom(const QUrl &url);
    void handle(QNetworkReply *reply);
    void follow(const QUrl &from, int status, const QUrl &target);
    void fail(const QString &reason);

    QNetworkAccessManager m_manager;
    QNetworkAccessManager::Operation m_operation = QNetworkAccessManager::GetOperation;
    QByteArray m_json;
    int m_redirects = 0;
    QTimer m_timer;
};
