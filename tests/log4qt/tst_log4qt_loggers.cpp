// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CollectingAppender.h"

#include <log4qt/logger.h>
#include <log4qt/loggerrepository.h>
#include <log4qt/ndc.h>

#include <QPointer>
#include <QTest>
#include <QThread>

#include <atomic>
#include <thread>
#include <vector>

using namespace Log4Qt;

namespace {

// Logs while it appends, as an appender does that uses a library that logs.
class LoggingAppender : public CollectingAppender
{
protected:
    void append(const LoggingEvent &event) override
    {
        Logger::rootLogger()->info(QStringLiteral("raised while appending"));
        CollectingAppender::append(event);
    }
};

class RemovingAppender : public CollectingAppender
{
protected:
    void append(const LoggingEvent &event) override
    {
        Logger::rootLogger()->removeAllAppenders();
        CollectingAppender::append(event);
    }
};

template <typename T> T *attach(Logger *logger, T *appender, const QString &name = QString())
{
    appender->setName(name);
    logger->addAppender(AppenderSharedPtr(appender));
    return appender;
}

QString text()
{
    return QStringLiteral("x");
}

} // namespace

class TestLog4QtLoggers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        LoggerRepository *const repository = Logger::rootLogger()->loggerRepository();
        repository->shutdown();
        repository->setThreshold(Level(Level::NULL_INT));
        NDC::clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void returnsNumberAndNameOfLevel_data()
    {
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("word");
        QTest::newRow("null") << 0 << "NULL";
        QTest::newRow("all") << 32 << "ALL";
        QTest::newRow("trace") << 64 << "TRACE";
        QTest::newRow("debug") << 96 << "DEBUG";
        QTest::newRow("info") << 128 << "INFO";
        QTest::newRow("warn") << 150 << "WARN";
        QTest::newRow("error") << 182 << "ERROR";
        QTest::newRow("fatal") << 214 << "FATAL";
        QTest::newRow("off") << 255 << "OFF";
        QTest::newRow("no level") << 100 << "NULL";
    }
    void returnsNumberAndNameOfLevel()
    {
        QFETCH(int, value);
        QFETCH(QString, word);
        const Level level(static_cast<Level::Value>(value));
        QCOMPARE(level.toInt(), value);
        QCOMPARE(level.toString(), word);
    }

    void ordersLevels()
    {
        const Level info(Level::INFO_INT);
        const Level warn(Level::WARN_INT);
        QVERIFY(info < warn && info <= warn && info <= info && warn > info && warn >= info && warn >= warn);
        QVERIFY(!(warn < info) && !(warn <= info) && !(info > warn) && !(info >= warn) && !(info < info));
        QVERIFY(info == info && info != warn && !(info == warn) && !(info != info));
        QVERIFY(Level() == Level(Level::NULL_INT));
    }

    void returnsRootLogger()
    {
        Logger *const root = Logger::rootLogger();
        QCOMPARE(root->name(), QStringLiteral("root"));
        QCOMPARE(root->level().toInt(), int(Level::DEBUG_INT));
        QCOMPARE(root->appenders().size(), 0);
        QVERIFY(root->parentLogger() == nullptr);
        QCOMPARE(root->loggerRepository()->rootLogger(), root);
        QCOMPARE(Logger::logger(QString()), root);
    }

    void returnsSameLoggerForName()
    {
        QCOMPARE(Logger::logger(QStringLiteral("a::b")), Logger::logger(QStringLiteral("a::b")));
        QVERIFY(Logger::logger(QStringLiteral("a::b")) != Logger::logger(QStringLiteral("a::c")));
        QVERIFY(Logger::rootLogger()->loggerRepository()->exists(QStringLiteral("a::b")));
        QVERIFY(!Logger::rootLogger()->loggerRepository()->exists(QStringLiteral("never created")));
    }

    void derivesParentFromName()
    {
        Logger *const leaf = Logger::logger(QStringLiteral("tree::branch::leaf"));
        Logger *const branch = Logger::logger(QStringLiteral("tree::branch"));
        QCOMPARE(leaf->parentLogger(), branch);
        QCOMPARE(branch->parentLogger(), Logger::logger(QStringLiteral("tree")));
        QCOMPARE(branch->parentLogger()->parentLogger(), Logger::rootLogger());
    }

    void acceptsDotsInNames()
    {
        Logger *const leaf = Logger::logger(QStringLiteral("dotted.branch.leaf"));
        QCOMPARE(leaf->name(), QStringLiteral("dotted::branch::leaf"));
        QCOMPARE(leaf, Logger::logger(QStringLiteral("dotted::branch::leaf")));
        QCOMPARE(leaf->parentLogger(), Logger::logger(QStringLiteral("dotted.branch")));
    }

    void listsRootLogger()
    {
        LoggerRepository *const repository = Logger::rootLogger()->loggerRepository();
        Logger *const logger = Logger::logger(QStringLiteral("listed"));
        QVERIFY(repository->exists(QString()));
        QCOMPARE(repository->loggers().count(Logger::rootLogger()), 1);
        QCOMPARE(repository->loggers().count(logger), 1);
    }

    void inheritsLevel()
    {
        Logger *const leaf = Logger::logger(QStringLiteral("level::leaf"));
        QCOMPARE(leaf->level().toInt(), int(Level::NULL_INT));
        QCOMPARE(leaf->effectiveLevel().toInt(), int(Level::DEBUG_INT));
        Logger::logger(QStringLiteral("level"))->setLevel(Level(Level::ERROR_INT));
        QCOMPARE(leaf->effectiveLevel().toInt(), int(Level::ERROR_INT));
        leaf->setLevel(Level(Level::TRACE_INT));
        QCOMPARE(leaf->effectiveLevel().toInt(), int(Level::TRACE_INT));
    }

    void keepsLevelOfRoot()
    {
        Logger::rootLogger()->setLevel(Level(Level::NULL_INT));
        QCOMPARE(Logger::rootLogger()->level().toInt(), int(Level::DEBUG_INT));
    }

    void logsAtLevelOfFunction()
    {
        Logger *const root = Logger::rootLogger();
        root->setLevel(Level(Level::ALL_INT));
        const CollectingAppender *const appender = attach(root, new CollectingAppender);
        root->trace(text());
        root->debug(text());
        root->info(text());
        root->warn(text());
        root->error(text());
        root->fatal(text());
        root->log(Level(Level::WARN_INT), text());
        QCOMPARE(appender->lines(),
                 QStringList({QStringLiteral("TRACE x"), QStringLiteral("DEBUG x"), QStringLiteral("INFO x"),
                              QStringLiteral("WARN x"), QStringLiteral("ERROR x"), QStringLiteral("FATAL x"),
                              QStringLiteral("WARN x")}));
    }

    void filtersByLevelOfLogger()
    {
        Logger *const root = Logger::rootLogger();
        root->setLevel(Level(Level::WARN_INT));
        const CollectingAppender *const appender = attach(root, new CollectingAppender);
        root->info(text());
        root->warn(text());
        root->error(text());
        QCOMPARE(appender->lines(), QStringList({QStringLiteral("WARN x"), QStringLiteral("ERROR x")}));
        QVERIFY(!root->isEnabledFor(Level(Level::INFO_INT)));
        QVERIFY(root->isEnabledFor(Level(Level::WARN_INT)));
    }

    void filtersByThresholdOfRepository()
    {
        Logger *const root = Logger::rootLogger();
        const CollectingAppender *const appender = attach(root, new CollectingAppender);
        root->loggerRepository()->setThreshold(Level(Level::WARN_INT));
        QCOMPARE(root->loggerRepository()->threshold().toInt(), int(Level::WARN_INT));
        root->info(text());
        root->warn(text());
        QCOMPARE(appender->lines(), QStringList {QStringLiteral("WARN x")});
        QVERIFY(!root->isEnabledFor(Level(Level::INFO_INT)));
    }

    void filtersByThresholdOfAppender()
    {
        Logger *const root = Logger::rootLogger();
        CollectingAppender *const limited = attach(root, new CollectingAppender);
        limited->setThreshold(Level(Level::WARN_INT));
        const CollectingAppender *const unlimited = attach(root, new CollectingAppender);
        root->info(text());
        root->warn(text());
        QCOMPARE(limited->lines(), QStringList {QStringLiteral("WARN x")});
        QCOMPARE(unlimited->lines().size(), 2);
    }

    void comparesLevelWithThreshold()
    {
        CollectingAppender appender;
        appender.setThreshold(Level(Level::WARN_INT));
        QVERIFY(!appender.isAsSevereAsThreshold(Level(Level::INFO_INT)));
        QVERIFY(appender.isAsSevereAsThreshold(Level(Level::WARN_INT)));
        QVERIFY(appender.isAsSevereAsThreshold(Level(Level::ERROR_INT)));
    }

    void passesEventToParents()
    {
        Logger *const leaf = Logger::logger(QStringLiteral("climb::leaf"));
        QStringList order;
        class Ordered : public CollectingAppender
        {
        public:
            Ordered(const QString &mark, QStringList *order)
                : m_mark(mark)
                , m_order(order)
            {
            }

        protected:
            void append(const LoggingEvent &) override { *m_order << m_mark; }

        private:
            QString m_mark;
            QStringList *m_order;
        };
        attach(Logger::rootLogger(), new Ordered(QStringLiteral("root"), &order));
        attach(leaf, new Ordered(QStringLiteral("first"), &order));
        attach(leaf, new Ordered(QStringLiteral("second"), &order));
        attach(Logger::logger(QStringLiteral("climb")), new Ordered(QStringLiteral("parent"), &order));
        leaf->info(text());
        QCOMPARE(order, QStringList({QStringLiteral("first"), QStringLiteral("second"),
                                     QStringLiteral("parent"), QStringLiteral("root")}));
    }

    void keepsEventsWithoutAdditivity()
    {
        Logger *const leaf = Logger::logger(QStringLiteral("alone"));
        leaf->setAdditivity(false);
        const CollectingAppender *const own = attach(leaf, new CollectingAppender);
        const CollectingAppender *const atRoot = attach(Logger::rootLogger(), new CollectingAppender);
        leaf->info(text());
        QCOMPARE(own->lines().size(), 1);
        QCOMPARE(atRoot->lines().size(), 0);
    }

    void ignoresNullAndAttachedAppender()
    {
        Logger *const root = Logger::rootLogger();
        root->addAppender(AppenderSharedPtr());
        QCOMPARE(root->appenders().size(), 0);
        const AppenderSharedPtr appender(new CollectingAppender);
        root->addAppender(appender);
        root->addAppender(appender);
        QCOMPARE(root->appenders().size(), 1);
        QVERIFY(root->isAttached(appender));
        QVERIFY(!root->isAttached(AppenderSharedPtr()));
    }

    void keepsTwoAppendersWithOneName()
    {
        Logger *const root = Logger::rootLogger();
        const QString name = QStringLiteral("same");
        CollectingAppender *const first = attach(root, new CollectingAppender, name);
        CollectingAppender *const second = attach(root, new CollectingAppender, name);
        QCOMPARE(root->appender(name).data(), static_cast<Appender *>(first));
        root->removeAppender(name);
        QCOMPARE(root->appenders().size(), 1);
        QCOMPARE(root->appender(name).data(), static_cast<Appender *>(second));
        root->removeAppender(root->appender(name));
        QVERIFY(root->appender(name).isNull());
    }

    void deletesRemovedAppenderInEventLoop()
    {
        Logger *const root = Logger::rootLogger();
        const QPointer<CollectingAppender> appender = attach(root, new CollectingAppender);
        root->removeAllAppenders();
        QCOMPARE(root->appenders().size(), 0);
        QVERIFY(appender);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!appender);
    }

    void keepsDeleterOfSharedPointer()
    {
        int deleted = 0;
        {
            const QSharedPointer<Appender> appender(new CollectingAppender, [&deleted](Appender *pointer) {
                ++deleted;
                delete pointer;
            });
            Logger::rootLogger()->addAppender(appender);
        }
        QCOMPARE(deleted, 0);
        Logger::rootLogger()->removeAllAppenders();
        QCOMPARE(deleted, 1);
    }

    void sharesObjectOfWeakPointer()
    {
        QSharedPointer<Appender> shared(new CollectingAppender);
        const QWeakPointer<Appender> weak(shared);
        QCOMPARE(AppenderSharedPtr(weak).data(), shared.data());
        shared.reset();
        QVERIFY(AppenderSharedPtr(weak).isNull());
    }

    void dropsEventRaisedWhileAppending()
    {
        Logger *const root = Logger::rootLogger();
        const CollectingAppender *const logging = attach(root, new LoggingAppender);
        const CollectingAppender *const other = attach(root, new CollectingAppender);
        root->info(text());
        QCOMPARE(logging->lines(), QStringList {QStringLiteral("INFO x")});
        QCOMPARE(other->lines(),
                 QStringList({QStringLiteral("INFO raised while appending"), QStringLiteral("INFO x")}));
    }

    void allowsRemovalWhileAppending()
    {
        Logger *const root = Logger::rootLogger();
        const CollectingAppender *const removing = attach(root, new RemovingAppender);
        const CollectingAppender *const second = attach(root, new CollectingAppender);
        root->info(text());
        QCOMPARE(removing->lines().size(), 1);
        QCOMPARE(second->lines().size(), 1);
        root->info(text());
        QCOMPARE(second->lines().size(), 1);
    }

    void dropsEventsAfterClose()
    {
        Logger *const root = Logger::rootLogger();
        CollectingAppender *const appender = attach(root, new CollectingAppender);
        QVERIFY(appender->isActive());
        appender->close();
        QVERIFY(appender->isClosed());
        QVERIFY(!appender->isActive());
        root->info(text());
        QCOMPARE(appender->lines().size(), 0);
        appender->activateOptions();
        QVERIFY(!appender->isClosed());
        root->info(text());
        QCOMPARE(appender->lines().size(), 1);
    }

    void resetsLoggersAtShutdown()
    {
        Logger *const root = Logger::rootLogger();
        Logger *const leaf = Logger::logger(QStringLiteral("shutdown::leaf"));
        for (Logger *logger : {root, leaf}) {
            attach(logger, new CollectingAppender);
            logger->setLevel(Level(Level::OFF_INT));
            logger->setAdditivity(false);
        }
        root->loggerRepository()->shutdown();
        for (const Logger *logger : {root, leaf}) {
            QCOMPARE(logger->appenders().size(), 0);
            QVERIFY(logger->additivity());
        }
        QCOMPARE(root->level().toInt(), int(Level::DEBUG_INT));
        QCOMPARE(leaf->level().toInt(), int(Level::NULL_INT));
        QVERIFY(root->isEnabledFor(Level(Level::DEBUG_INT)));
        QCOMPARE(Logger::logger(QStringLiteral("shutdown::leaf")), leaf);
    }

    void keepsThresholdAtShutdown()
    {
        LoggerRepository *const repository = Logger::rootLogger()->loggerRepository();
        repository->setThreshold(Level(Level::WARN_INT));
        repository->shutdown();
        QCOMPARE(repository->threshold().toInt(), int(Level::WARN_INT));
        QVERIFY(!Logger::rootLogger()->isEnabledFor(Level(Level::INFO_INT)));
    }

    void keepsDiagnosticContextPerThread()
    {
        QCOMPARE(NDC::depth(), 0);
        QCOMPARE(NDC::peek(), QString());
        QCOMPARE(NDC::pop(), QString());
        NDC::push(QStringLiteral("a"));
        NDC::push(QStringLiteral("b"));
        QCOMPARE(NDC::depth(), 2);
        QCOMPARE(NDC::peek(), QStringLiteral("b"));
        QString elsewhere = QStringLiteral("unset");
        std::thread([&elsewhere] {
            elsewhere = NDC::peek();
            NDC::push(QStringLiteral("other"));
        }).join();
        QCOMPARE(elsewhere, QString());
        QCOMPARE(NDC::pop(), QStringLiteral("b"));
        QCOMPARE(NDC::peek(), QStringLiteral("a"));
        NDC::push(QStringLiteral("c"));
        NDC::clear();
        QCOMPARE(NDC::depth(), 0);
    }

    void keepsStateOfEventWhenRaised()
    {
        NDC::push(QStringLiteral("context"));
        Logger *const logger = Logger::logger(QStringLiteral("event"));
        const qint64 used = QDateTime::currentMSecsSinceEpoch();
        QTRY_VERIFY(QDateTime::currentMSecsSinceEpoch() > used);
        const qint64 before = QDateTime::currentMSecsSinceEpoch();
        const LoggingEvent event(logger, Level(Level::WARN_INT), text());
        const qint64 after = QDateTime::currentMSecsSinceEpoch();
        NDC::clear();
        QCOMPARE(event.ndc(), QStringLiteral("context"));
        QCOMPARE(event.level().toInt(), int(Level::WARN_INT));
        QCOMPARE(event.message(), text());
        QCOMPARE(event.loggername(), QStringLiteral("event"));
        QCOMPARE(event.loggename(), QStringLiteral("event"));
        QVERIFY(before <= event.timeStamp() && event.timeStamp() <= after);
        QVERIFY(LoggingEvent::startTime() <= used);
        QCOMPARE(LoggingEvent(nullptr, Level(), text()).loggername(), QString());
    }

    void returnsNameOrAddressOfThread()
    {
        constexpr int digits = 2 * sizeof(void *);
        const QString address =
            QStringLiteral("0x%1").arg(quintptr(QThread::currentThread()), digits, 16, QLatin1Char('0'));
        QCOMPARE(LoggingEvent(nullptr, Level(), text()).threadName(), address);
        QThread::currentThread()->setObjectName(QStringLiteral("main"));
        QCOMPARE(LoggingEvent(nullptr, Level(), text()).threadName(), QStringLiteral("main"));
        QThread::currentThread()->setObjectName(QString());
    }

    void allowsChangesWhileThreadsLog()
    {
        attach(Logger::rootLogger(), new CollectingAppender);
        std::atomic<bool> done {false};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&done] {
                while (!done)
                    Logger::logger(QStringLiteral("many::threads"))->info(text());
            });
        }
        for (int i = 0; i < 300; ++i) {
            Logger::logger(QStringLiteral("many::%1").arg(i))->setLevel(Level(Level::WARN_INT));
            const AppenderSharedPtr appender(new CollectingAppender);
            Logger::rootLogger()->addAppender(appender);
            Logger::rootLogger()->removeAppender(appender);
        }
        done = true;
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(Logger::rootLogger()->appenders().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestLog4QtLoggers)

#include "tst_log4qt_loggers.moc"
