// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QObject>
#include <QSharedPointer>

namespace Log4Qt {
inline namespace zy {

/** Shares an object; the last holder leaves it to the event loop of the object's thread to delete it. */
template <typename T> class Log4QtSharedPtr : public QSharedPointer<T>
{
public:
    Log4QtSharedPtr() = default;
    Log4QtSharedPtr(T *object) // NOLINT: implicit, so that functions take a plain pointer too
        : QSharedPointer<T>(object, &QObject::deleteLater)
    {
    }
    Log4QtSharedPtr(const QSharedPointer<T> &other) // NOLINT: implicit, as above
        : QSharedPointer<T>(other)
    {
    }
};

} // namespace zy
} // namespace Log4Qt
