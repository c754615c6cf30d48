#pragma once

#include <QString>
#include <cstdint>
#include <span>
#include <string>

namespace quorel::cli {

/// Writes a WAV file of 32-bit float samples (RF64 beyond 4 GiB). Until finish() it stands under a
/// temporary name in the target's folder, so that the target is never half a file; without finish()
/// nothing stays. The first error is kept, and nothing is written after it. Blocks on the disk.
class WavWriter {
  public:
    /// `path` is the file system's bytes.
    WavWriter(const std::string& path, int sampleRate, int channels);
    ~WavWriter();
    WavWriter(const WavWriter&) = delete;
    WavWriter& operator=(const WavWriter&) = delete;

    void write(std::span<const float> interleaved);
    /// Completes the file and gives it its name.
    void finish();

    bool hasFailed() const { return !error_.isEmpty(); }
    const QString& error() const { return error_; } ///< for people, with the path

  private:
    void writeHeader();
    void writeAll(const void* data, std::size_t size);
    void fail(int number);

    std::string path_;
    std::string temporary_;
    const int sampleRate_;
    const int channels_;
    int descriptor_ = -1;
    uint64_t dataBytes_ = 0;
    QString error_;
};

} // namespace quorel::cli
