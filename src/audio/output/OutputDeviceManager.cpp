#include "audio/output/OutputDeviceManager.h"

#include <algorithm>

namespace quorel {

QList<OutputDevice> OutputDeviceManager::listOutputDevices(const Output& output) {
    return output.devices();
}

std::optional<uint32_t> OutputDeviceManager::deviceID(const Output& output, const QString& forUID) {
    const QList<OutputDevice> devices = output.devices();
    const auto found = std::ranges::find(devices, forUID, &OutputDevice::uid);
    return found == devices.end() ? std::nullopt : std::optional(found->id);
}

} // namespace quorel
