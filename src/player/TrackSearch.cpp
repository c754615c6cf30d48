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
    for (std::size_t i = 0; i < chunks_.size(); ++i)
        appendMatches(rows, chunks_[i].text, chunks_[i].ends, wanted, qsizetype(i) * kChunkRows);
    return VisibleRows(std::move(rows));
}

bool TrackSearch::prepareSome(const TrackList& shown) {
    constexpr std::size_t kSlice = 20;
    return foldStale(shown, kSlice);
}

bool TrackSearch::foldStale(const TrackList& shown, std::size_t chunks) {
    const std::span tracks(shown.tracks().constData(), std::size_t(shown.size()));
    chunks_.resize((tracks.size() + kChunkRows - 1) / kChunkRows);
    for (std::size_t i = 0; i < chunks_.size(); ++i) {
        if (chunks_[i].isCurrent)
            continue;
        if (chunks-- == 0)
            return false;
        const std::size_t first = i * kChunkRows;
        const std::size_t count = std::min<std::size_t>(kChunkRows, tracks.size() - first);
        fold(chunks_[i], tracks.subspan(first, count));
    }
    return true;
}

void TrackSearch::rowsEdited(const TracksEdit& edit) {
    if (!edit)
        return;
    const qsizetype first = edit.kind == TracksEdit::Kind::Moved
                                ? std::min(edit.gap, edit.ranges.front().first)
                                : edit.ranges.front().first;
    makeStale(first, std::numeric_limits<qsizetype>::max());
}

void TrackSearch::tracksChanged(const std::vector<RowRange>& rows) {
    for (const RowRange& range : rows)
        makeStale(range.first, range.first + range.count);
}

void TrackSearch::makeStale(qsizetype firstRow, qsizetype endRow) {
    const auto chunks = qsizetype(chunks_.size());
    for (qsizetype i = firstRow / kChunkRows; i < chunks && i * kChunkRows < endRow; ++i)
        chunks_[std::size_t(i)].isCurrent = false;
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
