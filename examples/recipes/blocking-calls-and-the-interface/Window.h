// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QLabel>
#include <QPushButton>
#include <QUrl>
#include <QWidget>

/** A window that asks for an address in three ways: as one would write it first, and in two safe ones. */
class Window : public QWidget
{
    Q_OBJECT

public:
    explicit Window(const QUrl &url);

    QPushButton *plainButton() { return &m_plainButton; }
    QPushButton *disablingButton() { return &m_disablingButton; }
    QPushButton *threadButton() { return &m_threadButton; }

Q_SIGNALS:
    /** With how many requests are running, this one included. */
    void started(int running);
    void answered(const QByteArray &answer, int running);

private:
    void askPlainly();
    void askDisabled();
    void askInThread();

    void showAnswer(const QByteArray &answer);

    const QUrl m_url;
    int m_running = 0;
    QPushButton m_plainButton;
    QPushButton m_disablingButton;
    QPushButton m_threadButton;
    QLabel m_answer;
};
