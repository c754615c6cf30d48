#include "media/tags/MetadataReader.h"

#include "audio/decode/AudioReader.h"
#include "audio/decode/AudioTags.h"
#include "media/tags/ChunkTags.h"
#include "media/tags/Id3Header.h"
#include "media/tags/Id3Reader.h"
#include "media/tags/TagLibTags.h"
#include "media/tags/TagText.h"
#include "model/Path.h"

#include <array>
#include <cmath>

namespace quorel {

namespace {

struct TextFrame {
    std::string_view id;
    std::optional<QString> TrackMetadata::*field;
    bool repaired; // where Windows-1251 may have been read as Latin-1
};
constexpr std::array kTextFrames{TextFrame{"TIT2", &TrackMetadata::title, true},
                                 TextFrame{"TPE1", &TrackMetadata::artist, true},
                                 TextFrame{"TALB", &TrackMetadata::album, true},
                                 TextFrame{"TPE2", &TrackMetadata::albumArtist, true},
                                 TextFrame{"TCON", &TrackMetadata::genre, true},
                                 TextFrame{"TYER", &TrackMetadata::year, false},
                                 TextFrame{"TDRC", &TrackMetadata::year, false},
                                 TextFrame{"TCOM", &TrackMetadata::composer, true},
                                 TextFrame{"COMM", &TrackMetadata::comment, true}};

void apply(const Id3Item& item, TrackMetadata& metadata) {
    const QString text = item.values.join(QStringLiteral(" / "));
    if (text.isEmpty() || item.description.startsWith(QStringLiteral("iTun"))) {
        return;
    }
    if (item.id == "TRCK" || item.id == "TPOS") {
        const NumberAndTotal numbers = parseNumberSlash(item.values.first());
        const bool track = item.id == "TRCK";
        (track ? metadata.trackNumber : metadata.discNumber) = numbers.number;
        (track ? metadata.trackTotal : metadata.discTotal) = numbers.total;
        return;
    }
    for (const TextFrame& frame : kTextFrames) {
        if (frame.id == item.id) {
            metadata.*frame.field = frame.repaired ? fixMojibake(text) : text;
        }
    }
}

bool applyId3(const InputFile& file, int64_t begin, int64_t end, TrackMetadata& metadata) {
    const std::vector<Id3Item> items = readId3Tag(file, begin, end);
    for (const Id3Item& item : items) {
        apply(item, metadata);
    }
    return !items.empty();
}

// Of the tags in front of the sound the first that holds anything counts: what stands behind it is
// what some program forgot to remove when it wrote a new one.
bool applyLeadingId3(const InputFile& file, int64_t end, TrackMetadata& metadata) {
    for (int64_t at = 0; at < end;) {
        const auto header = Id3Header::read(file, at);
        if (!header) {
            return false;
        }
        if (applyId3(file, at, end, metadata)) {
            return true;
        }
        at += header->tagBytes();
    }
    return false;
}

void fillFrom(const CommonTags& tags, TrackMetadata& metadata) {
    const auto fill = [](std::optional<QString>& field, const std::optional<QString>& text) {
        if (!field) {
            field = fixMojibake(text);
        }
    };
    fill(metadata.title, tags.title);
    fill(metadata.artist, tags.artist);
    fill(metadata.album, tags.album);
}

void readTags(const InputFile& file, TrackMetadata& metadata) {
    const int64_t begin = endOfLeadingTags(file);
    std::array<std::byte, 12> bytes{};
    const std::span<const std::byte> head(bytes.data(), file.readAt(begin, bytes));
    bool found = applyLeadingId3(file, begin, metadata);
    if (hasTagChunks(head)) {
        const ChunkTags chunks = readChunkTags(file, begin);
        for (std::size_t i = 0; i < chunks.id3.size() && !found; ++i) {
            found = applyId3(file, chunks.id3[i].begin, chunks.id3[i].end, metadata);
        }
        fillFrom(chunks.common, metadata);
    } else if (!metadata.title || !metadata.artist || !metadata.album) {
        fillFrom(readTagLibTags(file, begin, head), metadata);
    }
}

} // namespace

TrackMetadata MetadataReader::read(const QString& path) {
    TrackMetadata metadata;
    std::string error;
    std::optional<InputFile> file = InputFile::open(pathToBytes(path).toStdString(), error);
    if (!file) {
        return metadata;
    }
    readTags(*file, metadata);
    if (const auto sound = readAudioProperties(*std::move(file))) {
        metadata.duration = static_cast<double>(sound->length) / sound->sampleRate;
        metadata.sampleRateHz = sound->sampleRate;
        if (sound->dataRate > 0) {
            metadata.bitrateKbps = std::llround(sound->dataRate / 1000);
        }
    }
    return metadata;
}

} // namespace quorel
