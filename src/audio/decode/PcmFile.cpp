#include "audio/decode/PcmFile.h"

#include <algorithm>
#include <utility>

namespace quorel {

namespace {
/// Read at once: large enough that the system calls do not count, small enough for the cache.
constexpr int64_t kReadBytes = 65536;
} // namespace

PcmFile::PcmFile(InputFile file, const rt::Format& format, const PcmData& data)
    : file_(std::move(file))
    , data_(data) {
    format_ = format;
    const int64_t present = std::max<int64_t>(0, file_.size() - data.offset);
    length_ = std::clamp<int64_t>(data.bytes, 0, present) / data.frameBytes;
    const int64_t frames = std::max<int64_t>(1, kReadBytes / data.frameBytes);
    stored_.resize(static_cast<std::size_t>(frames * data.frameBytes));
}

double PcmFile::dataRate() const {
    return 8.0 * data_.frameBytes * format_.sampleRate;
}

bool PcmFile::seek(int64_t frame) {
    position_ = std::clamp<int64_t>(frame, 0, length_);
    return true;
}

int64_t PcmFile::read(float* interleaved, int64_t frames) {
    const int64_t wanted = std::min(frames, length_ - position_);
    int64_t done = 0;
    while (done < wanted && !cancelled()) {
        const int64_t offset = data_.offset + position_ * data_.frameBytes;
        const auto bytes =
            std::min(stored_.size(), static_cast<std::size_t>((wanted - done) * data_.frameBytes));
        const std::size_t present = file_.readAt(offset, std::span(stored_).first(bytes));
        const int64_t got = static_cast<int64_t>(present) / data_.frameBytes;
        convert(got, interleaved + done * channels());
        done += got;
        position_ += got;
        if (present < bytes) {
            break;
        }
    }
    return done;
}

void PcmFile::convert(int64_t frames, float* out) const {
    const auto samples = static_cast<std::size_t>(channels());
    const auto count = static_cast<std::size_t>(frames);
    if (data_.frameBytes == channels() * bytesOf(data_.sample)) {
        toFloat(stored_.data(), count * samples, data_.sample, data_.order, out);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        toFloat(stored_.data() + i * static_cast<std::size_t>(data_.frameBytes), samples,
                data_.sample, data_.order, out + i * samples);
    }
}

} // namespace quorel
