#pragma once

#include <QtGlobal>
#include <optional>
#include <vector>

namespace quorel {

/// A run of rows of a playlist.
struct RowRange {
    qsizetype first = 0;
    qsizetype count = 0;

    bool operator==(const RowRange&) const = default;
};

/// The contiguous runs of rows given in ascending order.
std::vector<RowRange> rangesOf(const std::vector<qsizetype>& rows);

qsizetype rowsIn(const std::vector<RowRange>& ranges);

/// What happened to the rows of a playlist, for those who keep something by row.
struct TracksEdit {
    enum class Kind { Nothing, Inserted, Removed, Moved };

    Kind kind = Kind::Nothing;
    /// Ascending, with gaps between them. Inserted: rows after the edit, to be inserted first to
    /// last. Removed: rows before it, to be removed last to first. Moved: rows before it, which now
    /// stand together, in their order, before the row that was `gap`.
    std::vector<RowRange> ranges = {};
    qsizetype gap = 0;

    bool operator==(const TracksEdit&) const = default;

    explicit operator bool() const { return kind != Kind::Nothing; }
    bool removes(qsizetype row) const;
    /// Where the gap before that row is after the edit.
    qsizetype gapAfter(qsizetype row) const;
};

/// The row at which playback goes on once the playing track is gone from its list, or nothing while
/// it is there. `playingRow` and `orphanNext` are what they were before the edit.
std::optional<qsizetype> orphanNextAfter(const TracksEdit& edit,
                                         std::optional<qsizetype> playingRow,
                                         std::optional<qsizetype> orphanNext);

} // namespace quorel
