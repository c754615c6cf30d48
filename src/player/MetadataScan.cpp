#include "player/MetadataScan.h"

#include "player/MetadataFold.h"

#include <algorithm>
#include <utility>

namespace quorel {

namespace {

const Track* findTrack(const PlaylistTabs& tabs, const QUuid& id) {
    for (qsizetype i = 0; i < tabs.size(); ++i)
        if (const auto row = tabs.at(i).rowOf(id))
            return &tabs.at(i).tracks().at(*row);
    return nullptr;
}

} // namespace

void MetadataScan::request(const PlaylistTabs& tabs) {
    if (isRunning_) {
        isRequestedAgain_ = true;
        return;
    }
    waiting_.clear();
    nextWaiting_ = 0;
    firstAfterSaving_.clear();
    for (qsizetype i = 0; i < tabs.size(); ++i)
        for (const Track& track : tabs.at(i).tracks())
            if (needsMetadata(track))
                waiting_.push_back(track.id);
    isRunning_ = !waiting_.empty();
}

void MetadataScan::cancel() {
    waiting_.resize(nextWaiting_);
    isRequestedAgain_ = false;
}

std::optional<MetadataScan::File> MetadataScan::next(const PlaylistTabs& tabs) {
    while (nextWaiting_ < waiting_.size()) {
        if (const Track* track = findTrack(tabs, waiting_[nextWaiting_++])) {
            ++givenOut_;
            return File{track->id, track->path, nextNumber_++};
        }
    }
    return std::nullopt;
}

void MetadataScan::read(const File& file, TrackMetadata metadata) {
    --givenOut_;
    if (isOutdated(file))
        waiting_.push_back(file.track);
    else
        batch_.push_back({file, std::move(metadata)});
}

void MetadataScan::tagsSaved(const QString& path) {
    if (!isRunning_)
        return;
    firstAfterSaving_[path] = nextNumber_;
    std::erase_if(batch_, [this](const Reading& reading) {
        const bool outdated = isOutdated(reading.file);
        if (outdated)
            waiting_.push_back(reading.file.track);
        return outdated;
    });
}

bool MetadataScan::isBatchReady() const {
    return isRunning_ && (batch_.size() >= kBatch || isAllRead());
}

MetadataScan::Applied MetadataScan::apply(PlaylistTabs& tabs) {
    Applied applied;
    for (qsizetype i = 0; i < tabs.size(); ++i) {
        TrackList& list = *tabs.find(tabs.at(i).id());
        if (const auto rows = applyTo(list); !rows.empty())
            applied.playlists.push_back({list.id(), rangesOf(rows)});
    }
    batch_.clear();
    if (isRunning_ && isAllRead()) {
        applied.scanEnded = true;
        isRunning_ = false;
        if (std::exchange(isRequestedAgain_, false))
            request(tabs);
    }
    return applied;
}

/// The rows that changed, ascending. A track that stays as it was is not touched: the list may be
/// shared with a snapshot, and would be copied for nothing.
std::vector<qsizetype> MetadataScan::applyTo(TrackList& list) const {
    std::vector<qsizetype> rows;
    for (const Reading& reading : batch_) {
        const auto row = list.rowOf(reading.file.track);
        if (!row)
            continue;
        const Track& known = list.tracks().at(*row);
        Track track = withMetadata(known, reading.metadata);
        if (track == known)
            continue;
        list.change(*row, [&track](Track& changed) { changed = std::move(track); });
        rows.push_back(*row);
    }
    std::ranges::sort(rows);
    return rows;
}

} // namespace quorel
