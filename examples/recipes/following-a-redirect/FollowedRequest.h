// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>

/**
 * A request that follows redirections: at most five, never from https to http, and all within ten seconds.
 *
 * For an address that answers by itself ZyBase::CHttpPostRequest will do. Unlike there, certificates are
 * checked here. One request an object at a time, in a thread with an event loop; it may be deleted any time.
 */
class FollowedRequest : public QObject
{
    Q_OBJECT

public:
    explicit FollowedRequest(QObject *parent = nullptr);

    void get(const QUrl &url) { start(QNetworkAccessManager::GetOperation, url); }

    /** Posts JSON; becomes a GET where the server wants the answer to be fetched elsewhere. */
    void post(const QUrl &url, const QByteArray &json)
    {
        start(QNetworkAccessManager::PostOperation, url, json);
    }

    /** Finds out where the address leads to without its content, for a download say. */
    void locate(const QUrl &url) { start(QNetworkAccessManager::HeadOperation, url); }

Q_SIGNALS:
    /** An answer that is no redirection, of whatever status, and the address that it came from. */
    void answered(const QUrl &url, int status, const QByteArray &body);

    /** No answer came, or a redirection that isn't followed. */
    void failed(const QString &reason);

private:
    void start(QNetworkAccessManager::Operation operation, const QUrl &url, const QByteArray &json = {});
    QNetworkReply *send(const QUrl &url);
    void ask(const QUrl &url);
    void take(QNetworkReply *reply);
    void follow(const QUrl &from, int status, const QUrl &target);
    void fail(const QString &reason);

    QNetworkAccessManager m_manager;
    QNetworkAccessManager::Operation m_operation = QNetworkAccessManager::GetOperation;
    QByteArray m_json;
    int m_redirections = 0;
    QTimer m_timer;
};
