// quorel-cli devices: where sound can be sent.
#include "audio/output/OutputDeviceManager.h"
#include "audio/output/PulseOutput.h"
#include "core/QtClock.h"
#include "tools/quorel-cli/CommandLine.h"
#include "tools/quorel-cli/Console.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorel::cli {

namespace {

using namespace std::chrono_literals;

constexpr auto kAnswerTime = 1s;
constexpr Option kOptions[] = {{"--json", {}, "one JSON object a line: number, uid, name"}};

/// Waits for nothing but the list of devices.
class DeviceListener final : public RenderClient, public OutputListener {
  public:
    void render(float*, int) noexcept override {}
    void outputOpened(uint64_t, const rt::Format&) override {}
    void outputLost(const QString&) override {}
    void outputStalled(bool) override {}
    void outputUnderflowed(int) override {}
    void outputDevicesChanged() override { QCoreApplication::exit(kSuccess); }
};

void print(const OutputDevice& device, bool asJson) {
    if (asJson) {
        const QJsonObject object{{QStringLiteral("number"), static_cast<qint64>(device.id)},
                                 {QStringLiteral("uid"), device.uid},
                                 {QStringLiteral("name"), device.name}};
        printLine(QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString());
    } else {
        const QString number = QString::number(device.id);
        printLine((number + u'\t' + device.uid + u'\t' + device.name).toStdString());
    }
}

int run(const Arguments& arguments) {
    int count = 1;
    char name[] = "quorel-cli";
    char* words[] = {name, nullptr};
    const QCoreApplication application(count, words);

    QtClock clock;
    DeviceListener listener;
    PulseOutput output(clock);
    output.attach(listener, listener);
    const auto timeout = clock.startTimer(kAnswerTime, Clock::Repeat::Once,
                                          [] { QCoreApplication::exit(kFailure); });
    if (QCoreApplication::exec() != kSuccess) {
        return fail(QStringLiteral("no sound server answers"));
    }
    for (const OutputDevice& device : OutputDeviceManager::listOutputDevices(output)) {
        print(device, arguments.has("--json"));
    }
    return kSuccess;
}

} // namespace

const Command kDevicesCommand = {
    "devices",
    {},
    "Lists the devices that sound can be sent to: number, UID and name, a line each.",
    "The number holds until the device goes; --output of quorel-cli play takes the UID.",
    kOptions,
    run};

} // namespace quorel::cli
