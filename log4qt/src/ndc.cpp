// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/ndc.h>

#include <QStack>
#include <QThreadStorage>

namespace Log4Qt {
inline namespace zy {

namespace {

// Never deleted, because threads can log until the process ends.
QThreadStorage<QStack<QString>> &storage()
{
    static auto *const instance = new QThreadStorage<QStack<QString>>;
    return *instance;
}

} // namespace

void NDC::clear()
{
    if (storage().hasLocalData())
        storage().localData().clear();
}

int NDC::depth()
{
    return storage().hasLocalData() ? storage().localData().size() : 0;
}

QString NDC::peek()
{
    return depth() > 0 ? storage().localData().top() : QString();
}

QString NDC::pop()
{
    return depth() > 0 ? storage().localData().pop() : QString();
}

void NDC::push(const QString &message)
{
    storage().localData().push(message);
}

} // namespace zy
} // namespace Log4Qt
