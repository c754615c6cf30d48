#include "desktop/SuspendInhibition.h"

#include "desktop/SessionBus.h"
#include "player/ControllerFixture.h"

using namespace quorel;
using namespace quorel::test;

namespace {

// NOLINTBEGIN(readability-identifier-naming): the names of the desktops' methods

/// What the desktops offer, both in one.
class Desktop : public QObject {
    Q_OBJECT

  public:
    std::string said;

  protected:
    quint32 note(const std::string& what) {
        said += what;
        return 40;
    }
    void note(const char* what, quint32 cookie) { said += what + std::to_string(cookie) + ' '; }
};

class PowerManagement : public Desktop {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PowerManagement.Inhibit")

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    quint32 Inhibit(const QString& program, const QString&) {
        return note(program.toStdString() + " power ");
    }
    void UnInhibit(quint32 cookie) { note("free", cookie); }
};

class SessionManager : public Desktop {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager")

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    quint32 Inhibit(const QString& program, quint32 window, const QString&, quint32 flags) {
        return note(program.toStdString() + " session " + std::to_string(window) + ' ' +
                    std::to_string(flags) + ' ');
    }
    void Uninhibit(quint32 cookie) { note("free", cookie); }
};

// NOLINTEND(readability-identifier-naming)

class SuspendInhibitionTest : public ControllerTest {
  protected:
    /// Waits until all that was sent before has been heard.
    void hear() {
        for (int i = 0; i < 3; ++i) { // an answer may make it ask another
            SessionBus::ping(player);
            QCoreApplication::processEvents(); // answers are there before they are told
        }
    }

    SessionBus bus;
    QDBusConnection player = bus.connection("player");
    SuspendInhibition inhibition{launch()};
};

} // namespace

TEST_F(SuspendInhibitionTest, isHeldWhileMusicPlays) {
    struct Case {
        std::unique_ptr<Desktop> desktop;
        const char* name;
        const char* path;
        std::string asked;
    };
    Case cases[] = {
        {std::make_unique<PowerManagement>(), "org.freedesktop.PowerManagement",
         "/org/freedesktop/PowerManagement/Inhibit", "Quorel power "},
        {std::make_unique<SessionManager>(), "org.gnome.SessionManager",
         "/org/gnome/SessionManager", "Quorel session 0 4 "},
    };
    inhibition.start(player);
    play('A'); // with nobody there
    hear();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        controller->stop();
        advance(1);
        QDBusConnection own = bus.connection(c.name);
        ASSERT_TRUE(own.registerObject(QLatin1String(c.path), c.desktop.get(),
                                       QDBusConnection::ExportAllSlots));
        ASSERT_TRUE(own.registerService(QLatin1String(c.name)));
        const auto heard = [&](const std::string& text) {
            return spinUntil([&] { return c.desktop->said == text; });
        };
        std::string expected = c.asked;
        play('A');
        EXPECT_TRUE(heard(expected)) << c.desktop->said;
        hear();
        controller->nextTrack();
        advance(1);
        controller->pause();
        advance(1);
        expected += "free40 ";
        EXPECT_TRUE(heard(expected)) << c.desktop->said;
        controller->playPause();
        controller->pause(); // before the answer
        advance(1);
        expected += c.asked + "free40 ";
        EXPECT_TRUE(heard(expected)) << c.desktop->said;
        hear();
        EXPECT_EQ(c.desktop->said, expected);
        own.unregisterService(QLatin1String(c.name));
    }
}

#include "SuspendInhibitionTest.moc"
