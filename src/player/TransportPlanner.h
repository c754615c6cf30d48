#pragma once

#include "model/Enumerations.h"
#include "player/ShuffleOrder.h"

namespace quorel {

/// What a decision about the transport depends on.
struct TransportContext {
    PlaybackMode mode = PlaybackMode::Normal;
    bool shuffle = false;
    const TrackList* list = nullptr;  ///< the playlist that plays, else the shown one
    std::optional<QUuid> cursor = {}; ///< the track playing, or that was tried last
    std::optional<QUuid> planned = {};
    std::optional<qsizetype> orphanNext = {}; ///< row that follows a cursor gone from the list
    const ShuffleOrder& order;
    const IdSet& failed; ///< tracks that could not be played since one last did
};

struct TransportStep {
    enum class Action { Nothing, Stop, Play, SeekToStart };
    /// What becomes of the shuffle order: ShuffleOrder::take() or goBack() with the track.
    enum class Order { Stays, Takes, GoesBack };

    Action action = Action::Nothing;
    QUuid track = {}; ///< to be played
    Order order = Order::Stays;

    bool operator==(const TransportStep&) const = default;
};

/// The step after a track ended by itself or failed (`automatic`), or at the user's wish. After a
/// failure the failed track is the cursor and among the failed ones; no step leads to one of those,
/// so that a list without a playable track comes to a stop.
TransportStep planNext(const TransportContext& context, bool automatic);

/// The step back at the user's wish; `position` is that of the playing track in seconds.
TransportStep planPrevious(const TransportContext& context, double position);

/// The track to prepare because it will follow by itself, if any.
std::optional<QUuid> planFollowing(TransportContext context);

/// The play button: `selected` is a selected track of the shown list, `isLoaded` whether a track
/// plays or pauses. Nothing where play and pause are to be toggled or the list is empty.
std::optional<QUuid> planPlayButton(const TrackList& shown, const std::optional<QUuid>& selected,
                                    const std::optional<QUuid>& playing, bool isLoaded);

} // namespace quorel
