#include "audio/decode/FlacDecoder.h"

#include <FLAC/stream_decoder.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <utility>

namespace quorel {

namespace {

struct DeleteDecoder {
    void operator()(FLAC__StreamDecoder* decoder) const { FLAC__stream_decoder_delete(decoder); }
};

// What the library reads first: the signature and STREAMINFO as the only metadata block.
std::vector<std::byte> streamHead(const FlacStreamInfo& info) {
    constexpr std::array<unsigned char, 8> kStart{'f',  'L', 'a', 'C',
                                                  0x80, 0,   0,   FlacStreamInfo::kBytes};
    std::vector<std::byte> head(kStart.size() + info.block.size());
    std::ranges::copy(std::as_bytes(std::span(kStart)), head.begin());
    std::ranges::copy(info.block, head.begin() + kStart.size());
    return head;
}

void interleave(const int32_t* const channels[], std::size_t count, std::size_t frames, int bits,
                float* out) {
    const float scale = std::ldexp(1.0F, 1 - bits);
    if (count == 2) {
        for (std::size_t i = 0; i < frames; ++i) {
            out[2 * i] = static_cast<float>(channels[0][i]) * scale;
            out[2 * i + 1] = static_cast<float>(channels[1][i]) * scale;
        }
        return;
    }
    for (std::size_t c = 0; c < count; ++c) {
        for (std::size_t i = 0; i < frames; ++i) {
            out[i * count + c] = static_cast<float>(channels[c][i]) * scale;
        }
    }
}

} // namespace

// libFLAC's decoder with the callbacks that it is fed by.
class FlacDecoder::Library {
  public:
    Library(const InputFile& file, const FlacStreamInfo& info, int64_t end,
            std::function<bool()> stop)
        : file_(file)
        , end_(end)
        , stop_(std::move(stop))
        , head_(streamHead(info)) {
        if (!decoder_ ||
            FLAC__stream_decoder_init_stream(decoder_.get(), read, nullptr, tell, nullptr, nullptr,
                                             write, nullptr, error,
                                             this) != FLAC__STREAM_DECODER_INIT_STATUS_OK ||
            !FLAC__stream_decoder_process_until_end_of_metadata(decoder_.get())) {
            throw std::bad_alloc();
        }
    }

    void moveTo(int64_t offset) {
        FLAC__stream_decoder_flush(decoder_.get());
        head_.clear();
        readOffset_ = offset;
    }

    Outcome decode(const FlacFrameHeader& header, Block& block) {
        header_ = &header;
        block_ = &block;
        block.frames = 0;
        failed_ = stopped_ = false;
        const bool processed = FLAC__stream_decoder_process_single(decoder_.get()) != 0;
        if (stopped_ || failed_ || !processed || block.frames == 0) {
            block.frames = 0;
            return stopped_ ? Outcome::Stopped : Outcome::Damaged;
        }
        return Outcome::Decoded;
    }

    int64_t position() const {
        FLAC__uint64 position = 0;
        return FLAC__stream_decoder_get_decode_position(decoder_.get(), &position) != 0
                   ? static_cast<int64_t>(position)
                   : -1;
    }

  private:
    static FLAC__StreamDecoderReadStatus read(const FLAC__StreamDecoder*, FLAC__byte buffer[],
                                              std::size_t* bytes, void* self) {
        return static_cast<Library*>(self)->readInto(
            std::as_writable_bytes(std::span(buffer, *bytes)), *bytes);
    }
    static FLAC__StreamDecoderTellStatus tell(const FLAC__StreamDecoder*, FLAC__uint64* position,
                                              void* self) {
        *position = static_cast<FLAC__uint64>(static_cast<Library*>(self)->readOffset_);
        return FLAC__STREAM_DECODER_TELL_STATUS_OK;
    }
    static FLAC__StreamDecoderWriteStatus write(const FLAC__StreamDecoder*,
                                                const FLAC__Frame* frame,
                                                const FLAC__int32* const channels[], void* self) {
        return static_cast<Library*>(self)->take(*frame, channels);
    }
    static void error(const FLAC__StreamDecoder*, FLAC__StreamDecoderErrorStatus, void* self) {
        static_cast<Library*>(self)->failed_ = true;
    }

    FLAC__StreamDecoderReadStatus readInto(std::span<std::byte> buffer, std::size_t& got) {
        got = 0;
        if (!head_.empty()) {
            got = std::min(buffer.size(), head_.size());
            std::copy_n(head_.begin(), got, buffer.begin());
            head_.erase(head_.begin(), head_.begin() + static_cast<std::ptrdiff_t>(got));
            return FLAC__STREAM_DECODER_READ_STATUS_CONTINUE;
        }
        // After an error the library would search the rest of the file for a frame to go on with.
        stopped_ = stop_();
        if (stopped_ || failed_) {
            return FLAC__STREAM_DECODER_READ_STATUS_ABORT;
        }
        const int64_t present = std::max<int64_t>(0, end_ - readOffset_);
        got = file_.readAt(
            readOffset_, buffer.first(std::min(buffer.size(), static_cast<std::size_t>(present))));
        readOffset_ += static_cast<int64_t>(got);
        return got > 0 ? FLAC__STREAM_DECODER_READ_STATUS_CONTINUE
                       : FLAC__STREAM_DECODER_READ_STATUS_END_OF_STREAM;
    }

    FLAC__StreamDecoderWriteStatus take(const FLAC__Frame& frame,
                                        const FLAC__int32* const channels[]) {
        if (failed_ || frame.header.blocksize != static_cast<unsigned>(header_->blockFrames) ||
            frame.header.channels != static_cast<unsigned>(header_->channels)) {
            failed_ =
                true; // silence in place of a frame whose checksum was wrong, or another frame
            return FLAC__STREAM_DECODER_WRITE_STATUS_ABORT;
        }
        const std::size_t count = frame.header.channels;
        const std::size_t frames = frame.header.blocksize;
        block_->samples.resize(std::max(block_->samples.size(), count * frames));
        interleave(channels, count, frames, static_cast<int>(frame.header.bits_per_sample),
                   block_->samples.data());
        block_->frames = static_cast<int>(frames);
        return FLAC__STREAM_DECODER_WRITE_STATUS_CONTINUE;
    }

    const InputFile& file_;
    int64_t end_;
    std::function<bool()> stop_;
    std::vector<std::byte> head_; // what is left of the stream's head
    int64_t readOffset_ = 0;
    const FlacFrameHeader* header_ = nullptr; // of the frame being decoded
    Block* block_ = nullptr;
    bool failed_ = false;
    bool stopped_ = false;
    std::unique_ptr<FLAC__StreamDecoder, DeleteDecoder> decoder_{FLAC__stream_decoder_new()};
};

FlacDecoder::FlacDecoder(const InputFile& file, const FlacStreamInfo& info, int64_t end,
                         std::function<bool()> stop)
    : library_(std::make_unique<Library>(file, info, end, std::move(stop))) {}

FlacDecoder::~FlacDecoder() = default;

FlacDecoder::Outcome FlacDecoder::decode(int64_t offset, const FlacFrameHeader& header,
                                         Block& block) {
    if (offset != nextOffset_) {
        library_->moveTo(offset);
    }
    const Outcome outcome = library_->decode(header, block);
    nextOffset_ = outcome == Outcome::Decoded ? library_->position() : -1;
    return outcome;
}

} // namespace quorel
