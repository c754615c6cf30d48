#pragma once

#include "audio/decode/InputFile.h"

#include <cstdint>
#include <optional>

namespace quorel {

/// The name of a box, such as fourCc("moov").
constexpr uint32_t fourCc(const char (&name)[5]) {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<unsigned char>(name[i]);
    }
    return code;
}

/// One box of an ISO base media file: its content, from byte `begin` to `end` of the file.
struct Mp4Box {
    uint32_t name = 0;
    int64_t begin = 0;
    int64_t end = 0;
};

/// Walks the boxes that lie side by side in a part of a file.
class Mp4Walk {
  public:
    /// `budget` is shared by the walks of one file: how many boxes may yet be looked at.
    Mp4Walk(const InputFile& file, int64_t begin, int64_t end, int& budget)
        : file_(file)
        , offset_(begin)
        , end_(end)
        , budget_(budget) {}

    /// The next box, cut to what encloses it; nothing at the end or at nonsense.
    std::optional<Mp4Box> next();

  private:
    const InputFile& file_;
    int64_t offset_;
    int64_t end_;
    int& budget_;
};

/// Boxes to be looked at in one file: enough for a day in fragments of a second.
inline constexpr int kMaxMp4Boxes = 1'000'000;

} // namespace quorel
