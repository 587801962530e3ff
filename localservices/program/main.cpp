// SPDX-License-Identifier: LGPL-2.1-or-later

// Stands in, on 127.0.0.1, for all that the library talks to in the world, and shows what arrives.
//
//     local-services [--folder DIR] [--port N] [COMMAND ARGUMENT...]

#include "Program.h"
#include "Termination.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>
#include <limits>

namespace {

constexpr int wrongUse = 2;

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Termination termination;

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Stands in for the services that the library talks to, and shows on a page what "
                       "hosts send.\nRuns COMMAND with the variable LOCAL_SERVICES set and ends with its "
                       "exit code; without one it runs until it is ended."));
    parser.addHelpOption();
    parser.addOption({QStringLiteral("folder"),
                      QStringLiteral("where services.json, authority.pem and arrivals.sqlite lie"),
                      QStringLiteral("DIR"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/kept")});
    parser.addOption(
        {QStringLiteral("port"), QStringLiteral("of the page; 0 for any that is free"), QStringLiteral("N")});
    parser.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("a host, with its arguments"),
                                 QStringLiteral("[COMMAND ARGUMENT...]"));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.process(application);

    Options options {parser.value(QStringLiteral("folder")), Options::anyPreferred,
                     parser.positionalArguments()};
    if (parser.isSet(QStringLiteral("port"))) {
        bool isNumber = false;
        options.port = parser.value(QStringLiteral("port")).toInt(&isNumber);
        if (!isNumber || options.port < 0 || options.port > std::numeric_limits<quint16>::max()) {
            std::fputs("local-services: --port takes a number up to 65535\n", stderr);
            return wrongUse;
        }
    }
    return Program(options).run(termination);
}
