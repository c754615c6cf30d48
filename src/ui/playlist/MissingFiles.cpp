#include "ui/playlist/MissingFiles.h"

#include "model/Path.h"

#include <unistd.h>

namespace quorel {

namespace {

// A fast scroll asks about many rows that are gone again at once.
constexpr std::chrono::milliseconds kDelay(80);
constexpr qsizetype kMostWaiting = 400;
constexpr qsizetype kMostKnown = 20'000;

QHash<QString, bool> lookFor(const QStringList& paths, const std::stop_token& stop) {
    QHash<QString, bool> missing;
    for (const QString& path : paths) {
        if (stop.stop_requested())
            break;
        missing.insert(path, access(pathToBytes(path).constData(), F_OK) != 0);
    }
    return missing;
}

} // namespace

MissingFiles::MissingFiles(Clock& clock, SerialQueue::Mode mode, QObject* parent)
    : QObject(parent)
    , clock_(clock)
    , queue_(mode, clock, "missing-files") {}

bool MissingFiles::isMissing(const QString& path) {
    Answer& answer = known_[path];
    if (answer.round != round_) {
        answer.round = round_;
        waiting_ += path;
        if (!soon_)
            soon_ = clock_.startTimer(kDelay, Clock::Repeat::Once, [this] { lookForWaiting(); });
    }
    return answer.missing;
}

void MissingFiles::forget() {
    ++round_;
}

void MissingFiles::lookForWaiting() {
    soon_.reset();
    if (known_.size() > kMostKnown)
        known_.clear();
    // The newest are those that are seen now; the others are asked about again.
    while (waiting_.size() > kMostWaiting)
        known_.remove(waiting_.takeFirst());
    queue_.post(
        SerialQueue::Priority::Ordinary,
        [paths = std::exchange(waiting_, {})](const std::stop_token& stop) {
            return lookFor(paths, stop);
        },
        [this, round = round_](const QHash<QString, bool>& found) { learn(found, round); });
}

void MissingFiles::learn(const QHash<QString, bool>& found, int round) {
    bool differs = false;
    for (auto file = found.begin(); file != found.end(); ++file) {
        Answer& answer = known_[file.key()];
        differs |= answer.missing != file.value();
        answer = {file.value(), std::max(answer.round, round)};
    }
    if (differs)
        Q_EMIT changed();
}

} // namespace quorel
