// SPDX-License-Identifier: LGPL-2.1-or-later

#include <QTest>

#ifdef HELP_FILE
#include <QHelpEngineCore>
#include <QHelpLink>
#include <QTemporaryDir>

#include <memory>
#endif

// The keywords that Qt Creator looks up when the user presses F1 on a name.
class TestHelpKeywords : public QObject
{
    Q_OBJECT

#ifdef HELP_FILE
private Q_SLOTS:
    void initTestCase()
    {
        m_engine = std::make_unique<QHelpEngineCore>(m_directory.filePath(QStringLiteral("help.qhc")));
        QVERIFY2(m_engine->setupData(), qPrintable(m_engine->error()));
        QVERIFY2(m_engine->registerDocumentation(QStringLiteral(HELP_FILE)), qPrintable(m_engine->error()));
    }

    void findsOnePage_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("hasAnchor");
        const auto download = QStringLiteral("classZyBase_1_1DownloadManager.html");
        QTest::newRow("class") << "ZyBase::DownloadManager" << download << false;
        QTest::newRow("class without namespace") << "DownloadManager" << download << false;
        QTest::newRow("function") << "ZyBase::DownloadManager::StartDownload" << download << true;
        QTest::newRow("function without namespace") << "DownloadManager::StartDownload" << download << true;
        QTest::newRow("function without class") << "StartDownload" << download << true;
        QTest::newRow("signal") << "ZyBase::DownloadManager::signalDownloadFinished" << download << true;
        QTest::newRow("constructor") << "ZyBase::DownloadManager::DownloadManager" << download << true;
        QTest::newRow("global function") << "getBigFileMd5"
                                         << "CFileUtils_8h.html" << true;
        QTest::newRow("page") << "Watching the theme"
                              << "guide-watching-the-theme.html" << false;
    }

    void findsOnePage()
    {
        QFETCH(QString, name);
        QFETCH(QString, file);
        QFETCH(bool, hasAnchor);
        const QList<QHelpLink> found = m_engine->documentsForIdentifier(name);
        QCOMPARE(found.size(), 1);
        QCOMPARE(found.first().url.fileName(), file);
        QCOMPARE(found.first().url.hasFragment(), hasAnchor);
        QVERIFY(!m_engine->fileData(found.first().url).isEmpty());
        QCOMPARE(m_engine->documentsForKeyword(name).size(), 1);
    }

private:
    QTemporaryDir m_directory;
    std::unique_ptr<QHelpEngineCore> m_engine;
#else
private Q_SLOTS:
    void findsOnePage()
    {
        QSKIP("The Debian package qttools5-dev is not installed");
    }
#endif
};

QTEST_GUILESS_MAIN(TestHelpKeywords)

#include "tst_help_keywords.moc"
