// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QObject>
#include <QSharedPointer>

namespace Log4Qt {
inline namespace zy {

/**
 * Shared pointer that deletes its object with deleteLater().
 *
 * The object is deleted when the event loop of its thread runs next after the last pointer is gone. A pointer
 * that is made from a QSharedPointer uses the deleter of that one.
 *
 * @since 0.1.0
 */
template <typename T> class Log4QtSharedPtr : public QSharedPointer<T>
{
public:
    /** Creates a null pointer. */
    Log4QtSharedPtr() = default;

    /** Takes ownership of @p object. */
    Log4QtSharedPtr(T *object) // NOLINT: implicit, for functions with a parameter of this type
        : QSharedPointer<T>(object, &QObject::deleteLater)
    {
    }

    /** Shares the object of @p other. */
    Log4QtSharedPtr(const QSharedPointer<T> &other) // NOLINT: implicit, as above
        : QSharedPointer<T>(other)
    {
    }

    /** Shares the object of @p other; null if it is deleted. */
    Log4QtSharedPtr(const QWeakPointer<T> &other) // NOLINT: implicit, as above
        : QSharedPointer<T>(other)
    {
    }
};

} // namespace zy
} // namespace Log4Qt
