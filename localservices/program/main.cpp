// SPDX-License-Identifier: LGPL-2.1-or-later

// Runs local replacements for all servers that the library connects to, and shows what arrives.
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
    parser.setApplicationDescription(QStringLiteral(
        "Runs local replacements for the servers that the library connects to, and a page that "
        "shows what applications send.\nIf COMMAND is given, runs it with the environment "
        "variable LOCAL_SERVICES set and ends with its exit code. Otherwise runs until Ctrl-C."));
    parser.addHelpOption();
    parser.addOption(
        {QStringLiteral("folder"),
         QStringLiteral("private directory for services.json, authority.pem and arrivals.sqlite"),
         QStringLiteral("DIR"), QCoreApplication::applicationDirPath() + QStringLiteral("/kept")});
    parser.addOption({QStringLiteral("port"), QStringLiteral("port of the page; 0 uses any free port"),
                      QStringLiteral("N")});
    parser.addPositionalArgument(QStringLiteral("COMMAND"),
                                 QStringLiteral("an application, with its arguments"),
                                 QStringLiteral("[COMMAND ARGUMENT...]"));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.process(application);

    Options options {parser.value(QStringLiteral("folder")), Options::anyPreferred,
                     parser.positionalArguments()};
    if (parser.isSet(QStringLiteral("port"))) {
        bool isNumber = false;
        options.port = parser.value(QStringLiteral("port")).toInt(&isNumber);
        if (!isNumber || options.port < 0 || options.port > std::numeric_limits<quint16>::max()) {
            std::fputs("local-services: --port must be a number from 0 to 65535\n", stderr);
            return wrongUse;
        }
    }
    return Program(options).run(termination);
}
