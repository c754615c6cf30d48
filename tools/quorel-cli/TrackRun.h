#pragma once

#include "audio/OfflineRenderer.h"

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
    /// The engine's callbacks are the run's while it lives. Lengths of fades are milliseconds.
    TrackRun(OfflineRenderer& renderer, const std::vector<std::string>& paths, int fadeInMs);
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
    std::shared_ptr<AudioFile> openNext();
    void giveUp(const QString& error);
    void playNext();
    void preload();
    void promoted();
    void trackEnded();
    /// The frame that is heard now.
    int64_t heard() const { return renderer_.position() - engine_.latencyFrames(); }

    OfflineRenderer& renderer_;
    AudioEngine& engine_;
    const int fadeInMs_;
    std::vector<RenderedTrack> tracks_;
    std::size_t next_ = 0;                // the first one not yet played nor given up
    std::shared_ptr<AudioFile> nextFile_; // of that track, once opened
    std::optional<std::size_t> playing_;
    int64_t end_ = 0;
    bool finished_ = false;
};

} // namespace quorel::cli
