#include "player/TracksEdit.h"

#include <algorithm>
#include <numeric>

namespace quorel {

namespace {

qsizetype rowsBefore(const std::vector<RowRange>& ranges, qsizetype row) {
    return std::accumulate(
        ranges.begin(), ranges.end(), qsizetype{0}, [row](qsizetype sum, const RowRange& range) {
            return sum + std::clamp<qsizetype>(row - range.first, 0, range.count);
        });
}

} // namespace

std::vector<RowRange> rangesOf(const std::vector<qsizetype>& rows) {
    std::vector<RowRange> ranges;
    for (const qsizetype row : rows) {
        if (!ranges.empty() && ranges.back().first + ranges.back().count == row)
            ++ranges.back().count;
        else
            ranges.push_back({row, 1});
    }
    return ranges;
}

qsizetype rowsIn(const std::vector<RowRange>& ranges) {
    return std::accumulate(ranges.begin(), ranges.end(), qsizetype{0},
                           [](qsizetype sum, const RowRange& range) { return sum + range.count; });
}

bool TracksEdit::removes(qsizetype row) const {
    return kind == Kind::Removed && std::ranges::any_of(ranges, [row](const RowRange& range) {
               return row >= range.first && row < range.first + range.count;
           });
}

qsizetype TracksEdit::gapAfter(qsizetype row) const {
    switch (kind) {
    case Kind::Nothing:
        return row;
    case Kind::Inserted:
        for (const RowRange& range : ranges)
            if (range.first < row)
                row += range.count;
        return row;
    case Kind::Removed:
        return row - rowsBefore(ranges, row);
    case Kind::Moved: {
        const qsizetype left = row - rowsBefore(ranges, row);
        return left > gap - rowsBefore(ranges, gap) ? left + rowsIn(ranges) : left;
    }
    }
    return row;
}

std::optional<qsizetype> orphanNextAfter(const TracksEdit& edit,
                                         std::optional<qsizetype> playingRow,
                                         std::optional<qsizetype> orphanNext) {
    if (playingRow)
        return edit.removes(*playingRow) ? std::optional(edit.gapAfter(*playingRow)) : std::nullopt;
    return orphanNext ? std::optional(edit.gapAfter(*orphanNext)) : std::nullopt;
}

} // namespace quorel
