// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/COperateSystem.h>

#include <QNetworkInterface>
#include <QSharedData>
#include <QTest>

#include <cstring>
#include <memory>
#include <vector>

namespace {

using Flags = QNetworkInterface::InterfaceFlags;

struct Interface
{
    Flags flags;
    const char *address;
};

// The data of a QNetworkInterface here, instead of Qt's own.
struct Payload : QSharedData
{
    Interface interface;
};

QList<Interface> machine;

const Payload *payloadOf(const QNetworkInterface *interface)
{
    static_assert(sizeof(QNetworkInterface) == sizeof(void *), "one pointer to shared data");
    const Payload *payload = nullptr;
    std::memcpy(&payload, interface, sizeof(payload));
    return payload;
}

QNetworkInterface createInterface(const Interface &interface)
{
    // Never released: the reference count does not reach zero.
    static std::vector<std::unique_ptr<Payload>> payloads;
    payloads.push_back(std::make_unique<Payload>());
    Payload *const payload = payloads.back().get();
    payload->interface = interface;
    payload->ref.ref();
    payload->ref.ref();
    QNetworkInterface result;
    std::memcpy(static_cast<void *>(&result), &payload, sizeof(payload));
    return result;
}

} // namespace

// Called instead of Qt's functions, because symbols of the program come first. The machine has the interfaces
// that the test sets.
#define REPLACES_QTS __attribute__((visibility("default")))

REPLACES_QTS QList<QNetworkInterface> QNetworkInterface::allInterfaces()
{
    QList<QNetworkInterface> interfaces;
    for (const Interface &interface : qAsConst(machine))
        interfaces << createInterface(interface);
    return interfaces;
}

REPLACES_QTS QNetworkInterface::InterfaceFlags QNetworkInterface::flags() const
{
    return payloadOf(this)->interface.flags;
}

REPLACES_QTS QString QNetworkInterface::hardwareAddress() const
{
    return QString::fromLatin1(payloadOf(this)->interface.address);
}

Q_DECLARE_METATYPE(QList<Interface>)

class TestMainMacAddress : public QObject
{
    Q_OBJECT

private:
    static constexpr auto up = QNetworkInterface::IsUp;
    static constexpr auto running = QNetworkInterface::IsRunning;
    static constexpr auto loopback = QNetworkInterface::IsLoopBack;
    static constexpr auto pointToPoint = QNetworkInterface::IsPointToPoint;

private Q_SLOTS:
    void returnsFirstInterfaceThatQualifies_data()
    {
        QTest::addColumn<QList<Interface>>("interfaces");
        QTest::addColumn<QString>("expected");
        using Interfaces = QList<Interface>;
        const char *const a = "52:54:00:00:00:0A";
        const char *const b = "02:00:00:00:00:0B";
        const char *const zeros = "00:00:00:00:00:00";
        const Flags all = up | running | QNetworkInterface::CanBroadcast | QNetworkInterface::CanMulticast;
        QTest::newRow("one interface") << Interfaces {{all, a}} << a;
        QTest::newRow("after the loopback") << Interfaces {{loopback | up | running, zeros}, {all, a}} << a;
        QTest::newRow("two: the first") << Interfaces {{all, a}, {all, b}} << a;
        QTest::newRow("two: the first, not the lowest address") << Interfaces {{all, b}, {all, a}} << b;
        QTest::newRow("running is not needed") << Interfaces {{up, a}, {all, b}} << a;
        QTest::newRow("up is enough") << Interfaces {{up, a}} << a;
        QTest::newRow("down") << Interfaces {{running, a}, {all, b}} << b;
        QTest::newRow("no flags") << Interfaces {{Flags(), a}, {all, b}} << b;
        QTest::newRow("loopback with an address") << Interfaces {{loopback | all, a}, {all, b}} << b;
        QTest::newRow("point to point with an address")
            << Interfaces {{pointToPoint | all, a}, {all, b}} << b;
        QTest::newRow("tunnel without an address") << Interfaces {{all, ""}, {all, b}} << b;
        QTest::newRow("zeros are an address") << Interfaces {{all, zeros}, {all, b}} << zeros;
        QTest::newRow("another format") << Interfaces {{all, "0A:00:00:01"}} << "0A:00:00:01";
        QTest::newRow("no interface") << Interfaces() << QString();
        QTest::newRow("loopback only") << Interfaces {{loopback | up | running, zeros}} << QString();
        QTest::newRow("no interface qualifies")
            << Interfaces {{loopback | up, a}, {pointToPoint | up, a}, {running, a}, {up, ""}} << QString();
    }
    void returnsFirstInterfaceThatQualifies()
    {
        QFETCH(QList<Interface>, interfaces);
        QFETCH(QString, expected);
        machine = interfaces;
        QCOMPARE(ZyBase::getMainMacAddress(), expected);
        QCOMPARE(ZyBase::getMainMacAddress().isNull(), expected.isNull());
    }
};

QTEST_GUILESS_MAIN(TestMainMacAddress)

#include "tst_main_mac_address.moc"
