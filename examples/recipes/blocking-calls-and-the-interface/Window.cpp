// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Window.h"

#include "BlockingCalls.h"

#include <ZyBase/http/CHttpPostRequest.h>

#include <QVBoxLayout>

namespace {

QByteArray fetch(const QUrl &url)
{
    ZyBase::CHttpPostRequest request;
    QByteArray answer;
    request.StartGetRequestSync(url, answer);
    return answer;
}

} // namespace

Window::Window(const QUrl &url)
    : m_url(url)
    , m_plainButton(tr("Ask plainly"))
    , m_disablingButton(tr("Ask with the button disabled"))
    , m_threadButton(tr("Ask in a thread"))
{
    auto *const layout = new QVBoxLayout(this);
    for (QWidget *const widget :
         std::initializer_list<QWidget *> {&m_plainButton, &m_disablingButton, &m_threadButton, &m_answer})
        layout->addWidget(widget);
    connect(&m_plainButton, &QPushButton::clicked, this, &Window::askPlainly);
    connect(&m_disablingButton, &QPushButton::clicked, this, &Window::askDisabled);
    connect(&m_threadButton, &QPushButton::clicked, this, &Window::askInThread);
}

// A second click comes in before the first one's answer.
void Window::askPlainly()
{
    Q_EMIT started(++m_running);
    showAnswer(fetch(m_url));
}

void Window::askDisabled()
{
    Q_EMIT started(++m_running);
    QByteArray answer;
    if (!runDisabled(&m_disablingButton, [&] { answer = fetch(m_url); }))
        return; // the user closed the window meanwhile
    showAnswer(answer);
}

void Window::askInThread()
{
    Q_EMIT started(++m_running);
    m_threadButton.setEnabled(false);
    const QUrl url = m_url;
    runInThread([url] { return fetch(url); }, this,
                [this](const QByteArray &answer) {
                    m_threadButton.setEnabled(true);
                    showAnswer(answer);
                });
}

void Window::showAnswer(const QByteArray &answer)
{
    --m_running;
    m_answer.setText(QString::fromUtf8(answer));
    Q_EMIT answered(answer, m_running);
}
