#include "player/TrackAnalyses.h"

#include "audio/PlaybackSettings.h"
#include "model/Path.h"

#include <algorithm>
#include <stop_token>

namespace quorel {

namespace {

TrackAnalyses::Result measureTrack(const TrackAnalyses::Task& task, const std::stop_token& stop) {
    TrackAnalyses::Result result{task, {}, {}, {}};
    const auto opened = AudioFile::open(pathToBytes(task.path).toStdString());
    if (!opened.file)
        return result;
    const std::stop_callback cancel(stop, [&file = *opened.file] { file.cancel(); });
    if (task.bpm)
        result.bpm = detectBPM(*opened.file);
    if (task.trim)
        result.trim = trimFor(task.settings, *opened.file);
    if (task.levels)
        result.levels = computeLevels(*opened.file);
    return result;
}

bool isSame(const TrackAnalyses::Task& a, const TrackAnalyses::Task& b) {
    return a.track == b.track && a.path == b.path && a.trim == b.trim && a.levels == b.levels &&
           a.bpm == b.bpm && a.settings.trimThresholdDb == b.settings.trimThresholdDb &&
           a.settings.trimMaxSec == b.settings.trimMaxSec;
}

} // namespace

TrackAnalyses::Task TrackAnalyses::missing(const Track& track, const AppSettings& settings,
                                           bool withTempo) {
    return {.track = track.id,
            .path = track.path,
            .settings = settings,
            .trim = settings.trimSilence && !(track.trimStart && track.trimEnd),
            .levels = settings.normalize && !(track.peakLinear && track.rmsLinear),
            .bpm = withTempo && !track.bpm};
}

void TrackAnalyses::measure(std::vector<Task> tasks) {
    std::erase_if(tasks, [](const Task& task) { return task.isEmpty(); });
    std::erase_if(automatic_, [&tasks](Running& running) {
        const auto wanted = std::ranges::find_if(
            tasks, [&running](const Task& task) { return isSame(task, running.task); });
        if (wanted == tasks.end()) {
            running.stop.request_stop();
            return true;
        }
        tasks.erase(wanted);
        return false;
    });
    for (const Task& task : tasks)
        automatic_.push_back(post(task));
}

void TrackAnalyses::measureTempo(const Track& track, const AppSettings& settings) {
    asked_.push_back(
        post({.track = track.id, .path = track.path, .settings = settings, .bpm = true}));
    events_.progressed();
}

void TrackAnalyses::cancelAsked() {
    for (Running& running : asked_)
        running.stop.request_stop();
    asked_.clear();
    events_.progressed();
}

TrackAnalyses::Running TrackAnalyses::post(const Task& task) {
    return {task, queue_.post(
                      SerialQueue::Priority::Ordinary,
                      [task](const std::stop_token& stop) { return measureTrack(task, stop); },
                      [this](const Result& result) { ended(result); })};
}

void TrackAnalyses::ended(const Result& result) {
    const auto isIt = [&result](const Running& running) {
        return isSame(running.task, result.task);
    };
    // Results come in the order of the tasks, so of two alike the first is meant.
    bool wasAsked = false;
    if (const auto found = std::ranges::find_if(automatic_, isIt); found != automatic_.end()) {
        automatic_.erase(found);
    } else if (const auto wish = std::ranges::find_if(asked_, isIt); wish != asked_.end()) {
        asked_.erase(wish);
        wasAsked = true;
    }
    events_.measured(result);
    if (wasAsked)
        events_.answered(result);
    events_.progressed();
}

} // namespace quorel
