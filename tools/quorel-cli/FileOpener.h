#pragma once

#include "core/Clock.h"
#include "tools/quorel-cli/OpenTrack.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace quorel::cli {

/// Opens files on a thread of its own, one at a time. Main thread; nothing here waits for the disk
/// but the destructor.
class FileOpener {
  public:
    using Done = std::function<void(const OpenedTrack&)>;

    explicit FileOpener(Clock& clock);
    ~FileOpener(); ///< waits for the file that is being opened; no `done` is called after it
    FileOpener(const FileOpener&) = delete;
    FileOpener& operator=(const FileOpener&) = delete;

    /// Calls `done` on the main thread. A request that has not been begun gives way to a newer one,
    /// and is never answered.
    void open(const std::string& path, Done done);

  private:
    struct Request {
        std::string path;
        Done done;
    };
    void run();

    Clock& clock_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true); // what was posted checks it

    std::mutex mutex_; // guards what follows
    std::condition_variable wake_;
    std::optional<Request> request_;
    bool quit_ = false;

    std::thread thread_;
};

} // namespace quorel::cli
