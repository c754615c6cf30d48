#include "desktop/AnimationSetting.h"

#include "desktop/SessionBus.h"

using namespace quorel;
using namespace quorel::test;

namespace {

/// As the portal of a desktop with that setting.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

  public:
    QVariant value;
    int asked = 0;

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    QDBusVariant Read(const QString& space, const QString& key) { // NOLINT(*-naming)
        EXPECT_EQ((space + u' ' + key).toStdString(),
                  "org.gnome.desktop.interface enable-animations");
        ++asked;
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
    }
};

} // namespace

TEST(AnimationSetting, OnlyTellsThatTheyAreOff) {
    const SessionBus bus;
    QDBusConnection desktop = bus.connection("desktop");
    Portal portal;
    QObject context;
    int told = 0;
    const auto ask = [&] {
        askForAnimations(
            &context, [&told] { ++told; }, bus.client);
    };
    ask(); // no one answers, which the bus has said when it answers what comes after
    SessionBus::ping(bus.client);
    desktop.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), &portal,
                           QDBusConnection::ExportAllSlots);
    ASSERT_TRUE(desktop.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    int asked = 0;
    for (const QVariant& value :
         {QVariant(true), QVariant(QStringLiteral("no")), QVariant(false)}) {
        portal.value = value;
        ask();
        EXPECT_TRUE(spinUntil([&] { return portal.asked > asked; }));
        asked = portal.asked;
    }
    EXPECT_TRUE(spinUntil([&] { return told > 0; }));
    EXPECT_EQ(told, 1);
}

#include "AnimationSettingTest.moc"
