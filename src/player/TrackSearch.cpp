#include "player/TrackSearch.h"

#include "model/Path.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace quorel {

namespace {

constexpr qsizetype kChunkRows = 256;
/// Occurs in no UTF-8 text, so that nothing is found across two fields.
constexpr char kBetween = '\xff';

qsizetype rowsInBoth(const RowRange& a, const RowRange& b) {
    const qsizetype end = std::min(a.first + a.count, b.first + b.count);
    return std::max<qsizetype>(end - std::max(a.first, b.first), 0);
}

void appendFolded(std::string& text, const QString& field) {
    const std::size_t begin = text.size();
    text.resize(begin + std::size_t(field.size()) + 1);
    char* free = text.data() + begin;
    char16_t anyBits = 0;
    for (const QChar c : field) {
        const char16_t unit = c.unicode();
        anyBits |= unit;
        *free++ = static_cast<char>(unit >= u'A' && unit <= u'Z' ? unit + ('a' - 'A') : unit);
    }
    if (anyBits >= 0x80) {
        const QByteArray folded = field.toLower().toUtf8();
        text.replace(begin, std::string::npos, folded.constData(), std::size_t(folded.size()));
        text += kBetween;
    } else {
        *free = kBetween;
    }
}

void appendMatches(std::vector<qint32>& rows, std::string_view text,
                   const std::vector<quint32>& ends, std::string_view wanted, qsizetype firstRow) {
    std::size_t from = 0;
    std::size_t row = 0;
    while (const void* hit =
               memmem(text.data() + from, text.size() - from, wanted.data(), wanted.size())) {
        const auto at = std::size_t(static_cast<const char*>(hit) - text.data());
        while (ends[row] <= at)
            ++row;
        rows.push_back(static_cast<qint32>(firstRow + qsizetype(row)));
        from = ends[row];
    }
}

} // namespace

qsizetype VisibleRows::indexFrom(qsizetype row) const {
    if (!filtered_)
        return std::clamp<qsizetype>(row, 0, all_);
    return std::ranges::lower_bound(some_, row) - some_.begin();
}

VisibleRows TrackSearch::find(const TrackList& shown, const QString& text) {
    const std::string wanted = trimmedOfBlanks(text).toString().toLower().toStdString();
    if (wanted.empty())
        return VisibleRows(shown.size());
    foldStale(shown, std::numeric_limits<std::size_t>::max());
    std::vector<qint32> rows;
    qsizetype first = 0;
    for (const Chunk& chunk : chunks_) {
        appendMatches(rows, chunk.text, chunk.ends, wanted, first);
        first += chunk.rows;
    }
    return VisibleRows(std::move(rows));
}

bool TrackSearch::prepareSome(const TrackList& shown) {
    constexpr std::size_t kSlice = 20;
    return foldStale(shown, kSlice);
}

bool TrackSearch::foldStale(const TrackList& shown, std::size_t chunks) {
    const std::span tracks(shown.tracks().constData(), std::size_t(shown.size()));
    if (chunks_.empty() && !tracks.empty())
        appendChunks(chunks_, shown.size());
    std::size_t first = 0;
    for (Chunk& chunk : chunks_) {
        if (!chunk.isCurrent && chunks-- == 0)
            return false;
        if (!chunk.isCurrent)
            fold(chunk, tracks.subspan(first, std::size_t(chunk.rows)));
        first += std::size_t(chunk.rows);
    }
    return true;
}

void TrackSearch::rowsEdited(const TracksEdit& edit) {
    switch (edit.kind) {
    case TracksEdit::Kind::Nothing:
        break;
    case TracksEdit::Kind::Inserted:
        insertRows(edit.ranges);
        break;
    case TracksEdit::Kind::Removed:
        removeRows(edit.ranges);
        break;
    case TracksEdit::Kind::Moved: {
        const TracksEdit taken{TracksEdit::Kind::Removed, edit.ranges};
        removeRows(edit.ranges);
        insertRows({{taken.gapAfter(edit.gap), rowsIn(edit.ranges)}});
        break;
    }
    }
}

void TrackSearch::tracksChanged(const std::vector<RowRange>& rows) {
    forOverlaps(rows, [](Chunk& chunk, qsizetype) { chunk.isCurrent = false; });
}

void TrackSearch::removeRows(const std::vector<RowRange>& ranges) {
    forOverlaps(ranges, [](Chunk& chunk, qsizetype removed) {
        chunk.rows -= removed;
        chunk.isCurrent = false;
    });
    std::erase_if(chunks_, [](const Chunk& chunk) { return chunk.rows == 0; });
}

void TrackSearch::insertRows(const std::vector<RowRange>& ranges) {
    std::vector<Chunk> chunks;
    chunks.reserve(chunks_.size() + 1);
    auto range = ranges.begin();
    qsizetype first = 0; // of the chunk, after the edit
    for (Chunk& chunk : chunks_) {
        const qsizetype before = chunk.rows;
        for (; range != ranges.end() && range->first <= first + chunk.rows; ++range)
            chunk.rows += range->count;
        first += chunk.rows;
        if (chunk.rows > 2 * kChunkRows) {
            appendChunks(chunks, chunk.rows);
            continue;
        }
        chunk.isCurrent = chunk.isCurrent && chunk.rows == before;
        chunks.push_back(std::move(chunk));
    }
    chunks_ = std::move(chunks);
}

void TrackSearch::forOverlaps(const std::vector<RowRange>& ranges,
                              const std::function<void(Chunk&, qsizetype)>& act) {
    auto range = ranges.begin();
    qsizetype first = 0;
    for (Chunk& chunk : chunks_) {
        const RowRange own{first, chunk.rows};
        first += chunk.rows;
        qsizetype rows = 0;
        for (; range != ranges.end() && range->first < first; ++range) {
            rows += rowsInBoth(own, *range);
            if (range->first + range->count > first)
                break; // goes on in the next chunk
        }
        if (rows > 0)
            act(chunk, rows);
    }
}

void TrackSearch::appendChunks(std::vector<Chunk>& chunks, qsizetype rows) {
    for (; rows > 0; rows -= kChunkRows)
        chunks.push_back({.rows = std::min(rows, kChunkRows)});
}

void TrackSearch::fold(Chunk& chunk, std::span<const Track> tracks) {
    std::string text;
    text.reserve(chunk.text.empty() ? kChunkRows * 100 : chunk.text.size());
    chunk.ends.clear();
    chunk.ends.reserve(tracks.size());
    for (const Track& track : tracks) {
        appendFolded(text, track.title);
        appendFolded(text, track.artist);
        if (track.album)
            appendFolded(text, *track.album);
        chunk.ends.push_back(static_cast<quint32>(text.size()));
    }
    text.shrink_to_fit();
    chunk.text = std::move(text);
    chunk.isCurrent = true;
}

} // namespace quorel
