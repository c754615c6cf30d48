#pragma once

#include "audio/AudioEngine.h"
#include "tools/quorel-cli/FileOpener.h"
#include "tools/quorel-cli/PlayView.h"

#include <set>
#include <vector>

namespace quorel::cli {

/// Plays a list of files aloud, from its first to its last. Main thread; nothing waits.
class PlaySession {
  public:
    /// `finished` is called once with whether anything was played: when the last track has been
    /// heard, or when none can be played.
    PlaySession(Clock& clock, std::unique_ptr<Output> output, std::vector<std::string> paths,
                PlayView& view, std::function<void(bool played)> finished);

    /// Opens the device with that UID, or the default when it is empty, and plays the first file.
    void start(const QString& uid);

    void togglePause();
    void next();
    /// Back to the beginning of the track, or near it to the track before.
    void previous();
    void seekBy(double seconds);

  private:
    struct Prepared {
        int index = 0;
        std::shared_ptr<AudioFile> file; // null while it is being opened
    };

    std::optional<int> playableFrom(int index, int step) const;
    void want(std::optional<int> index, int step);
    void prepare(int index);
    void opened(int index, const OpenedTrack& track);
    void giveUp(int index, const QString& error);
    void begin();
    void announce();

    void preload();
    void queuePrepared();
    void promoted();
    void trackEnded();
    void showNotice();
    void checkDevice(const QString& uid);
    void show();

    const std::vector<std::string> paths_;
    PlayView& view_;
    const std::function<void(bool)> finished_;
    AudioEngine engine_;

    int current_ = -1;          // the track that is loaded, once one is
    bool ended_ = true;         // nothing is being played to its end
    bool paused_ = false;       // by the listener
    bool played_ = false;       // something was
    std::optional<int> wanted_; // to be played as soon as it is open
    int step_ = 1;              // where to look for another if the wanted one cannot be played
    std::optional<int> queued_; // with the engine
    std::optional<Prepared> prepared_;
    std::set<int> unplayable_;

    QString toldNotice_;
    bool deviceChecked_ = false;
    FileOpener opener_; // last: what it brings must find the rest in place
};

} // namespace quorel::cli
