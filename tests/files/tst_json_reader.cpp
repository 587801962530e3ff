// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CJsonReader.h>

#include "Files.h"
#include "FilesTest.h"

#include <QDir>
#include <QJsonDocument>

#include <atomic>
#include <thread>
#include <unistd.h>

using ZyBase::CJsonReader;

namespace {

const QString key = QStringLiteral("key");

// Returns whether each function that reads returns its result for a failure.
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

class TestJsonReader : public FilesTest
{
    Q_OBJECT

private:
    QString jsonFile() const { return path("file.json"); }

private Q_SLOTS:
    void returnsFailureValuesForInvalidFile_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("spaces") << QByteArray("  \n\t ");
        QTest::newRow("not JSON") << QByteArray("hello");
        QTest::newRow("cut in an object") << QByteArray("{\"key\": 1, \"o");
        QTest::newRow("cut in an array") << QByteArray("[{\"key\": 1}");
        QTest::newRow("cut in a string") << QByteArray("{\"key\": \"val");
        QTest::newRow("character after the end") << QByteArray("{\"key\": 1} x");
        QTest::newRow("two documents") << QByteArray("{\"key\": 1}{\"key\": 2}");
        QTest::newRow("comma after the last value") << QByteArray("{\"key\": 1,}");
        QTest::newRow("comment") << QByteArray("{\"key\": 1 // one\n}");
        QTest::newRow("single quotes") << QByteArray("{'key': 1}");
        QTest::newRow("number at the top") << QByteArray("17");
        QTest::newRow("string at the top") << QByteArray("\"text\"");
        QTest::newRow("null at the top") << QByteArray("null");
        QTest::newRow("invalid UTF-8 in a value") << QByteArray("{\"key\": \"a\xff\xfe\"}");
        QTest::newRow("invalid UTF-8 in a key") << QByteArray("{\"k\xc3\": 1, \"key\": 1}");
        QTest::newRow("UTF-16") << QByteArray::fromRawData("\xff\xfe{\0}\0", 6);
        QTest::newRow("NUL bytes") << QByteArray(16, '\0');
        QTest::newRow("array nested deeper than 1024") << nested(1025);
        QTest::newRow("nested without closing brackets") << QByteArray(1000000, '[');
        QTest::newRow("object nested deeper than 1024")
            << QByteArray("{\"key\":").repeated(1025) + "1" + QByteArray(1025, '}');
    }
    void returnsFailureValuesForInvalidFile()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(jsonFile(), content));
        QVERIFY(allReadersFail(jsonFile()));
        QCOMPARE(messages().size(), 0);
    }

    void returnsFailureValuesIfFileCannotBeOpened_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("missing") << "missing.json";
        QTest::newRow("in a missing directory") << "missing/file.json";
        QTest::newRow("is a directory") << ".";
        QTest::newRow("below a plain file") << "plain/file.json";
    }
    void returnsFailureValuesIfFileCannotBeOpened()
    {
        QFETCH(QString, name);
        QVERIFY(writeFile(path(QStringLiteral("plain")), "{\"key\": 1}"));
        QVERIFY(allReadersFail(path(name)));
        QCOMPARE(messages().size(), 0);
    }

    void returnsFailureValuesForEmptyPath()
    {
        QVERIFY(allReadersFail(QStringLiteral("")));
        QVERIFY(allReadersFail(QString()));
    }

    void returnsFailureValuesForUnreadableFile()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(jsonFile(), "{\"key\": 1}"));
        QVERIFY(QFile::setPermissions(jsonFile(), QFile::Permissions()));
        QVERIFY(allReadersFail(jsonFile()));
        QCOMPARE(messages().size(), 0);
    }

    void returnsValueOfKey_data()
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
        QTest::newRow("non-ASCII string")
            << QByteArray("{\"key\": \"Größe 文件 😀\"}") << QJsonValue(QStringLiteral("Größe 文件 😀"));
        QTest::newRow("escapes") << QByteArray("{\"key\": \"a\\\"\\\\n\\u00e9\"}")
                                 << QJsonValue(QStringLiteral("a\"\\n\u00e9"));
        QTest::newRow("among other keys") << QByteArray("{\"a\": 1, \"key\": 2, \"z\": 3}") << QJsonValue(2);
        QTest::newRow("duplicate key: last value") << QByteArray("{\"key\": 1, \"key\": 2}") << QJsonValue(2);
        QTest::newRow("byte order mark at the start of a string: lost")
            << QByteArray("{\"key\": \"\xef\xbb\xbf"
                          "text\"}")
            << QJsonValue(QStringLiteral("text"));
        QTest::newRow("with a byte order mark") << QByteArray("\xef\xbb\xbf{\"key\": 1}") << QJsonValue(1);
        QTest::newRow("with spaces around") << QByteArray("\r\n\t {\"key\" : 1 } \n\n") << QJsonValue(1);
    }
    void returnsValueOfKey()
    {
        QFETCH(QByteArray, content);
        QFETCH(QJsonValue, value);
        QVERIFY(writeFile(jsonFile(), content));
        const QJsonValue read = CJsonReader::ParseJsonFile(jsonFile(), key);
        QVERIFY(!read.isUndefined());
        QCOMPARE(read, value);
    }

    void returnsUndefinedForMissingKey_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("other keys only") << QByteArray("{\"other\": 1}");
        QTest::newRow("other case") << QByteArray("{\"KEY\": 1}");
        QTest::newRow("key at the second level") << QByteArray("{\"other\": {\"key\": 1}}");
    }
    void returnsUndefinedForMissingKey()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(jsonFile(), content));
        QVERIFY(CJsonReader::ParseJsonFile(jsonFile(), key).isUndefined());
    }

    void returnsValueOfEmptyKey()
    {
        QVERIFY(writeFile(jsonFile(), "{\"\": \"nameless\"}"));
        QCOMPARE(CJsonReader::ParseJsonFile(jsonFile(), QString()), QJsonValue(QStringLiteral("nameless")));
        QVERIFY(CJsonReader::ParseJsonFile(jsonFile(), key).isUndefined());
    }

    void returnsNullForKeyOfEmptyObject()
    {
        QVERIFY(writeFile(jsonFile(), "{}"));
        const QJsonValue value = CJsonReader::ParseJsonFile(jsonFile(), key);
        QVERIFY(value.isNull());
        QVERIFY(!value.isUndefined());
    }

    void returnsNullForKeyOfArray()
    {
        QVERIFY(writeFile(jsonFile(), "[{\"key\": 1}]"));
        const QJsonValue value = CJsonReader::ParseJsonFile(jsonFile(), key);
        QVERIFY(value.isNull());
        QVERIFY(!value.isUndefined());
    }

    void returnsEmptyResultForOtherTopLevelType()
    {
        QVERIFY(writeFile(jsonFile(), "[{\"key\": 1}]"));
        QCOMPARE(CJsonReader::ParseJsonFileToObject(jsonFile()), QJsonObject());
        QCOMPARE(CJsonReader::ParseJsonFileToArray(jsonFile()).size(), 1);
        QVERIFY(writeFile(jsonFile(), "{\"key\": [1]}"));
        QCOMPARE(CJsonReader::ParseJsonFileToArray(jsonFile()), QJsonArray());
        QCOMPARE(CJsonReader::ParseJsonFileToObject(jsonFile()).size(), 1);
    }

    void keepsOrderOfArray()
    {
        QVERIFY(writeFile(jsonFile(), "[3, \"a\", null, [1], {\"key\": 2}]"));
        const QJsonArray expected {3, QStringLiteral("a"), QJsonValue(), QJsonArray {1},
                                   QJsonObject {{key, 2}}};
        QCOMPARE(CJsonReader::ParseJsonFileToArray(jsonFile()), expected);
    }

    void readsNestingUpToLimitOfQt()
    {
        QVERIFY(writeFile(jsonFile(), nested(1024)));
        QCOMPARE(CJsonReader::ParseJsonFileToArray(jsonFile()).size(), 1);
    }

    void readsFiftyMegabytes()
    {
        const QByteArray element = "{\"key\":\"" + QByteArray(1000, 'x') + "\"}";
        constexpr int count = 50 * 1024;
        QByteArray content = "[" + (element + ',').repeated(count);
        content.chop(1);
        QVERIFY(writeFile(jsonFile(), content + ']'));
        const QJsonArray array = CJsonReader::ParseJsonFileToArray(jsonFile());
        QCOMPARE(array.size(), count);
        QCOMPARE(array.last().toObject().value(key).toString().size(), 1000);
    }

    void usesPathRelativeToCurrentDirectory()
    {
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directoryPath()));
        CJsonReader::SaveJsonFile(QStringLiteral("relative.json"), {{key, 1}});
        QCOMPARE(CJsonReader::ParseJsonFile(QStringLiteral("relative.json"), key), QJsonValue(1));
        QVERIFY(QDir::setCurrent(previous));
        QVERIFY(QFile::exists(path(QStringLiteral("relative.json"))));
    }

    void readsSavedObject()
    {
        const QJsonObject object {
            {QStringLiteral("text"), QStringLiteral("Größe \"文件\" 😀\n")},
            {QStringLiteral("number"), 1.25},
            {QStringLiteral("large"), 9007199254740992.0},
            {QStringLiteral("flag"), false},
            {QStringLiteral("nothing"), QJsonValue()},
            {QStringLiteral("array"), QJsonArray {1, QJsonObject {{key, QStringLiteral("v")}}}},
            {QStringLiteral(""), QStringLiteral("nameless")}};
        CJsonReader::SaveJsonFile(jsonFile(), object);
        QCOMPARE(CJsonReader::ParseJsonFileToObject(jsonFile()), object);
        QCOMPARE(messages().size(), 0);
    }

    void writesFileThatCannotBeRead()
    {
        if (!becomeOrdinaryUser())
            QSKIP("permission checks do not apply to root");
        QVERIFY(writeFile(jsonFile(), "{\"old\": true}"));
        QVERIFY(QFile::setPermissions(jsonFile(), QFile::WriteOwner));
        CJsonReader::SaveJsonFile(jsonFile(), {{key, 1}});
        QVERIFY(QFile::setPermissions(jsonFile(), QFile::ReadOwner));
        QCOMPARE(CJsonReader::ParseJsonFileToObject(jsonFile()), QJsonObject({{key, 1}}));
    }

    void writesIndentedUtf8()
    {
        CJsonReader::SaveJsonFile(
            jsonFile(), {{QStringLiteral("b"), QJsonArray {1}}, {QStringLiteral("a"), QStringLiteral("é")}});
        QCOMPARE(readFile(jsonFile()),
                 QByteArray("{\n    \"a\": \"é\",\n    \"b\": [\n        1\n    ]\n}\n"));
    }

    void writesEmptyObject()
    {
        CJsonReader::SaveJsonFile(jsonFile(), QJsonObject());
        QCOMPARE(readFile(jsonFile()), QByteArray("{\n}\n"));
    }

    void writesShorterContentOverLonger()
    {
        QVERIFY(writeFile(jsonFile(), QByteArray(100000, 'x')));
        CJsonReader::SaveJsonFile(jsonFile(), {{key, 1}});
        QCOMPARE(readFile(jsonFile()), QByteArray("{\n    \"key\": 1\n}\n"));
    }

    void writesInPlace()
    {
        // The hard link shows that the file was not replaced. No other file shows that there is no backup.
        QVERIFY(writeFile(jsonFile(), "{}"));
        const QString second = path(QStringLiteral("second.json"));
        QCOMPARE(link(QFile::encodeName(jsonFile()).constData(), QFile::encodeName(second).constData()), 0);
        QVERIFY(QFile::setPermissions(jsonFile(), QFile::ReadOwner | QFile::WriteOwner));
        const QFile::Permissions permissions = QFile::permissions(jsonFile());
        CJsonReader::SaveJsonFile(jsonFile(), {{key, 1}});
        QCOMPARE(CJsonReader::ParseJsonFile(second, key), QJsonValue(1));
        QCOMPARE(QFile::permissions(jsonFile()), permissions);
        QCOMPARE(QDir(directoryPath()).entryList(QDir::Files).size(), 2);
    }

    void keepsSymbolicLink()
    {
        QVERIFY(writeFile(jsonFile(), "{}"));
        const QString link = path(QStringLiteral("link.json"));
        QVERIFY(QFile::link(jsonFile(), link));
        CJsonReader::SaveJsonFile(link, {{key, 1}});
        QVERIFY(QFileInfo(link).isSymLink());
        QCOMPARE(CJsonReader::ParseJsonFile(jsonFile(), key), QJsonValue(1));
    }

    void ignoresFileThatCannotBeWritten_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("in a missing directory") << "missing/file.json";
        QTest::newRow("is a directory") << "folder";
        QTest::newRow("below a plain file") << "plain/file.json";
    }
    void ignoresFileThatCannotBeWritten()
    {
        QFETCH(QString, name);
        QVERIFY(QDir(directoryPath()).mkdir(QStringLiteral("folder")));
        QVERIFY(writeFile(path(QStringLiteral("plain")), "kept"));
        CJsonReader::SaveJsonFile(path(name), {{key, 1}});
        QCOMPARE(QDir(directoryPath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({QStringLiteral("folder"), QStringLiteral("plain")}));
        QVERIFY(QDir(path(QStringLiteral("folder"))).isEmpty());
        QCOMPARE(readFile(path(QStringLiteral("plain"))), QByteArray("kept"));
        // Only Qt logs a warning.
        QCOMPARE(messages().size(), 1);
        QVERIFY(messages().first().text.startsWith(QStringLiteral("QIODevice::write")));
    }

    void returnsIfDiskIsFull()
    {
        CJsonReader::SaveJsonFile(QStringLiteral("/dev/full"), {{key, 1}});
        QCOMPARE(messages().size(), 0);
    }

    void isThreadSafe()
    {
        const int successes = sumOfEightThreads([this](int thread) {
            int count = 0;
            const QString own = path(QString::number(thread));
            for (int i = 0; i < 100; ++i) {
                CJsonReader::SaveJsonFile(own, {{key, i}});
                count += CJsonReader::ParseJsonFile(own, key) == QJsonValue(i);
            }
            return count;
        });
        QCOMPARE(successes, 800);
    }

    void returnsWholeObjectOrFailureDuringSave()
    {
        QJsonObject object;
        for (int i = 0; i < 5000; ++i)
            object.insert(QString::number(i), i);
        CJsonReader::SaveJsonFile(jsonFile(), object);
        std::atomic<bool> done {false};
        std::thread writer([&] {
            for (int i = 0; i < 100; ++i)
                CJsonReader::SaveJsonFile(jsonFile(), object);
            done = true;
        });
        bool onlyWholeOrEmpty = true;
        while (!done) {
            const QJsonObject read = CJsonReader::ParseJsonFileToObject(jsonFile());
            onlyWholeOrEmpty = onlyWholeOrEmpty && (read.isEmpty() || read == object);
        }
        writer.join();
        QVERIFY(onlyWholeOrEmpty);
    }
};

QTEST_GUILESS_MAIN(TestJsonReader)

#include "tst_json_reader.moc"
