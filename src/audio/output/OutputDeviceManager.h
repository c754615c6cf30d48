#pragma once

#include "audio/output/Output.h"

#include <optional>

namespace quorel {

/// Looks devices up among those that an output knows. Main thread; never waits.
struct OutputDeviceManager {
    /// In the system's order, without inputs and stand-ins; empty while nothing is known.
    static QList<OutputDevice> listOutputDevices(const Output& output);

    /// The present number of the device with exactly that UID; absent when there is none.
    static std::optional<uint32_t> deviceID(const Output& output, const QString& forUID);
};

} // namespace quorel
