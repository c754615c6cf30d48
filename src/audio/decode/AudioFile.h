#pragma once

#include "audio/rt/Format.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

namespace quorel {

struct OpenedAudioFile;

/// An audio file open for reading as 32-bit float frames at its own rate and layout.
///
/// One thread reads at a time; the constant properties may be asked from any thread, and several
/// AudioFiles on one path are independent. Reading blocks on the disk, so it never happens on the
/// main thread or the output thread.
class AudioFile {
  public:
    virtual ~AudioFile() = default;

    /// Opens a regular file (never a FIFO, socket or device). What the file holds decides, not its
    /// name. Blocks on the disk. `path` is the file system's bytes.
    static OpenedAudioFile open(const std::string& path);

    const rt::Format& format() const { return format_; }
    int sampleRate() const { return format_.sampleRate; } ///< Hz
    int channels() const { return format_.channels(); }   ///< 1..rt::kMaxChannels

    /// Length in frames, exact where the file states it; a damaged file may end earlier.
    int64_t length() const { return length_; }

    /// The payload's data rate in bit/s, averaged over the file; 0 when unknown.
    virtual double dataRate() const = 0;

    /// The frame that the next read starts at, 0..length().
    virtual int64_t position() const = 0;

    /// Moves to a frame (clamped to 0..length()), exactly. False when the file cannot be
    /// positioned there; the position is then undefined and the next read returns 0.
    virtual bool seek(int64_t frame) = 0;

    /// Reads up to `frames` (>= 0) interleaved frames and returns how many there were. Fewer than
    /// asked means the end, a file that broke off or could not be decoded further, or cancel().
    virtual int64_t read(float* interleaved, int64_t frames) = 0;

    /// From any thread: makes a running read, and each one after it, return early until resume().
    void cancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }
    void resume() noexcept { cancelled_.store(false, std::memory_order_relaxed); }
    bool cancelled() const noexcept { return cancelled_.load(std::memory_order_relaxed); }

  protected:
    AudioFile() = default;

    rt::Format format_;
    int64_t length_ = 0;

  private:
    std::atomic<bool> cancelled_ = false;
};

/// An open file, or the reason why there is none (one clear clause, such as "not a regular file").
struct OpenedAudioFile {
    std::unique_ptr<AudioFile> file;
    std::string error;
};

} // namespace quorel
