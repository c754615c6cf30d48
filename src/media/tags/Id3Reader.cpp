#include "media/tags/Id3Reader.h"

#include "audio/decode/Bytes.h"
#include "media/tags/Id3Cursor.h"
#include "media/tags/Id3Header.h"
#include "media/tags/Id3Strings.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace quorel {

namespace {

constexpr int64_t kMaxFrameBytes = 1 << 20;
constexpr int kMaxFrames = 100'000; // of a damaged tag that goes on and on
constexpr std::string_view kComment = "COMM";

struct KnownFrame {
    std::string_view id;
    std::string_view shortId; // in ID3v2.2
};
constexpr std::array kKnownFrames{
    KnownFrame{"TIT2", "TT2"}, KnownFrame{"TPE1", "TP1"},  KnownFrame{"TALB", "TAL"},
    KnownFrame{"TPE2", "TP2"}, KnownFrame{"TCON", "TCO"},  KnownFrame{"TYER", "TYE"},
    KnownFrame{"TDRC", {}},    KnownFrame{"TRCK", "TRK"},  KnownFrame{"TPOS", "TPA"},
    KnownFrame{"TCOM", "TCM"}, KnownFrame{kComment, "COM"}};

/// What a frame's flags mean, whichever version of ID3 they are of.
struct FrameForm {
    std::size_t extraBytes = 0; // between the header and the content
    bool unsynchronised = false;
    bool encrypted = false;
    bool compressed = false;
    std::optional<std::size_t> plainBytesAt; // in the extra bytes: the size once decompressed
};

struct FrameHead {
    std::array<char, 4> id{};
    int64_t bytes = 0;
    unsigned flags = 0; // the second byte, which tells the form
};

class TagReader {
  public:
    TagReader(const InputFile& file, const Id3Header& header, int64_t begin, int64_t end)
        : header_(header)
        , end_(end)
        , file_(file)
        // In ID3v2.4 it is the frames that are unsynchronised, one by one.
        , cursor_(file, begin, end, tagUnsynchronised() && header.version < 4) {}

    Id3Contents read();

  private:
    bool tagUnsynchronised() const { return (header_.flags & 0x80U) != 0; }
    bool skipExtendedHeader();
    std::optional<FrameHead> nextHead();
    int64_t frameBytes(std::span<const std::byte, 4> stored);
    bool isFrameOrEnd(int64_t offset) const;
    FrameForm formOf(unsigned flags) const;
    std::vector<std::byte> contentOf(const FrameHead& head);
    void addItem(std::string_view id, std::span<const std::byte> content);

    const Id3Header header_;
    const int64_t end_;
    const InputFile& file_;
    Id3Cursor cursor_;
    std::vector<Id3Item> items_;
};

bool isIdCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

bool isId(std::string_view id) {
    return !id.empty() && std::all_of(id.begin(), id.end(), isIdCharacter);
}

// Some programs wrote the short names of ID3v2.2 into later tags, with a zero behind them.
std::string_view withoutZero(const std::array<char, 4>& id) {
    return {id.data(), id[3] == '\0' ? 3U : 4U};
}

// The full name of a frame that is wanted, else nothing.
std::string_view wantedId(std::string_view id) {
    const auto known = std::find_if(kKnownFrames.begin(), kKnownFrames.end(), [id](const auto& f) {
        return id == f.id || (!f.shortId.empty() && id == f.shortId);
    });
    return known != kKnownFrames.end() ? known->id : std::string_view();
}

Id3Contents TagReader::read() {
    constexpr unsigned kExtendedHeader = 0x40; // in ID3v2.2: compressed in a way never defined
    if (header_.version < 2 || header_.version > 4) {
        return {};
    }
    if ((header_.flags & kExtendedHeader) != 0 && !skipExtendedHeader()) {
        return {};
    }
    int64_t frames = 0;
    for (; frames < kMaxFrames; ++frames) {
        const auto head = nextHead();
        if (!head || head->bytes > cursor_.remaining()) {
            break;
        }
        const std::string_view id = wantedId(withoutZero(head->id));
        if (id.empty() || head->bytes > kMaxFrameBytes) {
            cursor_.skip(head->bytes);
        } else {
            addItem(id, contentOf(*head));
        }
    }
    const int64_t others = frames - static_cast<int64_t>(items_.size());
    return {std::move(items_), others};
}

bool TagReader::skipExtendedHeader() {
    std::array<std::byte, 4> stored{};
    if (header_.version == 2 || cursor_.read(stored) != stored.size()) {
        return false;
    }
    // Only ID3v2.4 counts the size itself.
    const int64_t bytes =
        header_.version == 4
            ? loadSyncsafe(stored) - 4
            : static_cast<int64_t>(loadUnsigned(stored.data(), 4, std::endian::big));
    if (bytes < 0 || bytes > cursor_.remaining()) {
        return false;
    }
    cursor_.skip(bytes);
    return true;
}

std::optional<FrameHead> TagReader::nextHead() {
    std::array<std::byte, 10> stored{};
    const std::size_t idBytes = header_.version == 2 ? 3 : 4;
    const std::size_t headBytes = header_.version == 2 ? 6 : 10;
    if (cursor_.read(std::span(stored).first(headBytes)) != headBytes) {
        return std::nullopt;
    }
    FrameHead head;
    std::transform(stored.begin(), stored.begin() + static_cast<std::ptrdiff_t>(idBytes),
                   head.id.begin(), [](std::byte b) { return static_cast<char>(b); });
    if (!isId(withoutZero(head.id))) {
        return std::nullopt; // padding, or damage
    }
    if (header_.version == 2) {
        head.bytes = static_cast<int64_t>(loadUnsigned(&stored[3], 3, std::endian::big));
    } else {
        head.bytes = frameBytes(std::span(stored).subspan<4, 4>());
        head.flags = std::to_integer<unsigned>(stored[9]);
    }
    return head;
}

// ID3v2.4 writes sizes in seven bits a byte; some programs forgot. Where the two differ, the one
// behind which the tag goes on sensibly is right.
int64_t TagReader::frameBytes(std::span<const std::byte, 4> stored) {
    const auto plain = static_cast<int64_t>(loadUnsigned(stored.data(), 4, std::endian::big));
    const int64_t syncsafe = loadSyncsafe(stored);
    if (header_.version < 4 || !isSyncsafe(stored)) {
        return plain;
    }
    const int64_t begin = cursor_.offset();
    const bool forgot =
        plain != syncsafe && !isFrameOrEnd(begin + syncsafe) && isFrameOrEnd(begin + plain);
    return forgot ? plain : syncsafe;
}

bool TagReader::isFrameOrEnd(int64_t offset) const {
    std::array<std::byte, 4> bytes{};
    if (offset >= end_ || file_.readAt(offset, bytes) != bytes.size()) {
        return offset == end_;
    }
    const std::string_view id(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return isId(id) || bytes[0] == std::byte{};
}

FrameForm TagReader::formOf(unsigned flags) const {
    FrameForm form;
    if (header_.version == 3) {
        form.compressed = (flags & 0x80U) != 0;
        form.encrypted = (flags & 0x40U) != 0;
        const bool grouped = (flags & 0x20U) != 0;
        if (form.compressed) {
            form.plainBytesAt = 0;
        }
        form.extraBytes =
            (form.compressed ? 4U : 0U) + (form.encrypted ? 1U : 0U) + (grouped ? 1U : 0U);
    } else if (header_.version == 4) {
        const bool grouped = (flags & 0x40U) != 0;
        form.compressed = (flags & 0x08U) != 0;
        form.encrypted = (flags & 0x04U) != 0;
        form.unsynchronised = (flags & 0x02U) != 0 || tagUnsynchronised();
        form.extraBytes = (grouped ? 1U : 0U) + (form.encrypted ? 1U : 0U);
        if ((flags & 0x01U) != 0) {
            form.plainBytesAt = form.extraBytes;
            form.extraBytes += 4;
        }
    }
    return form;
}

std::vector<std::byte> inflated(std::span<const std::byte> stored, int64_t plainBytes) {
    if (plainBytes > kMaxFrameBytes) {
        return {};
    }
    std::vector<std::byte> plain(static_cast<std::size_t>(plainBytes));
    uLongf size = plain.size();
    const int result = ::uncompress(reinterpret_cast<Bytef*>(plain.data()), &size,
                                    reinterpret_cast<const Bytef*>(stored.data()), stored.size());
    plain.resize(result == Z_OK ? size : 0);
    return plain;
}

void undoUnsynchronisation(std::vector<std::byte>& bytes) {
    std::byte before{};
    const auto end = std::remove_if(bytes.begin(), bytes.end(), [&before](std::byte b) {
        return std::exchange(before, b) == std::byte{0xFF} && b == std::byte{};
    });
    bytes.erase(end, bytes.end());
}

// A frame's bytes as they were before they were packed; none where that cannot be undone.
std::vector<std::byte> TagReader::contentOf(const FrameHead& head) {
    std::vector<std::byte> stored(static_cast<std::size_t>(head.bytes));
    stored.resize(cursor_.read(stored));
    const FrameForm form = formOf(head.flags);
    if (form.unsynchronised) {
        undoUnsynchronisation(stored);
    }
    if (form.encrypted || stored.size() < form.extraBytes) {
        return {};
    }
    const std::span content = std::span(stored).subspan(form.extraBytes);
    if (!form.compressed) {
        return {content.begin(), content.end()};
    }
    if (!form.plainBytesAt) {
        return {};
    }
    const auto size = std::span(stored).subspan(*form.plainBytesAt).first<4>();
    const auto plain = static_cast<int64_t>(loadUnsigned(size.data(), 4, std::endian::big));
    return inflated(content, header_.version == 4 && isSyncsafe(size) ? loadSyncsafe(size) : plain);
}

void TagReader::addItem(std::string_view id, std::span<const std::byte> content) {
    constexpr std::size_t kLanguageBytes = 3;
    const std::size_t textAt = id == kComment ? 1 + kLanguageBytes : 1;
    if (content.size() < textAt || content[0] > std::byte{3}) {
        return;
    }
    Id3Strings strings(content.subspan(textAt), static_cast<Id3Encoding>(content[0]));
    Id3Item item{id, {}, {}};
    if (id == kComment) {
        item.description = strings.next();
    }
    if (header_.version == 4 && id != kComment) {
        item.values = strings.rest();
    }
    if (item.values.isEmpty()) {
        item.values.append(strings.next()); // before ID3v2.4 nothing behind a zero counts
    }
    items_.push_back(std::move(item));
}

} // namespace

std::vector<Id3Item> readId3Tag(const InputFile& file, int64_t begin, int64_t end) {
    return readId3Contents(file, begin, end).items;
}

Id3Contents readId3Contents(const InputFile& file, int64_t begin, int64_t end) {
    const auto header = Id3Header::read(file, begin);
    if (!header) {
        return {};
    }
    const int64_t body = begin + static_cast<int64_t>(Id3Header::kBytes);
    end = std::min({end, file.size(), body + header->bodyBytes});
    return TagReader(file, *header, body, end).read();
}

} // namespace quorel
