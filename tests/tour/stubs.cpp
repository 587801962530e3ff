// SPDX-License-Identifier: LGPL-2.1-or-later

// A library that is preloaded into the tour and replaces one function of ZyBase, so that it does nothing or
// returns a wrong result. The environment variable ZYBASE_STUB names the function.

#include <ZyBase/ZyBase.h>

#include <QStringList>

#include <dlfcn.h>

#include <cstring>
#include <random>

namespace {

QStringList &stubNames()
{
    static QStringList names;
    return names;
}

struct Registration
{
    explicit Registration(const char *name) { stubNames() << QString::fromLatin1(name); }
};

bool isStubbed(const char *name)
{
    return qgetenv("ZYBASE_STUB") == name;
}

// Returns the function of ZyBase that has the name of the given function of this library.
template <typename Function> Function inZyBase(Function function)
{
    void *address = nullptr; // also the first word of a pointer to a member function
    std::memcpy(&address, &function, sizeof address);
    Dl_info symbol {};
    dladdr(address, &symbol);
    address = dlsym(RTLD_NEXT, symbol.dli_sname);
    std::memcpy(&function, &address, sizeof address);
    return function;
}

// The programs that the tour starts run without this library.
__attribute__((constructor)) void hideFromChildProcesses()
{
    unsetenv("LD_PRELOAD");
}

void doNothing()
{
}

QImage whiteImage(QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    return image;
}

QImage randomImage(QSize size)
{
    QImage image = whiteImage(size);
    std::mt19937 generator;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, generator() % 2 == 0 ? Qt::white : Qt::black);
    }
    return image;
}

} // namespace

/** Returns the values of ZYBASE_STUB. A function with two wrong results appears twice. */
extern "C" Q_DECL_EXPORT void getStubNames(QStringList *names)
{
    *names = stubNames();
}

// NOLINTBEGIN(bugprone-macro-parentheses)

// In a wrong result, "correct()" calls the function of ZyBase.
#define DEFINE_STUB(class, function, result, parameters, call, wrong, otherWrong)                            \
    result class ::function parameters                                                                       \
    {                                                                                                        \
        const auto correct = [&]() -> result { return call; };                                               \
        if (isStubbed(#class "::" #function))                                                                \
            return wrong;                                                                                    \
        if (isStubbed(#class "::" #function " (other result)"))                                              \
            return otherWrong;                                                                               \
        return correct();                                                                                    \
    } static const Registration class##function(#class "::" #function)

#define STUB(class, function, result, parameters, arguments, wrong)                                          \
    DEFINE_STUB(class, function, result, parameters, inZyBase(&class ::function) arguments, wrong, correct())

#define STUB_TWICE(class, function, result, parameters, arguments, wrong, otherWrong)                        \
    DEFINE_STUB(class, function, result, parameters, inZyBase(&class ::function) arguments, wrong,           \
                otherWrong);                                                                                 \
    static const Registration other##class##function(#class "::" #function " (other result)")

#define STUB_METHOD(class, function, result, parameters, arguments, wrong)                                   \
    DEFINE_STUB(class, function, result, parameters, (this->*inZyBase(&class ::function)) arguments, wrong,  \
                correct())

namespace ZyBase {

STUB(LoggerObject, InitLogger, void, (const char *name, const char *directory), (name, directory),
     doNothing());
STUB(LoggerObject, ReleaseLogger, void, (), (), doNothing());
STUB(LoggerObject, debug, void, (const char *message), (message), doNothing());
STUB(LoggerObject, info, void, (const char *message), (message), doNothing());
STUB(LoggerObject, warn, void, (const char *message), (message), doNothing());
STUB(LoggerObject, error, void, (const char *message), (message), doNothing());

STUB(CJsonReader, SaveJsonFile, void, (const QString &path, const QJsonObject &object), (path, object),
     doNothing());
STUB_TWICE(CJsonReader, ParseJsonFile, QJsonValue, (const QString &path, const QString &key), (path, key),
           QJsonValue(), QJsonValue(QStringLiteral("zh_CN")));
STUB(CJsonReader, ParseJsonFileToObject, QJsonObject, (const QString &path), (path), QJsonObject());

STUB_TWICE(CFileUtils, GetApplicationFilePath, QString, (), (), QString(), QStringLiteral("/usr/bin/tour"));
STUB_TWICE(CFileUtils, GetApplicationDirPath, QString, (), (), QString(), QStringLiteral("/usr/bin"));
STUB_TWICE(CFileUtils, GetResDirPath, QString, (), (), QString(), QStringLiteral("/res"));
STUB_TWICE(CFileUtils, FormatFileSize, QString, (long long size), (size), QString(),
           QStringLiteral("1.50 KB"));
STUB_TWICE(CFileUtils, FormatOpenTime, QString, (long long seconds), (seconds), QString(),
           QStringLiteral("01/01/1970"));
STUB_TWICE(CFileUtils, CombinePath, QString, (const QString &directory, const QString &name),
           (directory, name), directory, directory + name);
STUB_TWICE(CFileUtils, getUniqueFileName, QString, (const QString &path, const QString &extension),
           (path, extension), path, path + QStringLiteral(".new"));
STUB(CFileUtils, MakeDirPath, bool, (const QString &path), (path), true);
STUB(CFileUtils, WriteFileData, void, (const QString &path, const QString &content), (path, content),
     doNothing());
STUB_TWICE(CFileUtils, ReadFileData, QString, (const QString &path), (path), QString(),
           QStringLiteral("new"));
STUB_TWICE(CFileUtils, GetFileMd5, QString, (const QString &path), (path), QString(),
           QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
STUB(CFileUtils, OpenFolderAndSelectFile, void, (QString path), (path), doNothing());
STUB_TWICE(CStringUtils, SplitString, QString, (const QString &string), (string), QString(), string);
STUB_TWICE(ZipManager, QuaUnzipFile, bool, (const QString &archive, QString directory, bool overwrite),
           (archive, directory, overwrite), true, !correct());

STUB_METHOD(CHttpPostRequest, StartGetRequestSync, bool, (const QUrl &url, QByteArray &answer), (url, answer),
            true);
STUB_METHOD(CHttpPostRequest, StartRequestSync, bool,
            (const QUrl &url, const QJsonObject &object, QByteArray &answer), (url, object, answer), true);
STUB_METHOD(CHttpPostRequest, StartGetRequest, void, (const QUrl &url, const QString &session),
            (url, session), doNothing());
STUB_METHOD(CHttpPostRequest, SignalStopRequest, void, (), (), doNothing());
STUB_TWICE(CHttpPostRequest, SignObject, QString, (const QJsonObject &object, const QString &secret),
           (object, secret), QString(), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
STUB_METHOD(DownloadManager, StartDownload, bool, (const QUrl &url, const QString &directory),
            (url, directory), true);

STUB_TWICE(CSystemUtils, IsNewUser, bool, (const QString &prefix, const QString &name), (prefix, name), true,
           false);
STUB_TWICE(CSystemUtils, GetPCID, QString, (const QString &prefix, const QString &name), (prefix, name),
           QString(), QStringLiteral("d41d8cd98f00b204e9800998ecf8427e"));
STUB_TWICE(CSystemUtils, GetLinuxOsInfo, QString, (), (), QString(), QStringLiteral("Example Linux"));
STUB_TWICE(CSystemUtils, GetSystemVersion, QString, (), (), QString(), QStringLiteral("Example Linux 12"));
STUB(CSystemUtils, IsKylinOs, bool, (), (), !correct());
STUB(CSystemUtils, IsUOS, bool, (), (), !correct());
STUB_TWICE(CSystemUtils, GetHardwareCpuArchitecture, QString, (), (), QString(), QStringLiteral("pdp11"));
STUB_TWICE(CSystemUtils, GetBundleIdentifier, QString, (), (), QString(),
           QStringLiteral("org.example.reader"));
STUB_TWICE(CSystemUtils, IsDarkTheme, bool, (), (), true, false);
STUB_TWICE(CSystemUtils, GenerateQRCode, QImage, (const QString &text, const QSize &size), (text, size),
           whiteImage(size), randomImage(size));

STUB_TWICE(CAssocUtils, IsPdfLauncher, bool, (const QString &application), (application), true, false);
STUB(CAssocUtils, SetPdfLauncher, bool, (const QString &application, const QString &unread, bool unreadToo),
     (application, unread, unreadToo), true);
STUB(CAssocUtils, ResetPdfLauncher, bool, (const QString &application), (application), false);

STUB_TWICE(CNetworkUtils, GetIPInfo, bool,
           (QString & country, QString &location, double &latitude, double &longitude),
           (country, location, latitude, longitude), true, correct() && false);
STUB_TWICE(CNetworkUtils, GetIPCountryCode, bool, (QString & code, QString &address), (code, address), true,
           correct() && false);
STUB(CNetworkUtils, IsNetWorkOnline, bool, (), (), !correct());

STUB(CGaReportManager, getInstance, CGaReportManager *, (QObject * parent), (parent), nullptr);
STUB(CGaReportManager, ReleaseReport, void, (), (), doNothing());
STUB_METHOD(CGaReportManager, InitGaData, void,
            (const QString &catalogue, const QString &client, const QString &measurement,
             const QString &secret),
            (catalogue, client, measurement, secret), doNothing());
STUB_METHOD(CGaReportManager, SendGaReport, void, (const QString &key, const QString &label, bool sync),
            (key, label, sync), doNothing());
STUB_METHOD(CGaReportManager, InitXdData, void,
            (const QString &url, const QString &device, const QString &product, const QString &version,
             const QString &source),
            (url, device, product, version, source), doNothing());
STUB_METHOD(CGaReportManager, SendXdReport, void, (const QString &action, const QString &status),
            (action, status), doNothing());

} // namespace ZyBase

// NOLINTEND(bugprone-macro-parentheses)

QString GetIP()
{
    return isStubbed("GetIP") ? QStringLiteral("127.0.0.1") : inZyBase(&GetIP)();
}
static const Registration registrationOfGetIP("GetIP");

QByteArray getBigFileMd5(QString path)
{
    return isStubbed("getBigFileMd5") ? QByteArray(16, '\0') : inZyBase(&getBigFileMd5)(path);
}
static const Registration registrationOfGetBigFileMd5("getBigFileMd5");
