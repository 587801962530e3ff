// SPDX-License-Identifier: 0BSD

#pragma once

#include "../widgets/Pill.h"
#include "Page.h"

#include <QPointer>
#include <QTimer>

class Card;
class Choice;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace ZyBase {
class CHttpPostRequest;
}

/** Runs one request at a time in the background and shows its outcome. */
class RequestPage : public Page
{
    Q_OBJECT

public:
    explicit RequestPage(QWidget *parent = nullptr);

    void useServices(const DevelopmentServices &services) override;
    void stop() override;

private:
    void fillRequestCard(Card *card);
    void fillOutcomeCard(Card *card);
    void chooseMethod();
    void send();
    void start(const QUrl &url, const QJsonObject &body);
    void showAnswer(const QByteArray &answer, int status);
    void showEnd(const QByteArray &answer);
    void explain();
    void cancel();
    void end(Pill::Tone tone, const QString &outcome, const QString &details,
             const QByteArray &body = QByteArray());

    QPointer<ZyBase::CHttpPostRequest> m_request; ///< the running one
    int m_requests = 0; ///< number of requests so far
    QTimer m_cancelling;
    QLineEdit *m_url;
    Choice *m_method;
    QPlainTextEdit *m_body;
    QPushButton *m_send;
    QPushButton *m_cancel;
    Pill *m_outcome;
    QLabel *m_status;
    QPlainTextEdit *m_answer;
};
