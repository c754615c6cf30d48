#include "media/tags/ChunkTags.h"

#include "audio/decode/Bytes.h"
#include "audio/decode/Chunks.h"
#include "audio/decode/Mp4Boxes.h"

#include <QList>
#include <algorithm>
#include <array>

namespace quorel {

namespace {

constexpr int64_t kMaxTextBytes = 65536;
constexpr uint64_t kLongSize = 0xFFFFFFFF; // RF64's word for a size that stands in its ds64 chunk

/// Steps from chunk to chunk: four letters, a size, the content, and a byte to make it even.
class ChunkWalk {
  public:
    ChunkWalk(const InputFile& file, int64_t begin, std::span<const std::byte> head)
        : file_(file)
        , caf_(startsWith(head, "caff"))
        , order_(startsWith(head, "RI") && !startsWith(head, "RIFX")    ? std::endian::little
                 : startsWith(head, "RF64") || startsWith(head, "BW64") ? std::endian::little
                                                                        : std::endian::big)
        , offset_(begin + (caf_ ? 8 : 12)) {}

    bool next() {
        std::array<std::byte, 12> head{};
        const std::size_t headBytes = caf_ ? 12 : 8;
        if (--budget_ < 0 || file_.readAt(offset_, std::span(head).first(headBytes)) != headBytes) {
            return false;
        }
        name_ = static_cast<uint32_t>(loadUnsigned(head.data(), 4, std::endian::big));
        const uint64_t stated = loadUnsigned(&head[4], caf_ ? 8 : 4, order_);
        begin_ = offset_ + static_cast<int64_t>(headBytes);
        const bool elsewhere = !caf_ && stated == kLongSize && name_ == fourCc("data");
        end_ = begin_ + bounded(elsewhere ? longDataBytes_ : stated);
        if (name_ == fourCc("ds64")) {
            std::array<std::byte, 16> sizes{};
            file_.readAt(begin_, sizes);
            longDataBytes_ = loadUnsigned(&sizes[8], 8, order_);
        }
        offset_ = end_ + (caf_ ? 0 : (end_ - begin_) & 1);
        return true;
    }

    std::endian order() const { return order_; }
    uint32_t name() const { return name_; }
    int64_t begin() const { return begin_; }
    int64_t end() const { return end_; }

  private:
    // What the file has of that many bytes; all for CAF's "to the end", -1.
    int64_t bounded(uint64_t bytes) const {
        const int64_t room = std::max<int64_t>(0, file_.size() - begin_);
        return static_cast<int64_t>(std::min(bytes, static_cast<uint64_t>(room)));
    }

    const InputFile& file_;
    bool caf_;
    std::endian order_;
    int64_t offset_;
    int budget_ = kMaxChunks;
    uint32_t name_ = 0;
    int64_t begin_ = 0;
    int64_t end_ = 0;
    uint64_t longDataBytes_ = 0;
};

QByteArray contentOf(const InputFile& file, const ChunkWalk& chunk) {
    QByteArray content(std::min(chunk.end() - chunk.begin(), kMaxTextBytes), '\0');
    const auto bytes =
        std::as_writable_bytes(std::span(content.data(), static_cast<std::size_t>(content.size())));
    content.truncate(static_cast<qsizetype>(file.readAt(chunk.begin(), bytes)));
    return content;
}

// These chunks do not tell their encoding. What is no UTF-8 is left as Latin-1, from which other
// encodings can still be guessed.
std::optional<QString> textOf(QByteArrayView content) {
    const qsizetype zero = content.indexOf('\0');
    const QByteArrayView text = content.first(zero < 0 ? content.size() : zero);
    if (text.isEmpty()) {
        return std::nullopt;
    }
    return text.isValidUtf8() ? QString::fromUtf8(text) : QString::fromLatin1(text);
}

// WAV's LIST of the kind INFO, which holds chunks itself.
CommonTags riffInformation(QByteArrayView content, std::endian order) {
    CommonTags tags;
    if (!content.startsWith("INFO")) {
        return tags;
    }
    content = content.sliced(4);
    while (content.size() >= 8) {
        const auto head = std::as_bytes(std::span(content.data(), 8));
        const auto stated = static_cast<qsizetype>(loadUnsigned(&head[4], 4, order));
        const qsizetype size = std::min(stated, content.size() - 8);
        const QByteArrayView name = content.first(4);
        const auto text = textOf(content.sliced(8, size));
        if (name == "INAM") {
            tags.title = text;
        } else if (name == "IART") {
            tags.artist = text;
        } else if (name == "IPRD") {
            tags.album = text;
        }
        content = content.sliced(std::min(8 + size + (size & 1), content.size()));
    }
    return tags;
}

// CAF's "info": a count, then names and texts in UTF-8, each with a zero behind it.
CommonTags cafInformation(const QByteArray& content) {
    CommonTags tags;
    const QList<QByteArray> strings = content.mid(4).split('\0');
    for (qsizetype i = 0; i + 1 < strings.size(); i += 2) {
        const QByteArray& name = strings[i];
        const QString text = QString::fromUtf8(strings[i + 1]);
        auto* field = name == "title"    ? &tags.title
                      : name == "artist" ? &tags.artist
                      : name == "album"  ? &tags.album
                                         : nullptr;
        if (field != nullptr && !text.isEmpty()) {
            *field = text;
        }
    }
    return tags;
}

} // namespace

void CommonTags::fillFrom(const CommonTags& other) {
    title = title ? title : other.title;
    artist = artist ? artist : other.artist;
    album = album ? album : other.album;
}

bool hasTagChunks(std::span<const std::byte> head) {
    if (startsWith(head, "caff")) {
        return true;
    }
    const bool outer = startsWith(head, "RIFF") || startsWith(head, "RIFX") ||
                       startsWith(head, "RF64") || startsWith(head, "BW64") ||
                       startsWith(head, "FORM");
    if (!outer || head.size() < 12) {
        return false;
    }
    const auto kind = head.subspan(8);
    return startsWith(kind, "WAVE") || startsWith(kind, "AIFF") || startsWith(kind, "AIFC");
}

ChunkTags readChunkTags(const InputFile& file, int64_t begin) {
    std::array<std::byte, 4> head{};
    file.readAt(begin, head);
    ChunkTags tags;
    ChunkWalk chunk(file, begin, head);
    while (chunk.next()) {
        switch (chunk.name()) {
        case fourCc("ID3 "):
        case fourCc("id3 "):
            tags.id3.push_back({chunk.begin(), chunk.end()});
            break;
        case fourCc("LIST"):
            tags.common.fillFrom(riffInformation(contentOf(file, chunk), chunk.order()));
            break;
        case fourCc("NAME"): // these two are AIFF's
            tags.common.title = textOf(contentOf(file, chunk));
            break;
        case fourCc("AUTH"):
            tags.common.artist = textOf(contentOf(file, chunk));
            break;
        case fourCc("info"):
            tags.common = cafInformation(contentOf(file, chunk));
            break;
        default:
            break;
        }
    }
    return tags;
}

} // namespace quorel
