#pragma once

#include "audio/analysis/TrackAnalysis.h"
#include "core/SerialQueue.h"
#include "model/AppSettings.h"
#include "model/Track.h"

#include <functional>
#include <vector>

namespace quorel {

/// Measures tracks in the background: the playing one and the one that follows, as far as the
/// settings need it, and those whose tempo the user asks for. Main thread.
class TrackAnalyses {
  public:
    struct Task {
        QUuid track;
        QString path;
        AppSettings settings;
        bool trim = false;
        bool levels = false;
        bool bpm = false;

        bool isEmpty() const { return !trim && !levels && !bpm; }
    };

    /// What was measured; what was not, or could not be, is absent.
    struct Result {
        Task task;
        std::optional<Trim> trim;
        std::optional<Levels> levels;
        std::optional<double> bpm;
    };

    struct Events {
        std::function<void(const Result&)> measured;
        std::function<void(const Result&)> answered; ///< after that, what the user asked for
        std::function<void()> progressed;            ///< of what the user asked for
    };

    TrackAnalyses(SerialQueue& queue, Events events)
        : queue_(queue)
        , events_(std::move(events)) {}

    /// What is still to be known of a track; its tempo only where `withTempo`.
    static Task missing(const Track& track, const AppSettings& settings, bool withTempo);

    /// These instead of those before them, which are given up unless they are among them.
    void measure(std::vector<Task> tasks);
    /// The user's wish; goes on whatever plays.
    void measureTempo(const Track& track, const AppSettings& settings);
    /// Gives up what the user asked for.
    void cancelAsked();
    std::size_t asked() const { return asked_.size(); }

  private:
    struct Running {
        Task task;
        std::stop_source stop;
    };

    Running post(const Task& task);
    void ended(const Result& result);

    SerialQueue& queue_;
    const Events events_;
    std::vector<Running> automatic_;
    std::vector<Running> asked_;
};

} // namespace quorel
