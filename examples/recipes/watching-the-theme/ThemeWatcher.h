// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

/**
 * Tells when the desktop goes dark or light. The question may take minutes where a tool of the desktop
 * hangs, so a thread of its own asks it, one question at a time; the host never waits, at its end neither.
 *
 * Make it in the main thread, behind the application object.
 */
class ThemeWatcher : public QObject
{
    Q_OBJECT

public:
    /** Asks at once, then at each sign of a change, and every five minutes for those that leave no sign. */
    explicit ThemeWatcher(QObject *parent = nullptr);
    ~ThemeWatcher() override;

    void setInterval(std::chrono::milliseconds interval) { m_interval.start(interval); }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /** The first answer, and each one that differs from the last. */
    void darkChanged(bool isDark);

private:
    struct Answer;

    void notice();
    void watchSettings();
    void ask();
    void takeAnswer(bool isDark);

    QFileSystemWatcher m_settings;
    QTimer m_quiet; ///< runs from the first sign of a change to the question
    QTimer m_interval;
    std::shared_ptr<Answer> m_answer; ///< where the asking thread finds this object as long as it lives
    int m_last = -1; ///< the last answer; -1 for none yet
    bool m_isAsking = false;
    bool m_isOutdated = false; ///< something changed while the question was under way
};
