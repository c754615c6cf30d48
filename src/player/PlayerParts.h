#pragma once

#include "audio/PlayerEngine.h"
#include "core/SerialQueue.h"
#include "player/TrackOpener.h"
#include "storage/Persistence.h"

#include <future>

namespace quorel {

/// What a PlayerController is built upon; the clock outlives it.
struct PlayerParts {
    Clock& clock;
    std::unique_ptr<PlayerEngine> engine;
    QString stateFile; ///< where Persistence keeps it; a mark may stand beside it
    SerialQueue::Mode queues = SerialQueue::Mode::Threaded;
    TrackOpener open = openTrack;
    std::function<quint64()> random = {}; ///< the system's where it is empty
    /// Takes the place of the settings' output device where it is there.
    std::optional<QString> output = {};
    /// The loading of the state file, where another thread has begun it.
    std::future<LoadedState> loading = {};
};

} // namespace quorel
