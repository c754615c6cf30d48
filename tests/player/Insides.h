#pragma once

#include "player/PlayerCore.h"

namespace quorel {

/// What tests reach into the controller for.
struct PlayerControllerInsides {
    /// With pumped queues: carries out a task of each; false where none waits.
    static bool pumpQueues(PlayerController& player) {
        PlayerController::Core& core = *player.core_;
        bool worked = false;
        for (SerialQueue* queue : {&core.files, &core.collecting, &core.analysis, &core.writer})
            worked |= queue->pump();
        return worked;
    }
    static const ShuffleOrder& shuffleOrder(const PlayerController& player) {
        return player.core_->playback.shuffleOrder();
    }
};

} // namespace quorel
