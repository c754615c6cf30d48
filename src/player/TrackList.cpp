#include "player/TrackList.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <numeric>

namespace quorel {

namespace {

// Rows change places by their bytes, as the list itself moves them when it grows: their many
// fields moved one by one would take twice as long.
static_assert(QTypeInfo<Track>::isRelocatable);
using Bytes = std::unique_ptr<std::byte[]>;

void moveRows(Track* tracks, qsizetype from, qsizetype count, qsizetype to) {
    std::memmove(static_cast<void*>(tracks + to), static_cast<const void*>(tracks + from),
                 std::size_t(count) * sizeof(Track));
}

Bytes copyOut(const Track* tracks, const std::vector<RowRange>& ranges) {
    Bytes copy(new std::byte[std::size_t(rowsIn(ranges)) * sizeof(Track)]);
    std::byte* free = copy.get();
    for (const RowRange& range : ranges) {
        const std::size_t bytes = std::size_t(range.count) * sizeof(Track);
        std::memcpy(free, static_cast<const void*>(tracks + range.first), bytes);
        free += bytes;
    }
    return copy;
}

void copyIn(Track* tracks, RowRange rows, const std::byte* copy) {
    std::memcpy(static_cast<void*>(tracks + rows.first), copy,
                std::size_t(rows.count) * sizeof(Track));
}

/// Moves ranges, which are all before the gap, to its front edge; the rows between them move up.
void gatherDown(Track* tracks, const std::vector<RowRange>& ranges, qsizetype gap) {
    if (ranges.empty())
        return;
    const Bytes taken = copyOut(tracks, ranges);
    qsizetype free = ranges.front().first;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const qsizetype from = ranges[i].first + ranges[i].count;
        const qsizetype to = i + 1 < ranges.size() ? ranges[i + 1].first : gap;
        moveRows(tracks, from, to - from, free);
        free += to - from;
    }
    copyIn(tracks, {free, gap - free}, taken.get());
}

/// Moves ranges, which are all behind the gap, to its rear edge; the rows between them move down.
void gatherUp(Track* tracks, const std::vector<RowRange>& ranges, qsizetype gap) {
    if (ranges.empty())
        return;
    const Bytes taken = copyOut(tracks, ranges);
    qsizetype free = ranges.back().first + ranges.back().count;
    for (std::size_t i = ranges.size(); i-- > 0;) {
        const qsizetype from = i > 0 ? ranges[i - 1].first + ranges[i - 1].count : gap;
        free -= ranges[i].first - from;
        moveRows(tracks, from, ranges[i].first - from, free);
    }
    copyIn(tracks, {gap, free - gap}, taken.get());
}

/// The reverse of gathering at the end: the last rows are spread so that they stand in the ranges.
void scatter(Track* tracks, const std::vector<RowRange>& ranges, qsizetype size) {
    qsizetype left = rowsIn(ranges);
    qsizetype rest = size - left; // rows that stand where they stood
    const Bytes taken = copyOut(tracks, {{rest, left}});
    for (std::size_t i = ranges.size(); i-- > 0;) {
        const RowRange& range = ranges[i];
        const qsizetype behind = range.first + range.count;
        left -= range.count;
        const qsizetype from = range.first - left;
        moveRows(tracks, from, rest - from, behind);
        rest = from;
        copyIn(tracks, range, taken.get() + std::size_t(left) * sizeof(Track));
    }
}

} // namespace

TrackList::TrackList(Playlist playlist)
    : playlist_(std::move(playlist)) {
    reindex();
}

std::optional<qsizetype> TrackList::rowOf(const QUuid& id) const {
    return rows_.find(id, idAt());
}

std::vector<qsizetype> TrackList::rowsOf(std::span<const QUuid> ids) const {
    std::vector<qsizetype> rows;
    rows.reserve(ids.size());
    for (const QUuid& id : ids)
        if (const auto row = rowOf(id))
            rows.push_back(*row);
    std::ranges::sort(rows);
    return rows;
}

TracksEdit TrackList::insert(qsizetype row, QList<Track> block) {
    row = std::clamp<qsizetype>(row, 0, size());
    RemovedTracks placed{std::vector<qsizetype>(std::size_t(block.size())), std::move(block)};
    std::iota(placed.rows.begin(), placed.rows.end(), row);
    return restore(std::move(placed));
}

TracksEdit TrackList::remove(const std::vector<qsizetype>& rows, RemovedTracks& removed) {
    if (rows.empty())
        return {};
    if (std::ssize(rows) == size()) {
        removed = {rows, playlist_.tracks}; // shared until the list lets go of it
        return clear();
    }
    removed = {rows, {}};
    removed.tracks.reserve(qsizetype(rows.size()));
    Track* const tracks = playlist_.tracks.data();
    Track* free = tracks + rows.front();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        removed.tracks.append(std::move(tracks[rows[i]]));
        const qsizetype to = i + 1 < rows.size() ? rows[i + 1] : size();
        free = std::move(tracks + rows[i] + 1, tracks + to, free);
    }
    playlist_.tracks.resize(free - tracks);
    reindex();
    return {TracksEdit::Kind::Removed, rangesOf(rows)};
}

TracksEdit TrackList::restore(RemovedTracks removed) {
    if (removed.rows.empty())
        return {};
    const qsizetype before = size();
    // Rows beyond the end of a list that has become shorter follow each other there.
    for (std::size_t i = 0; i < removed.rows.size(); ++i)
        removed.rows[i] = std::min(removed.rows[i], before + qsizetype(i));
    TracksEdit edit{TracksEdit::Kind::Inserted, rangesOf(removed.rows)};
    const bool isAtEnd = removed.rows.front() == before;
    if (!isAtEnd) { // else they are the last to be indexed, which gives them new ids where needed
        for (Track& track : removed.tracks)
            while (contains(track.id))
                track.id = QUuid::createUuid();
    }
    if (before == 0)
        playlist_.tracks = std::move(removed.tracks); // appended, each would be moved by itself
    else
        playlist_.tracks.append(std::move(removed.tracks));
    if (!isAtEnd)
        scatter(playlist_.tracks.data(), edit.ranges, size());
    reindex(isAtEnd ? before : 0);
    return edit;
}

TracksEdit TrackList::clear() {
    if (isEmpty())
        return {};
    TracksEdit edit{TracksEdit::Kind::Removed, {{0, size()}}};
    playlist_.tracks = {};
    rows_.clear();
    return edit;
}

TracksEdit TrackList::move(const std::vector<qsizetype>& rows, qsizetype gap) {
    gap = std::clamp<qsizetype>(gap, 0, size());
    const auto split = std::ranges::lower_bound(rows, gap);
    const auto before = rangesOf({rows.begin(), split});
    const auto behind = rangesOf({split, rows.end()});
    const bool standBefore = before.empty() || before.front().first == gap - (split - rows.begin());
    const bool standBehind =
        behind.empty() || behind.back().first + behind.back().count == gap + (rows.end() - split);
    if (standBefore && standBehind)
        return {};
    gatherDown(playlist_.tracks.data(), before, gap);
    gatherUp(playlist_.tracks.data(), behind, gap);
    reindex();
    return {TracksEdit::Kind::Moved, rangesOf(rows), gap};
}

void TrackList::reindex(qsizetype from) {
    if (from == 0)
        rows_.clear();
    rows_.reserve(std::size_t(size()));
    for (qsizetype row = from; row < size(); ++row) {
        const auto place = static_cast<IdTable::Place>(row);
        while (!rows_.insert(playlist_.tracks.at(row).id, place, idAt()))
            playlist_.tracks[row].id = QUuid::createUuid();
    }
}

} // namespace quorel
