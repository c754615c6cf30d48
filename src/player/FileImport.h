#pragma once

#include "core/SerialQueue.h"
#include "model/Track.h"

#include <QStringList>
#include <deque>

namespace quorel {

/// Where collected files go.
struct ImportTarget {
    enum class Kind {
        Playlist,    ///< to the end of it
        Gap,         ///< into it, before a row
        NewPlaylist, ///< named after a folder that came alone
    };

    Kind kind = Kind::Playlist;
    QUuid playlist = {};    ///< null: the one that is active when they were asked for
    qsizetype row = 0;      ///< of the gap
    bool playFirst = false; ///< the first of them is played
};

/// Collects files in the background, one request after the other, so that what was asked for first
/// lands first. Main thread.
class FileImport {
  public:
    struct Found {
        ImportTarget target;
        QList<Track> tracks;
        QString folderName;        ///< of the folder that came alone, else empty
        QList<Playlist> playlists; ///< of the playlist files among what was named
    };

    struct Events {
        std::function<void(Found)> found;
        std::function<void()> progressed;
    };

    /// Says what to collect from; called once, on the queue.
    using Paths = std::function<QStringList()>;

    FileImport(SerialQueue& queue, Clock& clock, Events events)
        : queue_(queue)
        , clock_(clock)
        , events_(std::move(events)) {}

    void request(Paths paths, ImportTarget target);
    /// Drops what is under way and what waits.
    void cancel();

    bool isRunning() const { return !requests_.empty(); }
    /// Files found so far by the requests under way.
    qsizetype foundSoFar() const { return foundSoFar_; }

  private:
    void ended(Found found);

    SerialQueue& queue_;
    Clock& clock_;
    const Events events_;
    std::deque<std::stop_source> requests_;
    qsizetype foundSoFar_ = 0;
    const std::shared_ptr<void> alive_ = std::make_shared<char>();
};

} // namespace quorel
