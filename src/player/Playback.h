#pragma once

#include "audio/PlayerEngine.h"
#include "core/SerialQueue.h"
#include "player/PlaylistTabs.h"
#include "player/ShuffleOrder.h"
#include "player/TrackOpener.h"
#include "player/TransportPlanner.h"

#include <memory>

namespace quorel {

/// What plays, what follows, and the engine's transport. Files are opened on a queue; of several
/// requests the newest wins, and the track before it goes on until its file is open. Main thread.
class Playback {
  public:
    /// What it is built upon, and reads at any time.
    struct Surroundings {
        Clock& clock;
        SerialQueue& files;
        PlayerEngine& engine;
        const PlaylistTabs& tabs;
        const AppSettings& settings;
    };

    /// Called last of all, when everything else is as it will be.
    struct Events {
        std::function<void()> changed;      ///< playing, paused, stopped or what may follow
        std::function<void()> trackStarted; ///< another track plays, or the same one again
        std::function<void()> jumped;       ///< the position went elsewhere in the track
        /// Runs what the clock or a queue has brought on; all it changes is told of at its end.
        std::function<void(const std::function<void()>&)> asOne;
    };

    Playback(Surroundings surroundings, TrackOpener open, ShuffleOrder::Random random,
             Events events);

    const std::optional<QUuid>& playingTrack() const { return playingTrack_; }
    const std::optional<QUuid>& playingPlaylist() const { return playingPlaylist_; }
    const std::optional<QUuid>& plannedNext() const { return plannedNext_; }
    const ShuffleOrder& shuffleOrder() const { return order_; }
    /// Sounds, or goes on in a moment.
    bool isPlaying() const { return isPlaying_; }
    /// A track is on its way to being played.
    bool isChanging() const { return change_.has_value(); }
    bool canPlayNext() const;
    bool canPlayPrevious() const;
    /// The track that will follow by itself, if any.
    std::optional<QUuid> following() const;

    // --- The user's ------------------------------------------------------------------------------

    void play(const QUuid& track, const QUuid& playlist);
    /// Begins paused-free at a position, without the track's head; what cannot be opened is let be.
    void playFrom(const QUuid& track, const QUuid& playlist, double position);
    void pause();
    void resume();
    void stop();
    void next();
    void previous();
    void seek(double time);

    // --- The engine's ----------------------------------------------------------------------------

    void trackEnded();
    void gaplessPromotion(const QUuid& track);
    /// To be called as often as one likes: opens and queues the track that follows.
    void preloadNextIfPossible();
    void queueDiscarded();

    // --- The library's ---------------------------------------------------------------------------

    /// Of the track that plays or played last, in its playlist; to be asked before an edit.
    std::optional<qsizetype> cursorRow() const;
    /// An edit of a playlist; `cursorRow` is what it was before.
    void edited(const TrackList& list, const TracksEdit& edit, std::optional<qsizetype> cursorRow);
    void tracksAdded(const std::vector<QUuid>& tracks, const QUuid& playlist);
    /// The playlist is about to be closed or emptied.
    void aboutToEmpty(const QUuid& playlist);
    void aboutToClose(const QUuid& playlist);

    // --- The settings' ---------------------------------------------------------------------------

    /// Mode, shuffle or joining have changed.
    void replan();
    /// What is known of the tracks' trimming, too.
    void replanTrims();
    /// Draws a new order that starts with the playing track.
    void reshuffle();

  private:
    /// A track on its way to being played.
    struct Change {
        QUuid track;
        QUuid playlist;
        double startAt = 0;
        bool onlyThis = false; ///< nothing else is tried where it cannot be played
        bool paused = false;   ///< it shall be paused once it is there
        std::optional<OpenedTrack> opened = {};
        std::stop_source opening = std::stop_source(std::nostopstate);
    };
    /// A track opened ahead because it will follow.
    struct Prepared {
        QUuid track;
        std::optional<OpenedTrack> opened = {};
        std::stop_source opening = std::stop_source(std::nostopstate);
    };

    TransportContext context(const TrackList* list) const;
    const TrackList* listToGoOnIn() const;
    void carryOut(const TransportStep& step, const TrackList& list, bool byUser);
    void begin(Change change, bool byUser, Clock::Duration wait);
    void openChange();
    void finishChange();
    void failed(const Change& change);
    void abandonChange();
    void dropChange();
    void prepare(const Track& track);
    void dropPrepared();
    void queue(const Track& track, const TrackList& list);
    void forgetQueued();
    void stopNow();
    TrackToOpen toOpen(const Track& track, TrackToOpen::Trim unknown) const;
    TrackToPlay toPlay(const Track& track, const TrackList& list, const OpenedTrack& opened) const;

    Surroundings at_;
    const TrackOpener open_;
    const Events events_;

    std::optional<QUuid> playingTrack_;
    std::optional<QUuid> playingPlaylist_;
    bool isPlaying_ = false;
    std::optional<QUuid> cursor_; ///< playing, on its way, or tried or played last
    std::optional<QUuid> plannedNext_;
    std::optional<qsizetype> orphanNextIndex_; ///< row that follows a cursor gone from its list
    ShuffleOrder order_;
    IdSet failed_; ///< could not be played since a track last started

    std::optional<Change> change_;
    Clock::Duration notBefore_{0}; ///< the fade before a change ends
    std::unique_ptr<Timer> changeTimer_;

    std::optional<Prepared> prepared_;
    std::optional<QUuid> queued_;
    std::optional<QUuid> refused_; ///< cannot follow the playing track without a gap
};

} // namespace quorel
