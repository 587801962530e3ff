// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Program.h"

#include "Command.h"
#include "Termination.h"

#include <QEventLoop>

#include <cstdio>

namespace {

constexpr int failure = 1;
constexpr quint16 defaultPort = 8377; // fixed, so that an open page finds the next run
constexpr quint16 anyPort = 0;

const QString servicesFile = QStringLiteral("services.json");
const QString authorityFile = QStringLiteral("authority.pem");
const QString arrivalsFile = QStringLiteral("arrivals.sqlite");

// The standard output belongs to the command.
void print(const QString &message)
{
    std::fprintf(stderr, "local-services: %s\n", message.toLocal8Bit().constData());
}

int fail(const QString &message)
{
    print(message);
    return failure;
}

std::unique_ptr<PageServer> createPage(ArrivalFeed &feed, int port, const PageAddresses &addresses)
{
    if (port != Options::anyPreferred)
        return std::make_unique<PageServer>(feed, quint16(port), addresses);
    auto page = std::make_unique<PageServer>(feed, defaultPort, addresses);
    if (!page->isListening())
        page = std::make_unique<PageServer>(feed, anyPort, addresses);
    return page;
}

QString count(int number, int good, const char *what)
{
    return QStringLiteral("%1 %2%3 (%4 good)")
        .arg(number)
        .arg(QLatin1String(what), number == 1 ? QString() : QStringLiteral("s"))
        .arg(good);
}

} // namespace

Program::Program(const Options &options)
    : m_options(options)
    , m_folder(options.folder)
{
}

int Program::run(Termination &termination)
{
    if (!m_folder.error().isEmpty())
        return fail(m_folder.error());
    m_folder.remove(servicesFile); // left by a run that was killed
    ArrivalStore store(m_folder.filePath(arrivalsFile));
    if (!store.error().isEmpty())
        return fail(QStringLiteral("%1: %2").arg(m_folder.filePath(arrivalsFile), store.error()));
    ArrivalFeed feed(store);
    LocalServers servers(feed);
    const auto page = createPage(
        feed, m_options.port,
        {m_folder.filePath(servicesFile), m_folder.filePath(authorityFile), servers.proxyUrl().toString()});
    if (!page->isListening())
        return fail(QStringLiteral("the port %1 is in use").arg(m_options.port));
    if (!servers.writeDescription(m_folder.path(), page->url()))
        return fail(QStringLiteral("%1 cannot be written").arg(m_folder.filePath(servicesFile)));

    int exitCode = 0;
    if (m_options.command.isEmpty()) {
        printInstructions(page->url());
        waitForSignal(termination);
    } else {
        exitCode = runCommand(termination, servers, page->url());
    }
    m_folder.remove(servicesFile);
    m_folder.remove(authorityFile);
    printCounts(feed.counts());
    return exitCode;
}

int Program::runCommand(Termination &termination, LocalServers &servers, const QUrl &page) const
{
    print(QStringLiteral("what arrives shows up at %1").arg(page.toString()));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LOCAL_SERVICES"), m_folder.filePath(servicesFile));
    const int exitCode = Command(m_options.command, environment).run(termination);
    servers.settle();
    return exitCode;
}

void Program::waitForSignal(Termination &termination)
{
    QEventLoop loop;
    termination.setHandler([&loop](int, bool) { loop.quit(); });
    loop.exec();
    termination.setHandler({});
}

void Program::printInstructions(const QUrl &page) const
{
    print(QStringLiteral("what arrives shows up at %1").arg(page.toString()));
    std::fprintf(stderr,
                 "\n"
                 "To connect an application, do one of the following:\n"
                 "    scripts/local-services COMMAND ARGUMENT...    runs the application and ends with it\n"
                 "    export LOCAL_SERVICES=%s\n"
                 "The application's main() must call useDevelopmentServices() of\n"
                 "examples/recipes/seeing-what-is-sent. Press Ctrl-C to end the local services.\n\n",
                 m_folder.filePath(servicesFile).toLocal8Bit().constData());
}

void Program::printCounts(const ArrivalFeed::Counts &counts)
{
    print(QStringLiteral("%1 and %2 arrived")
              .arg(count(counts.events, counts.goodEvents, "event"),
                   count(counts.records, counts.goodRecords, "record")));
}
