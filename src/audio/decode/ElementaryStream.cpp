#include "audio/decode/ElementaryStream.h"

#include <algorithm>

namespace quorel {

namespace {

/// Reads descriptors: a tag, a length in up to four bytes of seven bits, the content.
class DescriptorReader {
  public:
    explicit DescriptorReader(std::span<const std::byte> bytes)
        : bytes_(bytes) {}

    int byte() {
        if (bytes_.empty()) {
            return 0;
        }
        const int value = std::to_integer<int>(bytes_.front());
        bytes_ = bytes_.subspan(1);
        return value;
    }
    void skip(std::size_t bytes) { bytes_ = bytes_.subspan(std::min(bytes, bytes_.size())); }

    /// Enters a descriptor and cuts to its content; false when another one is next.
    bool enter(int tag) {
        if (byte() != tag) {
            return false;
        }
        std::size_t length = 0;
        for (int i = 0, more = 0x80; i < 4 && more != 0; ++i) {
            const int digit = byte();
            length = length << 7 | static_cast<std::size_t>(digit & 0x7F);
            more = digit & 0x80;
        }
        bytes_ = bytes_.first(std::min(length, bytes_.size()));
        return true;
    }
    std::vector<std::byte> rest() const { return {bytes_.begin(), bytes_.end()}; }

  private:
    std::span<const std::byte> bytes_;
};

} // namespace

ElementaryStream readElementaryStream(std::span<const std::byte> descriptor) {
    ElementaryStream stream;
    DescriptorReader reader(descriptor);
    if (!reader.enter(0x03)) {
        return stream;
    }
    reader.skip(2);
    const int flags = reader.byte();
    reader.skip((flags & 0x80) != 0 ? 2 : 0);
    reader.skip((flags & 0x40) != 0 ? static_cast<std::size_t>(reader.byte()) : 0);
    reader.skip((flags & 0x20) != 0 ? 2 : 0);
    if (reader.enter(0x04)) {
        stream.objectType = reader.byte();
        reader.skip(12);
        if (reader.enter(0x05)) {
            stream.config = reader.rest();
        }
    }
    return stream;
}

} // namespace quorel
