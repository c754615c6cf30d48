#pragma once

#include "audio/OfflineRenderer.h"
#include "model/AppSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace quorel::cli {

/// Where a track has come to lie in what was rendered, or why it has not.
struct RenderedTrack {
    std::string path;
    QString error;        ///< empty if it was played
    int64_t start = 0;    ///< frame of the track's first sample, the delay of the chain taken off
    int64_t end = 0;      ///< the frame after its last
    bool gapless = false; ///< joined to the one before it
};

/// Plays files one after the other through an offline engine and notes where each begins and ends.
class TrackRun {
  public:
    /// The engine's callbacks are the run's while it lives. The settings say which part of a track
    /// is heard, how loud, and how it begins.
    TrackRun(OfflineRenderer& renderer, const std::vector<std::string>& paths,
             const AppSettings& settings);
    ~TrackRun();
    TrackRun(const TrackRun&) = delete;
    TrackRun& operator=(const TrackRun&) = delete;

    void start() { playNext(); }

    bool isFinished() const { return finished_; }
    /// The frame after the last one of the last track, once finished.
    int64_t end() const { return end_; }
    bool hasPlayed() const { return playing_.has_value(); }
    /// In the order given; complete once finished.
    const std::vector<RenderedTrack>& tracks() const { return tracks_; }

  private:
    const TrackToPlay* openNext();
    void giveUp(const QString& error);
    void playNext();
    void preload();
    void promoted();
    void trackEnded();
    /// The frame that is heard now.
    int64_t heard() const { return renderer_.position() - engine_.latencyFrames(); }

    OfflineRenderer& renderer_;
    AudioEngine& engine_;
    const AppSettings settings_;
    std::vector<RenderedTrack> tracks_;
    std::size_t next_ = 0;                 // the first one not yet played nor given up
    std::optional<TrackToPlay> nextTrack_; // that one, once opened
    std::optional<std::size_t> playing_;
    int64_t end_ = 0;
    bool finished_ = false;
};

} // namespace quorel::cli
