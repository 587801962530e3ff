// SPDX-License-Identifier: 0BSD

#pragma once

#include <QPointer>
#include <QThread>
#include <QWidget>

#include <memory>

/**
 * Runs @p call while @p trigger is disabled, so that the user cannot start it a second time.
 *
 * For calls that wait in an event loop of their own.
 *
 * @return false if the trigger was destroyed during the call; return at once then and use none of its members
 */
template <typename Call> bool runDisabled(QWidget *trigger, const Call &call)
{
    const QPointer<QWidget> guardedTrigger(trigger);
    trigger->setEnabled(false);
    call();
    if (!guardedTrigger)
        return false;
    trigger->setEnabled(true);
    return true;
}

/**
 * Runs @p call in a new thread and passes its result to @p deliver in the thread of @p receiver.
 *
 * If the receiver is destroyed before, the result is dropped.
 */
template <typename Call, typename Deliver>
void runInThread(const Call &call, QObject *receiver, const Deliver &deliver)
{
    const auto result = std::make_shared<decltype(call())>();
    QThread *const thread = QThread::create([result, call] { *result = call(); });
    QObject::connect(thread, &QThread::finished, receiver, [result, deliver] { deliver(*result); });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}
