// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/ZyBase.h>
#include <ZyBase/base/ZyBaseExport.h>

#include "Files.h"

#include <QFileInfo>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#define TEXT_OF(text) #text
#define EXPANDED(macro) TEXT_OF(macro)

namespace {

const QString library = QStringLiteral(ZYBASE_LIBRARY);
constexpr bool isInstrumented = ZYBASE_INSTRUMENTED != 0;

QString output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput());
}

QStringList captured(const QString &text, const QString &pattern)
{
    QStringList found;
    QRegularExpressionMatchIterator match =
        QRegularExpression(pattern, QRegularExpression::MultilineOption).globalMatch(text);
    while (match.hasNext())
        found << match.next().captured(1);
    return found;
}

} // namespace

// The library as a loader and a linker see it.
class TestBoundary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (output(QStringLiteral("nm"), {QStringLiteral("--version")}).isEmpty())
            QSKIP("binutils are not installed");
    }

    void exportsTheListedNamesAndNoOthers_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("list");
        QTest::newRow("libZyBase.so") << library << QStringLiteral(ZYBASE_EXPORTS);
        if (qstrlen(LOG4QT_LIBRARY) > 0)
            QTest::newRow("libZyLog4Qt.so") << QStringLiteral(LOG4QT_LIBRARY) << QStringLiteral(LOG4QT_EXPORTS);
    }
    void exportsTheListedNamesAndNoOthers()
    {
        QFETCH(QString, file);
        QFETCH(QString, list);
        const QString symbols =
            output(QStringLiteral("nm"), {QStringLiteral("-DC"), QStringLiteral("--defined-only"), file});
        QStringList names = captured(symbols, QStringLiteral("^[0-9a-f]+ . (.*)$"));
        names.removeDuplicates(); // a constructor has two symbols
        names.sort();
        QStringList expected = readLines(list).filter(QRegularExpression(QStringLiteral("^[^#]")));
        expected.sort();
        QCOMPARE(names, expected);
    }

    void fileAndSonameAreTheSamePlainName()
    {
        QCOMPARE(QFileInfo(library).fileName(), QStringLiteral("libZyBase.so"));
        QVERIFY(!QFileInfo(library).isSymLink());
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        QCOMPARE(captured(dynamic, QStringLiteral(R"(\(SONAME\).*\[(.*)\])")),
                 QStringList {QStringLiteral("libZyBase.so")});
    }

    void siblingsAreLookedForBesideTheLibrary()
    {
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        const QStringList paths = captured(dynamic, QStringLiteral(R"(\((?:RUNPATH|RPATH)\).*\[(.*)\])"));
        QCOMPARE(paths.size(), 1);
        QCOMPARE(paths.first().split(QLatin1Char(':')).first(), QStringLiteral("$ORIGIN"));
    }

    void nothingButTheUsedIsLinked()
    {
        if (isInstrumented)
            QSKIP("instrumented libraries link what their instruments need");
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        QStringList needed = captured(dynamic, QStringLiteral(R"(\(NEEDED\).*\[(.*)\])"));
        needed = needed.filter(QRegularExpression(
            QStringLiteral("^lib(?!stdc\\+\\+|gcc_s|c\\.|m\\.|pthread|qrencode\\.|quazip|.*[Ll]og4[Qq]t)")));
        needed.sort();
        QCOMPARE(needed, QStringList({QStringLiteral("libQt5Core.so.5"), QStringLiteral("libQt5Gui.so.5"),
                                      QStringLiteral("libQt5Network.so.5")}));
    }

    void onlyTheVocabularyIsBuiltAtLoadTime()
    {
        if (isInstrumented)
            QSKIP("instruments start at load time");
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        // One entry is the compiler's own start file, one is the words for statistics records.
        QCOMPARE(captured(dynamic, QStringLiteral(R"(\(INIT_ARRAYSZ\)\s+(\d+))")),
                 QStringList {QString::number(2 * sizeof(void *))});
    }

    void vocabularyOfRecordsIsInTheLibrary()
    {
        const QByteArray content = readFile(library);
        for (const char *word :
             {"install", "uninstall", "uninstall_opt", "update", "feedback", "mf_show", "payment_completed",
              "crash", "server_run", "start", "end", "cancel", "fail", "none"}) {
            const QString text = QString::fromLatin1(word) + QChar(0);
            const QByteArray utf16(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
            // A word of its own, not the end of a longer one.
            int position = content.indexOf(utf16);
            while (position > 0 && content.at(position - 1) == 0 && content.at(position - 2) != 0)
                position = content.indexOf(utf16, position + 1);
            QVERIFY2(position > 0, word);
        }
    }

    void callsInsideTheLibraryAreBoundThere()
    {
        const QString relocations =
            output(QStringLiteral("sh"),
                   {QStringLiteral("-c"), QStringLiteral("readelf -rW '%1' | c++filt").arg(library)});
        QVERIFY(relocations.contains(QStringLiteral("JUMP_SLO")));
        const QStringList slots =
            captured(relocations,
                     QStringLiteral(
                         "^.*JUMP_SLO.*? "
                         "((?:ZyBase::|LoggerObjectPrivate::|C(?:GoogleAnalytics|GaReport|XdReport)::).*)$"));
        QCOMPARE(slots, QStringList());
    }

    void libraryLoadsIntoAHostThatDoesNotLinkIt()
    {
        if (isInstrumented)
            QSKIP("the instruments take a second copy of the library for a mistake");
        // Moved away from where it was built, with its sibling, as hosts ship it.
        const QTemporaryDir host;
        const QFileInfo original(library);
        const QFileInfoList siblings = original.dir().entryInfoList({QStringLiteral("lib*.so")}, QDir::Files);
        for (const QFileInfo &sibling : siblings)
            QVERIFY(QFile::copy(sibling.filePath(), host.filePath(sibling.fileName())));
        QLibrary loaded(host.filePath(original.fileName()));
        QVERIFY2(loaded.load(), qPrintable(loaded.errorString()));
        QVERIFY(loaded.resolve("_ZN6ZyBase12LoggerObject4infoEPKc"));
    }

    void hostsThatHideTheirSymbolsSeeThoseOfTheLibrary()
    {
        QCOMPARE(EXPANDED(ZYBASE_EXPORT), EXPANDED(Q_DECL_IMPORT));
        QVERIFY(strstr(EXPANDED(ZYBASE_EXPORT), "default"));
    }

    void oneHeaderBringsAllClasses()
    {
        ZyBase::LoggerObject::debug("off");
        QVERIFY(LoggerObjectPrivate::getInstance() != nullptr);
        QVERIFY(ZyBase::CJsonReader::ParseJsonFileToArray(QString()).isEmpty());
        QCOMPARE(ZyBase::CHttpPostRequest::SignObject({}, QString()),
                 ZyBase::CSystemUtils::GetStringMd5(QString()));
        ZyBase::CGaReportManager::ReleaseReport();
        QVERIFY(!ZyBase::CGaReportManager::s_instance);
        ZyBase::DownloadManager().StopDownload();
        QVERIFY(ParseTdValue(QString()).isEmpty());
        QVERIFY(&ZyBase::CNetworkUtils::IsNetWorkOnline);
        QVERIFY(!ZyBase::ReadRegeditValue(QStringLiteral("/none"), QStringLiteral("key")).isValid());
        QVERIFY(ZyBase::CFileUtils::CheckFileNameValid(QString()));
        QVERIFY(!GetAppDirPath().empty());
        QVERIFY(ZyBase::CStringUtils::SplitString(QString()).isNull());
        QVERIFY(!ZyBase::ZipManager::QuaUnzipFile(QString(), QString(), false));
        QVERIFY(ZyBase::CAssocUtils::ResetPdfLauncher(QString()));
        ZyBase::COperateSystem::SleepComputer();
        QVERIFY(ZyBase::CSystemUtils::IsOn64BitSystem());
    }
};

QTEST_GUILESS_MAIN(TestBoundary)

#include "tst_boundary.moc"
