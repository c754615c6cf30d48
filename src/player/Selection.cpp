#include "player/Selection.h"

#include <algorithm>

namespace quorel {

void Selection::click(const TrackList& shown, const QUuid& track, bool extend, bool toggle) {
    const auto row = shown.rowOf(track);
    if (!row)
        return;
    const auto anchor = extend && lastClicked_ ? shown.rowOf(*lastClicked_) : std::nullopt;
    lastClicked_ = track;
    if (toggle) {
        if (!ids_.insert(track))
            ids_.erase(track);
        return;
    }
    const auto [first, last] = std::minmax({*row, anchor.value_or(*row)});
    ids_.clear();
    ids_.reserve(std::size_t(last - first + 1));
    for (qsizetype i = first; i <= last; ++i)
        ids_.insert(shown.tracks().at(i).id);
}

void Selection::selectAll(const TrackList& shown, const VisibleRows& visible) {
    ids_.clear();
    ids_.reserve(std::size_t(visible.size()));
    for (qsizetype i = 0; i < visible.size(); ++i)
        ids_.insert(shown.tracks().at(visible.rowAt(i)).id);
}

bool Selection::keepOnly(const TrackList& shown) {
    const auto isThere = [&shown](const QUuid& id) { return shown.contains(id); };
    if (std::ranges::all_of(ids_.ids(), isThere))
        return false;
    IdSet kept;
    for (const QUuid& id : ids_.ids())
        if (isThere(id))
            kept.insert(id);
    ids_ = std::move(kept);
    return true;
}

} // namespace quorel
