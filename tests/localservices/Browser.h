// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

/** A process that the kernel kills when the thread that started it ends. */
class EndingProcess : public QProcess
{
protected:
    void setupChildProcess() override;
};

/**
 * A Chromium without a window, controlled through chromedriver by the WebDriver protocol. It has a temporary
 * home directory. Both programs end with the test process, even if it is killed.
 */
class Browser
{
public:
    /** Returns false if Chromium or chromedriver is not installed. */
    static bool isAvailable();

    Browser();
    ~Browser();

    /** Starts the browser. Returns false after a failure; error() is the reason. */
    bool start();
    QString error() const { return m_error; }

    /** Returns false after a failed start() if chromedriver is so old that it does not print its port. */
    bool printsPort() const { return m_printsPort; }

    /** Opens a page. Returns false after a failure. */
    bool open(const QUrl &url);

    /** Runs a script, the body of a function, in the page. Returns its result. */
    QJsonValue run(const QString &script, const QJsonArray &arguments = {});

    /** Runs the script repeatedly until it returns @p value. Returns false after a timeout. */
    bool waitFor(const QString &script, const QJsonValue &value = true);

    /** Click an element and type into it, as a user does. */
    bool click(const QString &selector);
    bool type(const QString &selector, const QString &text);

    void setColorScheme(const QString &scheme);
    void setSize(int width, int height);
    QByteArray screenshot();

    /** Returns the errors in the console, including violations of the content security policy. */
    QStringList errors();

private:
    Q_DISABLE_COPY(Browser)

    QJsonValue send(const QByteArray &method, const QString &path, const QJsonObject &body = {});
    QString startDriver();
    QString elementPath(const QString &selector);
    void emulate(const QString &command, const QJsonObject &parameters);

    QTemporaryDir m_home;
    EndingProcess m_driver;
    QUrl m_address;
    QString m_session;
    QString m_error;
    bool m_printsPort = true;
};
