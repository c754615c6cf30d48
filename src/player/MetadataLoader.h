#pragma once

#include "core/SerialQueue.h"
#include "player/MetadataScan.h"

namespace quorel {

/// Reads the tags of files on a queue, a few at a time so that an opening need not wait, and puts
/// them into the tracks in batches. Main thread.
class MetadataLoader {
  public:
    struct Events {
        /// Whether readings may be put into tracks now; resume() is called when they may again.
        std::function<bool()> mayApply;
        std::function<void(const MetadataScan::Applied&)> applied;
        std::function<void()> progressed;
    };

    MetadataLoader(SerialQueue& queue, PlaylistTabs& tabs, Events events)
        : queue_(queue)
        , tabs_(tabs)
        , events_(std::move(events)) {}

    /// Reads what is not known yet; while that goes on, once more after it.
    void load();
    void resume() { proceed(); }
    /// The file's tags were replaced: readings from before are dropped.
    void tagsSaved(const QString& path) { scan_.tagsSaved(path); }
    /// Stops; what was read already is kept.
    void cancel();

    bool isRunning() const { return scan_.isRunning(); }
    qsizetype filesRead() const { return scan_.filesRead(); }
    qsizetype filesInAll() const { return scan_.filesInAll(); }

  private:
    static constexpr int kTasks = 2; ///< one under way, one waiting
    static constexpr std::size_t kFilesATask = 8;

    void proceed();
    bool postTask();

    SerialQueue& queue_;
    PlaylistTabs& tabs_;
    const Events events_;
    MetadataScan scan_;
    int tasks_ = 0;
};

} // namespace quorel
