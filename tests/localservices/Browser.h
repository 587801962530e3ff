// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

/**
 * A Chromium without a window, in a home of its own, driven through chromedriver by the WebDriver protocol
 * on loopback.
 */
class Browser
{
public:
    /** False where Chromium or its driver isn't installed. */
    static bool isAvailable();

    Browser();
    ~Browser();

    /** False where it can't run, with the reason in error(). */
    bool start();
    QString error() const { return m_error; }

    bool open(const QUrl &url);

    /** What the script, the body of a function, returns in the page. */
    QJsonValue run(const QString &script, const QJsonArray &arguments = {});

    /** Runs the script again and again until it returns @p value. */
    bool waitFor(const QString &script, const QJsonValue &value = true);

    /** Clicks and types as a user does. */
    bool click(const QString &selector);
    bool type(const QString &selector, const QString &text);

    void setColorScheme(const QString &scheme);
    void setSize(int width, int height);
    QByteArray screenshot();

    /** What the page wrote to the console as errors, the policy's refusals too. */
    QStringList errors();

private:
    Q_DISABLE_COPY(Browser)

    QJsonValue send(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    QString elementPath(const QString &selector);
    void emulate(const QString &command, const QJsonObject &parameters);

    QTemporaryDir m_home;
    QProcess m_driver;
    QUrl m_address;
    QString m_session;
    QString m_error;
};
