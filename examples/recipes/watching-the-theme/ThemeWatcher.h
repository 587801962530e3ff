// SPDX-License-Identifier: 0BSD

#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

/**
 * Emits a signal when the desktop changes to a dark or a light theme.
 *
 * Queries the theme in a thread of its own, because a desktop tool that hangs can block the query for
 * minutes. Neither the main thread nor the end of the application waits for that thread.
 *
 * Create it in the main thread, after the application object.
 */
class ThemeWatcher : public QObject
{
    Q_OBJECT

public:
    /** Queries the theme at once, after each sign of a change, and every five minutes. */
    explicit ThemeWatcher(QObject *parent = nullptr);
    ~ThemeWatcher() override;

    /** Sets the interval of the queries without a sign. */
    void setInterval(std::chrono::milliseconds interval) { m_interval.start(interval); }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /** Emitted with the first result, and with each result that differs from the last. */
    void darkChanged(bool isDark);

private:
    struct Link;

    void handleSign();
    void watchSettings();
    void query();
    void handleResult(bool isDark);

    QFileSystemWatcher m_settings;
    QTimer m_settle; ///< from the first sign of a change to the query
    QTimer m_interval;
    std::shared_ptr<Link> m_link; ///< by which the query's thread finds this object while it exists
    int m_last = -1; ///< the last result; -1 for none
    bool m_isQuerying = false;
    bool m_isOutdated = false; ///< there was a sign of a change during the query
};
