// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CJsonReader.h>

#include "Files.h"
#include "MessageCapture.h"
#include "Sandbox.h"

#include <QDir>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>
#include <unistd.h>

using ZyBase::CJsonReader;

namespace {

const QString key = QStringLiteral("key");

// What a failed read is told from: each reader's own failure value.
bool allReadersFail(const QString &path)
{
    const QJsonValue value = CJsonReader::ParseJsonFile(path, key);
    return value.isNull() && !value.isUndefined() && CJsonReader::ParseJsonFileToObject(path).isEmpty()
           && CJsonReader::ParseJsonFileToArray(path).isEmpty();
}

QByteArray nested(int depth)
{
    return QByteArray(depth, '[') + QByteArray(depth, ']');
}

} // namespace

class TestJsonReader : public QObject
{
    Q_OBJECT

private:
    QString path() const { return m_directory->filePath(QStringLiteral("file.json")); }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<MessageCapture> m_messages;

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        m_messages = std::make_unique<MessageCapture>();
    }
    void cleanup() { m_messages.reset(); }

    void badFileGivesTheFailureValuesInSilence_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("blanks") << QByteArray("  \n\t ");
        QTest::newRow("no JSON") << QByteArray("hello");
        QTest::newRow("cut in an object") << QByteArray("{\"key\": 1, \"o");
        QTest::newRow("cut in an array") << QByteArray("[{\"key\": 1}");
        QTest::newRow("cut in a string") << QByteArray("{\"key\": \"val");
        QTest::newRow("text behind the end") << QByteArray("{\"key\": 1} x");
        QTest::newRow("two documents") << QByteArray("{\"key\": 1}{\"key\": 2}");
        QTest::newRow("comma before the end") << QByteArray("{\"key\": 1,}");
        QTest::newRow("comment") << QByteArray("{\"key\": 1 // one\n}");
        QTest::newRow("single quotes") << QByteArray("{'key': 1}");
        QTest::newRow("number at the top") << QByteArray("17");
        QTest::newRow("string at the top") << QByteArray("\"text\"");
        QTest::newRow("null at the top") << QByteArray("null");
        QTest::newRow("invalid UTF-8 in a value") << QByteArray("{\"key\": \"a\xff\xfe\"}");
        QTest::newRow("invalid UTF-8 in a key") << QByteArray("{\"k\xc3\": 1, \"key\": 1}");
        QTest::newRow("UTF-16") << QByteArray::fromRawData("\xff\xfe{\0}\0", 6);
        QTest::newRow("NUL bytes") << QByteArray(16, '\0');
        QTest::newRow("nested deeper than Qt reads") << nested(1025);
        QTest::newRow("nested without end") << QByteArray(1000000, '[');
        QTest::newRow("object nested deeper than Qt reads")
            << QByteArray("{\"key\":").repeated(1025) + "1" + QByteArray(1025, '}');
    }
    void badFileGivesTheFailureValuesInSilence()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(path(), content));
        QVERIFY(allReadersFail(path()));
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void pathWithoutAFileGivesTheFailureValuesInSilence_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing.json";
        QTest::newRow("in a missing directory") << "missing/file.json";
        QTest::newRow("a directory") << ".";
        QTest::newRow("below a file") << "plain/file.json";
    }
    void pathWithoutAFileGivesTheFailureValuesInSilence()
    {
        QFETCH(QString, name);
        QVERIFY(writeFile(m_directory->filePath(QStringLiteral("plain")), "{\"key\": 1}"));
        QVERIFY(allReadersFail(m_directory->filePath(name)));
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void emptyAndNullPathsGiveTheFailureValues()
    {
        QVERIFY(allReadersFail(QStringLiteral("")));
        QVERIFY(allReadersFail(QString()));
    }

    void unreadableFileGivesTheFailureValues()
    {
        if (geteuid() == 0)
            QSKIP("root passes every permission check");
        QVERIFY(writeFile(path(), "{\"key\": 1}"));
        QVERIFY(QFile::setPermissions(path(), QFile::Permissions()));
        QVERIFY(allReadersFail(path()));
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void keyGivesItsValue_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("string") << QByteArray("{\"key\": \"text\"}") << QJsonValue(QStringLiteral("text"));
        QTest::newRow("empty string") << QByteArray("{\"key\": \"\"}") << QJsonValue(QStringLiteral(""));
        QTest::newRow("number") << QByteArray("{\"key\": -1.5e3}") << QJsonValue(-1500.0);
        QTest::newRow("true") << QByteArray("{\"key\": true}") << QJsonValue(true);
        QTest::newRow("null") << QByteArray("{\"key\": null}") << QJsonValue(QJsonValue::Null);
        QTest::newRow("object") << QByteArray("{\"key\": {\"a\": 1}}")
                                << QJsonValue(QJsonObject {{QStringLiteral("a"), 1}});
        QTest::newRow("array") << QByteArray("{\"key\": [1, \"b\"]}")
                               << QJsonValue(QJsonArray {1, QStringLiteral("b")});
        QTest::newRow("non-ASCII text")
            << QByteArray("{\"key\": \"Größe 文件 😀\"}") << QJsonValue(QStringLiteral("Größe 文件 😀"));
        QTest::newRow("escapes") << QByteArray("{\"key\": \"a\\\"\\\\n\\u00e9\"}")
                                 << QJsonValue(QStringLiteral("a\"\\n\u00e9"));
        QTest::newRow("among others") << QByteArray("{\"a\": 1, \"key\": 2, \"z\": 3}") << QJsonValue(2);
        QTest::newRow("named twice: the later") << QByteArray("{\"key\": 1, \"key\": 2}") << QJsonValue(2);
        QTest::newRow("with a byte order mark") << QByteArray("\xef\xbb\xbf{\"key\": 1}") << QJsonValue(1);
        QTest::newRow("with blanks around") << QByteArray("\r\n\t {\"key\" : 1 } \n\n") << QJsonValue(1);
    }
    void keyGivesItsValue()
    {
        QFETCH(QByteArray, content);
        QFETCH(QJsonValue, value);
        QVERIFY(writeFile(path(), content));
        const QJsonValue read = CJsonReader::ParseJsonFile(path(), key);
        QVERIFY(!read.isUndefined());
        QCOMPARE(read, value);
    }

    void keyThatTheObjectLacksGivesUndefined_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("other keys only") << QByteArray("{\"other\": 1}");
        QTest::newRow("other case") << QByteArray("{\"KEY\": 1}");
        QTest::newRow("key one level down") << QByteArray("{\"other\": {\"key\": 1}}");
    }
    void keyThatTheObjectLacksGivesUndefined()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(path(), content));
        QVERIFY(CJsonReader::ParseJsonFile(path(), key).isUndefined());
    }

    void emptyKeyIsAKeyLikeAnother()
    {
        QVERIFY(writeFile(path(), "{\"\": \"nameless\"}"));
        QCOMPARE(CJsonReader::ParseJsonFile(path(), QString()), QJsonValue(QStringLiteral("nameless")));
        QVERIFY(CJsonReader::ParseJsonFile(path(), key).isUndefined());
    }

    void keyOfAnEmptyObjectGivesNull()
    {
        QVERIFY(writeFile(path(), "{}"));
        const QJsonValue value = CJsonReader::ParseJsonFile(path(), key);
        QVERIFY(value.isNull());
        QVERIFY(!value.isUndefined());
    }

    void keyOfAnArrayGivesNull()
    {
        QVERIFY(writeFile(path(), "[{\"key\": 1}]"));
        const QJsonValue value = CJsonReader::ParseJsonFile(path(), key);
        QVERIFY(value.isNull());
        QVERIFY(!value.isUndefined());
    }

    void topLevelOfTheOtherKindIsEmpty()
    {
        QVERIFY(writeFile(path(), "[{\"key\": 1}]"));
        QCOMPARE(CJsonReader::ParseJsonFileToObject(path()), QJsonObject());
        QCOMPARE(CJsonReader::ParseJsonFileToArray(path()).size(), 1);
        QVERIFY(writeFile(path(), "{\"key\": [1]}"));
        QCOMPARE(CJsonReader::ParseJsonFileToArray(path()), QJsonArray());
        QCOMPARE(CJsonReader::ParseJsonFileToObject(path()).size(), 1);
    }

    void arrayKeepsItsOrder()
    {
        QVERIFY(writeFile(path(), "[3, \"a\", null, [1], {\"key\": 2}]"));
        const QJsonArray expected {3, QStringLiteral("a"), QJsonValue(), QJsonArray {1},
                                   QJsonObject {{key, 2}}};
        QCOMPARE(CJsonReader::ParseJsonFileToArray(path()), expected);
    }

    void nestingUpToQtsLimitIsRead()
    {
        QVERIFY(writeFile(path(), nested(1024)));
        QCOMPARE(CJsonReader::ParseJsonFileToArray(path()).size(), 1);
    }

    void fiftyMegabytesAreRead()
    {
        const QByteArray element = "{\"key\":\"" + QByteArray(1000, 'x') + "\"}";
        constexpr int count = 50 * 1024;
        QByteArray content = "[" + (element + ',').repeated(count);
        content.chop(1);
        QVERIFY(writeFile(path(), content + ']'));
        const QJsonArray array = CJsonReader::ParseJsonFileToArray(path());
        QCOMPARE(array.size(), count);
        QCOMPARE(array.last().toObject().value(key).toString().size(), 1000);
    }

    void relativePathIsTakenFromTheCurrentDirectory()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(m_directory->path()));
        CJsonReader::SaveJsonFile(QStringLiteral("relative.json"), {{key, 1}});
        QCOMPARE(CJsonReader::ParseJsonFile(QStringLiteral("relative.json"), key), QJsonValue(1));
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(QFile::exists(m_directory->filePath(QStringLiteral("relative.json"))));
    }

    void savedObjectIsReadBack()
    {
        const QJsonObject object {
            {QStringLiteral("text"), QStringLiteral("Größe \"文件\" 😀\n")},
            {QStringLiteral("number"), 1.25},
            {QStringLiteral("large"), 9007199254740992.0},
            {QStringLiteral("flag"), false},
            {QStringLiteral("nothing"), QJsonValue()},
            {QStringLiteral("array"), QJsonArray {1, QJsonObject {{key, QStringLiteral("v")}}}},
            {QStringLiteral(""), QStringLiteral("nameless")}};
        CJsonReader::SaveJsonFile(path(), object);
        QCOMPARE(CJsonReader::ParseJsonFileToObject(path()), object);
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void savedTextIsIndentedUtf8()
    {
        CJsonReader::SaveJsonFile(
            path(), {{QStringLiteral("b"), QJsonArray {1}}, {QStringLiteral("a"), QStringLiteral("é")}});
        QCOMPARE(readFile(path()), QByteArray("{\n    \"a\": \"é\",\n    \"b\": [\n        1\n    ]\n}\n"));
    }

    void emptyObjectIsSavedAsOne()
    {
        CJsonReader::SaveJsonFile(path(), QJsonObject());
        QCOMPARE(readFile(path()), QByteArray("{\n}\n"));
    }

    void saveLeavesNothingOfALongerFile()
    {
        QVERIFY(writeFile(path(), QByteArray(100000, 'x')));
        CJsonReader::SaveJsonFile(path(), {{key, 1}});
        QCOMPARE(readFile(path()), QByteArray("{\n    \"key\": 1\n}\n"));
    }

    void saveRewritesInPlace()
    {
        // Same file behind both names, no file beside it: no rename, no temporary file, no backup.
        QVERIFY(writeFile(path(), "{}"));
        const QString second = m_directory->filePath(QStringLiteral("second.json"));
        QCOMPARE(link(QFile::encodeName(path()).constData(), QFile::encodeName(second).constData()), 0);
        QVERIFY(QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner));
        const QFile::Permissions permissions = QFile::permissions(path());
        CJsonReader::SaveJsonFile(path(), {{key, 1}});
        QCOMPARE(CJsonReader::ParseJsonFile(second, key), QJsonValue(1));
        QCOMPARE(QFile::permissions(path()), permissions);
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::Files).size(), 2);
    }

    void saveThroughASymbolicLinkKeepsTheLink()
    {
        QVERIFY(writeFile(path(), "{}"));
        const QString link = m_directory->filePath(QStringLiteral("link.json"));
        QVERIFY(QFile::link(path(), link));
        CJsonReader::SaveJsonFile(link, {{key, 1}});
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(CJsonReader::ParseJsonFile(path(), key), QJsonValue(1));
    }

    void saveWhereNoFileCanBeOpenedDoesNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("in a missing directory") << "missing/file.json";
        QTest::newRow("on a directory") << "folder";
        QTest::newRow("below a file") << "plain/file.json";
    }
    void saveWhereNoFileCanBeOpenedDoesNothing()
    {
        QFETCH(QString, name);
        QVERIFY(QDir(m_directory->path()).mkdir(QStringLiteral("folder")));
        QVERIFY(writeFile(m_directory->filePath(QStringLiteral("plain")), "kept"));
        CJsonReader::SaveJsonFile(m_directory->filePath(name), {{key, 1}});
        QCOMPARE(QDir(m_directory->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({QStringLiteral("folder"), QStringLiteral("plain")}));
        QVERIFY(QDir(m_directory->filePath(QStringLiteral("folder"))).isEmpty());
        QCOMPARE(readFile(m_directory->filePath(QStringLiteral("plain"))), QByteArray("kept"));
        // The only word on it is Qt's own about the device; the library has none.
        QCOMPARE(m_messages->messages().size(), 1);
        QVERIFY(m_messages->messages().first().text.startsWith(QStringLiteral("QIODevice::write")));
    }

    void saveOnAFullDiskReturns()
    {
        CJsonReader::SaveJsonFile(QStringLiteral("/dev/full"), {{key, 1}});
        QCOMPARE(m_messages->messages().size(), 0);
    }

    void threadsReadAndWriteTheirOwnFiles()
    {
        std::vector<std::thread> threads;
        std::atomic<int> good {0};
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([this, thread, &good] {
                const QString own = m_directory->filePath(QString::number(thread));
                for (int i = 0; i < 100; ++i) {
                    CJsonReader::SaveJsonFile(own, {{key, i}});
                    good += CJsonReader::ParseJsonFile(own, key) == QJsonValue(i);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(good.load(), 800);
    }

    void readerBesideAWriterSeesTheWholeOrAFailure()
    {
        QJsonObject object;
        for (int i = 0; i < 5000; ++i)
            object.insert(QString::number(i), i);
        CJsonReader::SaveJsonFile(path(), object);
        std::atomic<bool> done {false};
        std::thread writer([&] {
            for (int i = 0; i < 100; ++i)
                CJsonReader::SaveJsonFile(path(), object);
            done = true;
        });
        bool onlyWholeOrEmpty = true;
        while (!done) {
            const QJsonObject read = CJsonReader::ParseJsonFileToObject(path());
            onlyWholeOrEmpty = onlyWholeOrEmpty && (read.isEmpty() || read == object);
        }
        writer.join();
        QVERIFY(onlyWholeOrEmpty);
    }
};

QTEST_GUILESS_MAIN(TestJsonReader)

#include "tst_json_reader.moc"
