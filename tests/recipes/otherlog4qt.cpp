// SPDX-License-Identifier: LGPL-2.1-or-later

// A plug-in with a log4qt of its own under the usual names, as desktops load such plug-ins into
// applications. It writes each call to the standard error stream.

#include <QtGlobal>

#include <cstdio>

namespace Log4Qt {

class Q_DECL_EXPORT Logger
{
public:
    static Logger *rootLogger();
    void warn(const char *message) const;
};

Logger *Logger::rootLogger()
{
    static Logger logger;
    std::fputs("the plug-in's root logger\n", stderr);
    return &logger;
}

void Logger::warn(const char *message) const
{
    std::fprintf(stderr, "the plug-in's log: %s\n", message);
}

} // namespace Log4Qt

namespace {

const bool isLoaded = (Log4Qt::Logger::rootLogger()->warn("loaded"), true);

} // namespace
