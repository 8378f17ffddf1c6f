// A session bus of a test's own, on which nobody answers but the test.
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QObject>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

namespace murkwell {

// The session bus of this process from then on. To be set up before anything connects to it.
class PrivateBus final : public testing::Environment {
public:
    void SetUp() override {
        // Unlike the usual session bus, it starts no services of the machine.
        const auto configuration = folder.write("bus.conf", R"(
            <busconfig>
              <type>session</type>
              <listen>unix:tmpdir=/tmp</listen>
              <policy context="default">
                <allow send_destination="*" eavesdrop="true"/>
                <allow eavesdrop="true"/>
                <allow own="*"/>
              </policy>
            </busconfig>)");
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--config-file=") + configuration.c_str(),
                      QStringLiteral("--nofork"), QStringLiteral("--print-address=1")});
        ASSERT_TRUE(daemon.waitForReadyRead()) << "dbus-daemon did not start";
        qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());
        ASSERT_TRUE(QDBusConnection::sessionBus().isConnected());
    }

    void TearDown() override {
        daemon.terminate();
        daemon.waitForFinished();
    }

private:
    TemporaryFolder folder;
    QProcess daemon;
};

// Offers an object on the bus as another program would: over a connection and from a thread of its
// own, so that it answers while the test's thread waits.
class OtherProgram {
public:
    // Takes the object. It answers under the name until this goes.
    OtherProgram(const QString& name, const QString& path, QObject* object) : connectionName(name) {
        const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
        auto bus = QDBusConnection::connectToBus(address, connectionName);
        EXPECT_TRUE(bus.registerObject(path, object, QDBusConnection::ExportAllContents));
        object->moveToThread(&thread);
        QObject::connect(&thread, &QThread::finished, object, &QObject::deleteLater);
        EXPECT_TRUE(bus.registerService(name));
        thread.start();
    }
    // Returns when the test's own connection knows that the name has gone.
    ~OtherProgram() {
        QDBusConnection(connectionName).unregisterService(connectionName);
        QDBusConnection::disconnectFromBus(connectionName);
        QDBusConnection::sessionBus().interface()->isServiceRegistered(connectionName);
        QCoreApplication::processEvents();
        thread.quit();
        thread.wait();
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

private:
    QString connectionName;
    QThread thread;
};

} // namespace murkwell
