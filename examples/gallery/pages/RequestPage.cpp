// SPDX-License-Identifier: 0BSD

#include "RequestPage.h"

#include "../widgets/Card.h"
#include "../widgets/Choice.h"
#include "../widgets/controls.h"

#include <OwnedRequest.h>

#include <ZyBase/http/CHttpPostRequest.h>

#include <QJsonDocument>
#include <QJsonObject>

using ZyBase::CHttpPostRequest;

namespace {

enum Methods { Get, Post };

constexpr int cancelIntervalMs = 100;
constexpr int bodyHeight = 92;

QString readable(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return QString::fromUtf8(document.isNull() ? body : document.toJson()).trimmed();
}

} // namespace

RequestPage::RequestPage(const QString &address, QWidget *parent)
    : Page(tr("Request"),
           tr("Runs in the background and ends after ten seconds at most, always with one outcome."),
           "ZyBase/http/CHttpPostRequest.h", parent)
    , m_url(field(address, tr("http://service.example.org/path"), "requestUrl"))
    , m_method(new Choice({QStringLiteral("GET"), QStringLiteral("POST")}, "requestMethod"))
    , m_body(textView("requestBody"))
    , m_send(primaryButton(tr("Send"), "requestSend"))
    , m_cancel(button(tr("Cancel"), "requestCancel"))
    , m_outcome(new Pill(tr("Nothing sent yet"), "requestOutcome"))
    , m_status(quiet(QString()))
    , m_answer(textView("requestAnswer"))
{
    fillRequestCard(addCard());
    fillOutcomeCard(addCard(tr("Outcome"), 1));
    connect(m_method, QOverload<int>::of(&Choice::currentIndexChanged), this, &RequestPage::chooseMethod);
    connect(m_url, &QLineEdit::returnPressed, m_send, &QPushButton::click);
    connect(m_send, &QPushButton::clicked, this, &RequestPage::send);
    connect(m_cancel, &QPushButton::clicked, this, &RequestPage::cancel);
    connect(&m_cancelling, &QTimer::timeout, this, &RequestPage::cancel);
    m_cancelling.setInterval(cancelIntervalMs);
    m_cancel->setEnabled(false);
    chooseMethod();
}

void RequestPage::fillRequestCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addWidget(m_method);
    row->addWidget(m_url, 1);
    row->addWidget(m_send);
    row->addWidget(m_cancel);
    m_body->setReadOnly(false);
    m_body->setFixedHeight(bodyHeight);
    m_body->setPlainText(QStringLiteral("{\n  \"item\": \"paper\",\n  \"count\": 3\n}"));
    card->column()->addWidget(quiet(tr("JSON body")));
    card->column()->addWidget(m_body);
}

void RequestPage::fillOutcomeCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addWidget(m_outcome);
    row->addWidget(m_status, 1);
    m_status->setObjectName(QStringLiteral("requestStatus"));
    card->column()->addWidget(m_answer, 1);
}

void RequestPage::chooseMethod()
{
    m_body->setEnabled(m_method->currentIndex() == Post);
}

void RequestPage::send()
{
    const QJsonDocument body = QJsonDocument::fromJson(m_body->toPlainText().toUtf8());
    if (m_method->currentIndex() == Post && !body.isObject())
        return end(Pill::Bad, tr("Not sent"), tr("The body is not a JSON object."), QByteArray());
    m_send->setEnabled(false);
    m_cancel->setEnabled(true);
    m_outcome->setState(Pill::Busy, tr("Waiting"));
    m_status->clear();
    m_answer->clear();
    start(QUrl::fromUserInput(m_url->text()), body.object());
}

void RequestPage::start(const QUrl &url, const QJsonObject &body)
{
    m_request = createRequest(this);
    connect(m_request, &CHttpPostRequest::SignalRequestResultAndStatusCode, this,
            [this](const QByteArray &answer, int status) {
                const bool isAnswered = status != 0;
                end(isAnswered ? Pill::Good : Pill::Warning, isAnswered ? tr("Answered") : tr("No answer"),
                    tr("Status %1").arg(status), answer);
            });
    connect(m_request, &CHttpPostRequest::SignalRequestResult, this, [this](const QByteArray &answer) {
        end(Pill::Good, tr("Finished"), tr("This form has no status."), answer);
    });
    connect(m_request, &CHttpPostRequest::SignalRequestTimeout, this, [this] {
        end(Pill::Warning, tr("Timeout"), tr("There was no answer for ten seconds."), QByteArray());
    });
    connect(m_request, &CHttpPostRequest::SignalRequestCancel, this,
            [this] { end(Pill::Neutral, tr("Cancelled"), QString(), QByteArray()); });
    if (m_method->currentIndex() == Post)
        m_request->StartRequestAsync(url, body, QString());
    else
        m_request->StartGetRequestAndStatusCode(url, QString());
}

// A request whose thread has just started ignores the signal, so it is sent until the request has ended.
void RequestPage::cancel()
{
    if (!m_request)
        return;
    Q_EMIT m_request->SignalStopRequest();
    m_cancelling.start();
}

void RequestPage::end(Pill::Tone tone, const QString &outcome, const QString &status, const QByteArray &body)
{
    m_request.clear();
    m_cancelling.stop();
    m_send->setEnabled(true);
    m_cancel->setEnabled(false);
    m_outcome->setState(tone, outcome);
    m_status->setText(status);
    m_answer->setPlainText(readable(body));
}

void RequestPage::stop()
{
    cancel();
}
