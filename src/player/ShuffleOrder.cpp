#include "player/ShuffleOrder.h"

#include <algorithm>

namespace quorel {

void ShuffleOrder::start(const TrackList& list, const std::optional<QUuid>& startingWith) {
    pass_.playlist = list.id();
    pass_.order.clear();
    pass_.order.reserve(std::size_t(list.size()));
    for (const Track& track : list.tracks())
        pass_.order.push_back(track.id);
    shuffle(pass_.order);
    pass_.position = pass_.order.empty() ? -1 : 0;
    pass_.entered = false;
    pass_.pick = random_();
    const auto first =
        startingWith ? std::ranges::find(pass_.order, *startingWith) : pass_.order.end();
    if (first != pass_.order.end()) {
        // The others keep their order, which is random without the first one, too.
        std::rotate(pass_.order.begin(), first, first + 1);
        pass_.entered = true;
    }
}

std::optional<QUuid> ShuffleOrder::peekNext(const TrackList& list,
                                            const std::optional<QUuid>& cursor, bool repeat,
                                            const IdSet& failed) const {
    if (isFor(list)) {
        for (auto i = std::size_t(pass_.firstUnplayed()); i < pass_.order.size(); ++i)
            if (list.contains(pass_.order[i]) && !failed.contains(pass_.order[i]))
                return pass_.order[i];
        if (!repeat)
            return std::nullopt;
    }
    return firstOfNewPass(list, cursor, repeat, failed);
}

/// Chosen by a number drawn beforehand, so that asking twice gives the same.
std::optional<QUuid> ShuffleOrder::firstOfNewPass(const TrackList& list,
                                                  const std::optional<QUuid>& cursor, bool repeat,
                                                  const IdSet& failed) const {
    const auto row = cursor ? list.rowOf(*cursor) : std::nullopt;
    const qsizetype others = list.size() - (row ? 1 : 0);
    const auto start = others > 0 ? qsizetype(pass_.pick % quint64(others)) : 0;
    for (qsizetype i = 0; i < others; ++i) {
        const qsizetype other = (start + i) % others;
        const QUuid& id = list.tracks().at(row && other >= *row ? other + 1 : other).id;
        if (!failed.contains(id))
            return id;
    }
    return row && repeat && !failed.contains(*cursor) ? cursor : std::nullopt;
}

bool ShuffleOrder::isUsedUp(const TrackList& list) const {
    return std::none_of(pass_.order.begin() + pass_.firstUnplayed(), pass_.order.end(),
                        [&list](const QUuid& id) { return list.contains(id); });
}

void ShuffleOrder::take(QUuid track, const TrackList& list, const std::optional<QUuid>& cursor) {
    beforeQueued_.reset();
    if (!isFor(list)) {
        const bool isCursorListed = cursor && list.contains(*cursor);
        start(list, isCursorListed ? *cursor : track);
    }
    std::vector<QUuid>& order = pass_.order;
    if (pass_.entered && order[std::size_t(pass_.position)] == track)
        return;
    const auto unplayed = order.begin() + pass_.firstUnplayed();
    const auto found = std::find(unplayed, order.end(), track);
    if (found != order.end()) {
        std::rotate(unplayed, found, found + 1);
    } else if (isUsedUp(list)) {
        start(list, track);
        return;
    } else {
        // Planned before others came to be played, or not known here yet.
        pass_.position -=
            std::erase_if(order, [&](const QUuid& id) { return id == track; }) ? 1 : 0;
        order.insert(order.begin() + pass_.firstUnplayed(), track);
    }
    pass_.position = pass_.firstUnplayed();
    pass_.entered = true;
}

void ShuffleOrder::takeQueued(QUuid track, const TrackList& list,
                              const std::optional<QUuid>& cursor) {
    Pass before = pass_;
    take(track, list, cursor);
    beforeQueued_ = std::move(before);
}

void ShuffleOrder::rollBack() {
    if (beforeQueued_)
        pass_ = std::move(*beforeQueued_);
    beforeQueued_.reset();
}

std::optional<QUuid> ShuffleOrder::peekPrevious(const TrackList& list) const {
    if (!isFor(list))
        return std::nullopt;
    for (qsizetype i = pass_.position; i-- > 0;)
        if (list.contains(pass_.order[std::size_t(i)]))
            return pass_.order[std::size_t(i)];
    return std::nullopt;
}

void ShuffleOrder::goBack(QUuid track) {
    const auto found = std::ranges::find(pass_.order, track);
    if (found - pass_.order.begin() < pass_.position)
        pass_.position = found - pass_.order.begin();
    beforeQueued_.reset();
}

void ShuffleOrder::insert(const std::vector<QUuid>& newTracks, const QUuid& playlist) {
    if (pass_.playlist == playlist)
        insert(pass_, newTracks);
    if (beforeQueued_ && beforeQueued_->playlist == playlist)
        insert(*beforeQueued_, newTracks);
}

void ShuffleOrder::insert(Pass& pass, const std::vector<QUuid>& newTracks) {
    IdSet known;
    known.reserve(pass.order.size() + newTracks.size());
    for (const QUuid& id : pass.order)
        known.insert(id);
    std::vector<QUuid> added;
    std::ranges::copy_if(newTracks, std::back_inserter(added),
                         [&known](const QUuid& id) { return known.insert(id); });
    shuffle(added);

    // A random merge: every interleaving of the two is equally likely.
    const std::vector<QUuid> unplayed(pass.order.begin() + pass.firstUnplayed(), pass.order.end());
    pass.order.resize(std::size_t(pass.firstUnplayed()));
    auto old = unplayed.begin();
    auto fresh = added.begin();
    while (old != unplayed.end() || fresh != added.end()) {
        const auto oldLeft = std::size_t(unplayed.end() - old);
        const auto freshLeft = std::size_t(added.end() - fresh);
        pass.order.push_back(below(oldLeft + freshLeft) < freshLeft ? *fresh++ : *old++);
    }
    if (pass.position < 0 && !pass.order.empty())
        pass.position = 0;
}

/// Evenly distributed in 0..bound-1.
std::size_t ShuffleOrder::below(std::size_t bound) {
    // The topmost numbers that do not make a whole multiple of the bound are drawn again.
    const quint64 excess = (~quint64{0} % bound + 1) % bound;
    quint64 drawn = random_();
    while (drawn > ~excess)
        drawn = random_();
    return std::size_t(drawn % bound);
}

void ShuffleOrder::shuffle(std::vector<QUuid>& ids) {
    for (std::size_t i = ids.size(); i > 1; --i)
        std::swap(ids[i - 1], ids[below(i)]);
}

} // namespace quorel
