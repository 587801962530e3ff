// SPDX-License-Identifier: 0BSD

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
    , m_plainButton(tr("Request without care"))
    , m_disablingButton(tr("Request with the button disabled"))
    , m_threadButton(tr("Request in a thread"))
{
    auto *const layout = new QVBoxLayout(this);
    for (QWidget *const widget :
         std::initializer_list<QWidget *> {&m_plainButton, &m_disablingButton, &m_threadButton, &m_answer})
        layout->addWidget(widget);
    connect(&m_plainButton, &QPushButton::clicked, this, &Window::requestPlainly);
    connect(&m_disablingButton, &QPushButton::clicked, this, &Window::requestDisabled);
    connect(&m_threadButton, &QPushButton::clicked, this, &Window::requestInThread);
}

// A second click starts another request before the first one is answered.
void Window::requestPlainly()
{
    Q_EMIT started(++m_running);
    showAnswer(fetch(m_url));
}

void Window::requestDisabled()
{
    Q_EMIT started(++m_running);
    QByteArray answer;
    if (!runDisabled(&m_disablingButton, [&answer, url = m_url] { answer = fetch(url); }))
        return; // the user closed the window during the call
    showAnswer(answer);
}

void Window::requestInThread()
{
    Q_EMIT started(++m_running);
    m_threadButton.setEnabled(false);
    const auto show = [this](const QByteArray &answer) {
        m_threadButton.setEnabled(true);
        showAnswer(answer);
    };
    runInThread([url = m_url] { return fetch(url); }, this, show);
}

void Window::showAnswer(const QByteArray &answer)
{
    --m_running;
    m_answer.setText(QString::fromUtf8(answer));
    Q_EMIT answered(answer, m_running);
}
