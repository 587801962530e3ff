// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/ZyBase.h>
#include <ZyBase/base/ZyBaseExport.h>

#include "Files.h"

#include <QDir>
#include <QFileInfo>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <dlfcn.h>

#define STRING_OF(tokens) #tokens
#define EXPANSION_OF(macro) STRING_OF(macro)

namespace {

const QString library = QStringLiteral(ZYBASE_LIBRARY);
constexpr bool isInstrumented = ZYBASE_INSTRUMENTED != 0;

// In the order in which they are created.
const QStringList wordsOfRecords {QStringLiteral("install"),
                                  QStringLiteral("uninstall"),
                                  QStringLiteral("uninstall_opt"),
                                  QStringLiteral("update"),
                                  QStringLiteral("feedback"),
                                  QStringLiteral("mf_show"),
                                  QStringLiteral("payment_completed"),
                                  QStringLiteral("crash"),
                                  QStringLiteral("server_run"),
                                  QStringLiteral("start"),
                                  QStringLiteral("end"),
                                  QStringLiteral("cancel"),
                                  QStringLiteral("fail"),
                                  QStringLiteral("none")};

// Copies the library with its sibling to another directory, as it is installed with an application, and
// returns its path.
QString copyLibraries(const QTemporaryDir &directory)
{
    const QFileInfo original(library);
    const QFileInfoList siblings = original.dir().entryInfoList({QStringLiteral("lib*.so")}, QDir::Files);
    for (const QFileInfo &sibling : siblings)
        QFile::copy(sibling.filePath(), directory.filePath(sibling.fileName()));
    return directory.filePath(original.fileName());
}

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

QString programHeader(const QString &file, const QString &type)
{
    const QStringList headers = output(QStringLiteral("readelf"), {QStringLiteral("-lW"), file})
                                    .split(QLatin1Char('\n'))
                                    .filter(QRegularExpression(QStringLiteral("^ *%1 ").arg(type)));
    return headers.value(0);
}

QString importedSymbols(const QString &file)
{
    return output(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--undefined-only"), file});
}

// Adds the column "file" with a row for each shared object of this tree.
void addSharedObjects()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("libZyBase.so") << library;
    if (qstrlen(LOG4QT_LIBRARY) > 0)
        QTest::newRow("libZyLog4Qt.so") << QStringLiteral(LOG4QT_LIBRARY);
}

QList<const void *> *staticObjects = nullptr; // those constructed; not recorded if null

} // namespace

// Called instead of the C library's function, because symbols of the program come first. A static object
// whose constructor has run is registered with it.
extern "C" __attribute__((visibility("default"))) int __cxa_atexit(void (*destroy)(void *), void *object,
                                                                   void *owner)
{
    if (staticObjects)
        staticObjects->append(object);
    static const auto original = reinterpret_cast<decltype(&__cxa_atexit)>(dlsym(RTLD_NEXT, "__cxa_atexit"));
    return original(destroy, object, owner);
}

// Verifies what a loader and a linker use of the library.
class TestBoundary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (output(QStringLiteral("nm"), {QStringLiteral("--version")}).isEmpty())
            QSKIP("binutils are not installed");
    }

    void exportsOnlyListedSymbols_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("list");
        QTest::newRow("libZyBase.so") << library << QStringLiteral(ZYBASE_EXPORTS);
        if (qstrlen(LOG4QT_LIBRARY) > 0)
            QTest::newRow("libZyLog4Qt.so")
                << QStringLiteral(LOG4QT_LIBRARY) << QStringLiteral(LOG4QT_EXPORTS);
    }
    void exportsOnlyListedSymbols()
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

    void hasSonameEqualToFileName()
    {
        QCOMPARE(QFileInfo(library).fileName(), QStringLiteral("libZyBase.so"));
        QVERIFY(!QFileInfo(library).isSymLink());
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        QCOMPARE(captured(dynamic, QStringLiteral(R"(\(SONAME\).*\[(.*)\])")),
                 QStringList {QStringLiteral("libZyBase.so")});
    }

    void searchesSiblingsInOwnDirectory()
    {
        if (qstrlen(LOG4QT_LIBRARY) == 0)
            QSKIP("the library uses an installed log4qt");
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        const QStringList paths = captured(dynamic, QStringLiteral(R"(\((?:RUNPATH|RPATH)\).*\[(.*)\])"));
        QCOMPARE(paths.size(), 1);
        QCOMPARE(paths.first().split(QLatin1Char(':')).first(), QStringLiteral("$ORIGIN"));
    }

    void linksOnlyUsedLibraries()
    {
        if (isInstrumented)
            QSKIP("an instrumented library links additional libraries");
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        QStringList needed = captured(dynamic, QStringLiteral(R"(\(NEEDED\).*\[(.*)\])"));
        needed = needed.filter(QRegularExpression(
            QStringLiteral("^lib(?!stdc\\+\\+|gcc_s|c\\.|m\\.|pthread|qrencode\\.|quazip|.*[Ll]og4[Qq]t)")));
        needed.sort();
        QCOMPARE(needed, QStringList({QStringLiteral("libQt5Core.so.5"), QStringLiteral("libQt5Gui.so.5"),
                                      QStringLiteral("libQt5Network.so.5")}));
    }

    void runsOnlyStringConstructorsAtLoadTime()
    {
        if (isInstrumented)
            QSKIP("an instrumented library runs code at load time");
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), library});
        // One entry is from the compiler's start file, one creates the strings of statistics records. On
        // 64-bit ARM, GCC adds one that asks which atomic instructions the processor has.
#if defined __aarch64__ && !defined __ARM_FEATURE_ATOMICS && !defined __clang__
        constexpr int entries = 3;
#else
        constexpr int entries = 2;
#endif
        QCOMPARE(captured(dynamic, QStringLiteral(R"(\(INIT_ARRAYSZ\)\s+(\d+))")),
                 QStringList {QString::number(entries * sizeof(void *))});
    }

    void containsWordsOfStatisticsRecords()
    {
        const QByteArray content = readFile(library);
        for (const QString &word : wordsOfRecords) {
            const QString text = word + QChar(0);
            const QByteArray utf16(reinterpret_cast<const char *>(text.utf16()), 2 * text.size());
            // The match must not be the end of a longer word.
            int position = content.indexOf(utf16);
            while (position > 0 && content.at(position - 1) == 0 && content.at(position - 2) != 0)
                position = content.indexOf(utf16, position + 1);
            QVERIFY2(position > 0, qPrintable(word));
        }
    }

    void bindsInternalCallsInsideLibrary()
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

    void hasReadOnlyAddressesOfFunctions_data()
    {
        addSharedObjects();
    }
    void hasReadOnlyAddressesOfFunctions()
    {
        QFETCH(QString, file);
        QVERIFY(programHeader(file, QStringLiteral("GNU_RELRO")).contains(QStringLiteral(" R ")));
        const QString dynamic = output(QStringLiteral("readelf"), {QStringLiteral("-dW"), file});
        QCOMPARE(captured(dynamic, QStringLiteral(R"(\(FLAGS_1\).*\b(NOW)\b)")),
                 QStringList {QStringLiteral("NOW")});
    }

    void hasNoExecutableStack_data()
    {
        addSharedObjects();
    }
    void hasNoExecutableStack()
    {
        QFETCH(QString, file);
        QVERIFY(programHeader(file, QStringLiteral("GNU_STACK")).contains(QStringLiteral(" RW ")));
    }

    void detectsOverwrittenStack_data()
    {
        addSharedObjects();
    }
    void detectsOverwrittenStack()
    {
        QFETCH(QString, file);
        if (!ZYBASE_HAS_STACK_PROTECTOR)
            QSKIP("the compiler has no stack protector");
        QVERIFY(importedSymbols(file).contains(QStringLiteral("__stack_chk_fail")));
    }

    void checksSizesOfBuffers_data()
    {
        addSharedObjects();
    }
    void checksSizesOfBuffers()
    {
        QFETCH(QString, file);
#ifdef __clang__
        QSKIP("Clang does not check the functions that the library calls");
#endif
        if (!ZYBASE_SETS_FORTIFY_SOURCE)
            QSKIP("the build is not optimised, or its flags decide about the checks");
        if (isInstrumented)
            QSKIP("the sanitizers check buffers themselves");
        QVERIFY(importedSymbols(file).contains(QStringLiteral("__fprintf_chk")));
    }

    void startsFunctionsWithJumpTarget_data()
    {
        addSharedObjects();
    }
    void startsFunctionsWithJumpTarget()
    {
        QFETCH(QString, file);
        if (!ZYBASE_HAS_CF_PROTECTION)
            QSKIP("the compiler cannot protect jumps on this processor");
        const QString code = output(QStringLiteral("objdump"), {QStringLiteral("-d"), file});
        const QStringList marked = captured(code, QStringLiteral("^([0-9a-f]+) <.*>:\\n.*\\tendbr"));
        const QString symbols =
            output(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--defined-only"), file});
        const QStringList exported = captured(symbols, QStringLiteral("^([0-9a-f]+) T "));
        QVERIFY(!exported.isEmpty());
        for (const QString &address : exported)
            QVERIFY2(marked.contains(address), qPrintable(address));
    }

    void createsOnlyWordsOfStatisticsRecordsAtLoadTime()
    {
        if (isInstrumented)
            QSKIP("instrumentation does not allow a second copy of the library");
        const QTemporaryDir application;
        const QString path = copyLibraries(application);
        QList<const void *> objects;
        staticObjects = &objects;
        QLibrary loaded(path);
        const bool isLoaded = loaded.load();
        staticObjects = nullptr;
        QVERIFY2(isLoaded, qPrintable(loaded.errorString()));
        QStringList words;
        for (const void *object : qAsConst(objects)) {
            Dl_info owner {};
            if (dladdr(object, &owner) != 0 && path == QString::fromUtf8(owner.dli_fname))
                words << *static_cast<const QString *>(object);
        }
        QCOMPARE(words, wordsOfRecords);
    }

    void loadsWithoutBeingLinked()
    {
        if (isInstrumented)
            QSKIP("instrumentation does not allow a second copy of the library");
        const QTemporaryDir application;
        QLibrary loaded(copyLibraries(application));
        QVERIFY2(loaded.load(), qPrintable(loaded.errorString()));
        QVERIFY(loaded.resolve("_ZN6ZyBase12LoggerObject4infoEPKc"));
    }

    void exportsSymbolsIfApplicationHidesItsOwn()
    {
        QCOMPARE(EXPANSION_OF(ZYBASE_EXPORT), EXPANSION_OF(Q_DECL_IMPORT));
        QVERIFY(strstr(EXPANSION_OF(ZYBASE_EXPORT), "default"));
    }

    void includesAllClassesWithOneHeader()
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
