#pragma once

#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/TestFolder.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QProcess>
#include <array>

namespace quorel::test {

/// A session bus of the test's own, and a client on it.
class SessionBus {
  public:
    SessionBus() {
        int pipe[2] = {-1, -1};
        EXPECT_EQ(::pipe(pipe), 0);
        daemon_ = ChildProcess({"dbus-daemon", "--session", "--nofork", "--print-address"},
                               folder_.path("log").toStdString(), pipe[1]);
        ::close(pipe[1]);
        std::array<char, 1000> line{};
        address_ = QByteArray(line.data(), ::read(pipe[0], line.data(), line.size())).trimmed();
        ::close(pipe[0]);
        application();
        client = connection("client");
        EXPECT_TRUE(client.isConnected());
    }

    /// A connection of its own for each name.
    QDBusConnection connection(const char* name) const {
        const QString address = QString::fromLatin1(address_);
        return QDBusConnection::connectToBus(address, QLatin1String(name) + address);
    }

    /// Waits until the bus has heard what was sent on that connection before.
    static void ping(const QDBusConnection& connection) {
        const QDBusPendingCall pending = connection.asyncCall(QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
        EXPECT_TRUE(spinUntil([&] { return pending.isFinished(); }));
    }
    /// The reply of the player; an error as an error message.
    QDBusMessage call(const QString& interface, const char* method, const QVariantList& arguments) {
        QDBusMessage message =
            QDBusMessage::createMethodCall(service, path, interface, QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusPendingCall pending = client.asyncCall(message);
        EXPECT_TRUE(spinUntil([&] { return pending.isFinished(); })) << method;
        return pending.reply();
    }
    QVariant get(const QString& interface, const char* property) {
        const QDBusMessage reply = call(properties, "Get", {interface, QLatin1String(property)});
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }
    void set(const QString& interface, const char* property, const QVariant& value) {
        call(properties, "Set",
             {interface, QLatin1String(property), QVariant::fromValue(QDBusVariant(value))});
    }

    /// What playerctl prints for these arguments.
    std::string playerctl(const char* arguments) const {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"),
                           QString::fromLatin1(address_));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral("playerctl"),
                      (QStringLiteral("-p quorel ") + QLatin1String(arguments)).split(u' '));
        EXPECT_TRUE(spinUntil([&] { return process.state() == QProcess::NotRunning; }))
            << arguments;
        return (process.readAllStandardOutput() + process.readAllStandardError())
            .trimmed()
            .toStdString();
    }

    const QString path = QStringLiteral("/org/mpris/MediaPlayer2");
    const QString root = QStringLiteral("org.mpris.MediaPlayer2");
    const QString player = QStringLiteral("org.mpris.MediaPlayer2.Player");
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    QDBusConnection client{QString()};
    QString service = QStringLiteral("org.mpris.MediaPlayer2.quorel");

  private:
    TestFolder folder_;
    ChildProcess daemon_;
    QByteArray address_;
};

} // namespace quorel::test
