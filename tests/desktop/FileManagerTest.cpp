#include "desktop/FileManager.h"

#include "desktop/SessionBus.h"
#include "model/Path.h"

using namespace quorel;
using namespace quorel::test;

namespace {

class Manager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

  public:
    QStringList shown;

  public Q_SLOTS: // NOLINT(readability-redundant-access-specifiers)
    // NOLINTNEXTLINE(readability-identifier-naming): as it is called on the bus
    void ShowItems(const QStringList& uris, const QString&) { shown += uris; }
};

} // namespace

TEST(FileManager, ShowsTheFileWhereThereIsOne) {
    const SessionBus bus;
    int others = 0;
    const auto show = [&] {
        showInFileManager(
            pathFromBytes("/caf\xe9 1.mp3"), [&] { ++others; }, bus.client);
    };
    show();
    EXPECT_TRUE(spinUntil([&] { return others == 1; })) << "nobody answers";

    QDBusConnection connection = bus.connection("manager");
    Manager manager;
    connection.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                              QDBusConnection::ExportAllSlots);
    connection.registerService(QStringLiteral("org.freedesktop.FileManager1"));
    show();
    EXPECT_TRUE(spinUntil([&] { return !manager.shown.isEmpty(); }));
    EXPECT_EQ(manager.shown, QStringList(QStringLiteral("file:///caf%E9%201.mp3")));
    EXPECT_EQ(others, 1);
}

#include "FileManagerTest.moc"
