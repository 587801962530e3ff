// SPDX-License-Identifier: 0BSD

#pragma once

#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QWidget>

/** A window that requests an address in three ways: without care, with the button disabled, in a thread. */
class Window : public QWidget
{
    Q_OBJECT

public:
    explicit Window(const QUrl &url);

    QPushButton *plainButton() { return &m_plainButton; }
    QPushButton *disablingButton() { return &m_disablingButton; }
    QPushButton *threadButton() { return &m_threadButton; }

Q_SIGNALS:
    /** @p running is the number of requests that are running, including this one. */
    void started(int running);
    /** @p running is the number of requests that are still running. */
    void answered(const QByteArray &answer, int running);

private:
    void requestPlainly();
    void requestDisabled();
    void requestInThread();

    void showAnswer(const QByteArray &answer);

    const QUrl m_url;
    int m_running = 0;
    QPushButton m_plainButton;
    QPushButton m_disablingButton;
    QPushButton m_threadButton;
    QLabel m_answer;
};
