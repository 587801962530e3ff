// SPDX-License-Identifier: 0BSD

#include "RequestPage.h"

#include "../Checks.h"
#include "../widgets/Card.h"
#include "../widgets/Choice.h"
#include "../widgets/controls.h"

#include <DevelopmentServices.h>
#include <OwnedRequest.h>

#include <ZyBase/http/CHttpPostRequest.h>

#include <QJsonDocument>
#include <QJsonObject>

using ZyBase::CHttpPostRequest;

namespace {

enum Methods { Get, Post };

constexpr int cancelIntervalMs = 100;
constexpr int bodyLines = 6;

QString readable(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    return QString::fromUtf8(document.isNull() ? body : document.toJson()).trimmed();
}

} // namespace

RequestPage::RequestPage(QWidget *parent)
    : Page(tr("Request"),
           tr("Runs in the background and ends after ten seconds at most, always with one outcome."),
           "ZyBase/http/CHttpPostRequest.h", "RequestPage.cpp", parent)
    , m_url(field(QString(), QStringLiteral("http://service.example.org/path"), "requestUrl"))
    , m_method(new Choice({QStringLiteral("GET"), QStringLiteral("POST")}, "requestMethod"))
    , m_body(textView(tr("JSON body"), "requestBody"))
    , m_send(primaryButton(tr("&Send"), "requestSend"))
    , m_cancel(cancelButton(tr("Ca&ncel"), "requestCancel"))
    , m_outcome(new Pill(tr("Nothing sent yet"), "requestOutcome"))
    , m_status(hint(QString(), "requestStatus"))
    , m_answer(textView(tr("Answer"), "requestAnswer"))
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

void RequestPage::useServices(const DevelopmentServices &services)
{
    m_url->setText(services.downloads + QStringLiteral("files/version.json"));
}

void RequestPage::fillRequestCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addLayout(labelled(tr("Me&thod"), m_method));
    row->addLayout(labelled(tr("&Address"), m_url), 1);
    row->addWidget(m_send, 0, Qt::AlignBottom);
    row->addWidget(m_cancel, 0, Qt::AlignBottom);
    m_body->setReadOnly(false);
    m_body->setFixedHeight(bodyLines * m_body->fontMetrics().lineSpacing());
    m_body->setPlainText(QStringLiteral("{\n  \"item\": \"paper\",\n  \"count\": 3\n}"));
    card->column()->addLayout(labelled(tr("JSON &body"), m_body));
}

void RequestPage::fillOutcomeCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addWidget(m_outcome);
    row->addWidget(m_status, 1);
    m_answer->setMinimumHeight(bodyLines * m_answer->fontMetrics().lineSpacing());
    m_answer->setPlaceholderText(tr("The answer of the server will be here."));
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
        return end(Pill::Bad, tr("Not sent"), tr("The body is not a JSON object."));
    if (m_url->text().isEmpty())
        return end(Pill::Bad, tr("Not sent"), tr("Enter an address."));
    ++m_requests;
    setAvailable(m_cancel, true);
    setAvailable(m_send, false);
    m_outcome->setState(Pill::Busy, tr("Waiting"));
    m_status->clear();
    m_answer->clear();
    start(QUrl::fromUserInput(m_url->text()), body.object());
}

//! [code]
void RequestPage::start(const QUrl &url, const QJsonObject &body)
{
    m_request = createRequest(this); // deletes itself one second after its outcome
    connect(m_request, &CHttpPostRequest::SignalRequestResultAndStatusCode, this, &RequestPage::showAnswer);
    connect(m_request, &CHttpPostRequest::SignalRequestResult, this, &RequestPage::showEnd);
    connect(m_request, &CHttpPostRequest::SignalRequestTimeout, this,
            [this] { end(Pill::Bad, tr("Timeout"), tr("There was no answer for ten seconds.")); });
    connect(m_request, &CHttpPostRequest::SignalRequestCancel, this,
            [this] { end(Pill::Neutral, tr("Cancelled"), QString()); });
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
//! [code]

void RequestPage::showAnswer(const QByteArray &answer, int status)
{
    if (status == 0) {
        end(Pill::Bad, tr("No answer"), tr("Looking for the cause …"), answer);
        return explain();
    }
    const bool isGood = status < 300;
    end(isGood ? Pill::Good : Pill::Bad, isGood ? tr("Answered") : tr("Answered with an error"),
        Checks::meaningOf(status), answer);
}

// The library reports no status of a POST, so an error of the server looks like success.
void RequestPage::showEnd(const QByteArray &answer)
{
    end(Pill::Neutral, tr("Ended"), tr("The status of a POST is not reported."), answer);
    if (answer.isEmpty())
        explain();
}

// A server that answers now may have answered the request too: then the cause stays unknown.
void RequestPage::explain()
{
    const bool isPost = m_method->currentIndex() == Post;
    Checks::findCause(QUrl::fromUserInput(m_url->text()), this,
                      [this, isPost, request = m_requests](const QString &cause, bool isAnswered) {
                          if (request != m_requests || (isPost && isAnswered))
                              return;
                          m_outcome->setState(Pill::Bad, tr("No answer"));
                          m_status->setText(cause);
                      });
}

void RequestPage::end(Pill::Tone tone, const QString &outcome, const QString &details, const QByteArray &body)
{
    m_request.clear();
    m_cancelling.stop();
    setAvailable(m_send, true);
    setAvailable(m_cancel, false);
    m_outcome->setState(tone, outcome);
    m_status->setText(details);
    m_answer->setPlainText(readable(body));
}

void RequestPage::stop()
{
    cancel();
}
