// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <ZyBase/base/LoggerObject.h>
#include <ZyBase/base/LoggerObjectPrivate.h>

#include <QLibrary>

using ZyBase::LoggerObject;

namespace {

// A string argument of the library. JSON's null is a null pointer.
class Text
{
public:
    explicit Text(const QJsonValue &value)
        : m_isNull(value.isNull())
        , m_bytes(value.toString().toUtf8())
    {
    }
    const char *get() const { return m_isNull ? nullptr : m_bytes.constData(); }

private:
    bool m_isNull;
    QByteArray m_bytes;
};

std::function<QJsonValue(const QJsonArray &)> message(void (*log)(const char *))
{
    return [log](const QJsonArray &arguments) {
        log(Text(arguments.at(0)).get());
        return QJsonValue(true);
    };
}

QJsonValue init(const QJsonArray &arguments)
{
    LoggerObject::InitLogger(Text(arguments.at(0)).get(), Text(arguments.at(1)).get());
    return true;
}

QJsonValue release(const QJsonArray &)
{
    LoggerObject::ReleaseLogger();
    return true;
}

// Logs with the root logger of another log4qt that the process has loaded. Its headers are not available.
QJsonValue warnOnForeignRoot(const QJsonArray &arguments)
{
    using RootLogger = void *(*)();
    using Warn = void (*)(const void *, const char *, const QString &);
    QLibrary library(arguments.at(0).toString());
    const auto rootLogger = reinterpret_cast<RootLogger>(library.resolve("_ZN6Log4Qt6Logger10rootLoggerEv"));
    const auto warn = reinterpret_cast<Warn>(library.resolve("_ZNK6Log4Qt6Logger4warnEPKcRK7QString"));
    if (!rootLogger || !warn)
        return library.errorString();
    void *const root = rootLogger();
    if (root == LoggerObjectPrivate::getInstance()->m_pRootLogger)
        return QStringLiteral("both have one root logger");
    warn(root, "%1", arguments.at(1).toString());
    return true;
}

} // namespace

Commands logCommands()
{
    return {{QStringLiteral("log.init"), init},
            {QStringLiteral("log.release"), release},
            {QStringLiteral("log.error"), message(&LoggerObject::error)},
            {QStringLiteral("log.warn"), message(&LoggerObject::warn)},
            {QStringLiteral("log.info"), message(&LoggerObject::info)},
            {QStringLiteral("log.debug"), message(&LoggerObject::debug)},
            {QStringLiteral("log.warnOnForeignRoot"), warnOnForeignRoot}};
}
