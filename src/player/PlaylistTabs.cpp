#include "player/PlaylistTabs.h"

#include "model/Path.h"

#include <algorithm>

namespace quorel {

namespace {

template <class Entry>
void pushLimited(std::deque<Entry>& history, Entry entry, std::size_t limit) {
    history.push_back(std::move(entry));
    if (history.size() > limit)
        history.pop_front();
}

Playlist firstPlaylist() {
    return Playlist::named(QStringLiteral("Playlist 1"));
}

} // namespace

PlaylistTabs::PlaylistTabs(QList<Playlist> playlists, const std::optional<QUuid>& active) {
    if (playlists.isEmpty())
        playlists += firstPlaylist();
    lists_.reserve(std::size_t(playlists.size()));
    for (Playlist& playlist : playlists) {
        if (indexOf(playlist.id)) // somebody has edited the file
            playlist.id = QUuid::createUuid();
        lists_.emplace_back(std::move(playlist));
    }
    active_ = indexOf(active) ? *active : lists_.front().id();
}

QList<Playlist> PlaylistTabs::records() const {
    QList<Playlist> records;
    records.reserve(size());
    for (const TrackList& list : lists_)
        records += list.playlist();
    return records;
}

std::optional<qsizetype> PlaylistTabs::indexOf(const std::optional<QUuid>& id) const {
    const auto found =
        std::ranges::find_if(lists_, [&id](const TrackList& list) { return list.id() == id; });
    return found == lists_.end() ? std::nullopt : std::optional(found - lists_.begin());
}

const TrackList* PlaylistTabs::find(const std::optional<QUuid>& id) const {
    const auto index = indexOf(id);
    return index ? &lists_[std::size_t(*index)] : nullptr;
}

TrackList* PlaylistTabs::find(const std::optional<QUuid>& id) {
    const auto index = indexOf(id);
    return index ? &lists_[std::size_t(*index)] : nullptr;
}

bool PlaylistTabs::activate(QUuid id) {
    if (id == active_ || !indexOf(id))
        return false;
    active_ = id;
    return true;
}

QString PlaylistTabs::nextName() const {
    return QStringLiteral("Playlist %1").arg(size() + 1);
}

QUuid PlaylistTabs::create(const QString& name, QList<Track> tracks) {
    Playlist playlist = Playlist::named(name);
    playlist.tracks = std::move(tracks);
    active_ = playlist.id;
    lists_.emplace_back(std::move(playlist));
    return active_;
}

bool PlaylistTabs::rename(QUuid id, const QString& name) {
    TrackList* const list = find(id);
    const QString trimmed = trimmedOfBlanks(name).toString();
    if (!list || trimmed.isEmpty())
        return false;
    pushLimited(renames_, {id, list->name()}, kMostRenames);
    list->rename(trimmed);
    return true;
}

bool PlaylistTabs::undoRename() {
    if (renames_.empty())
        return false;
    const Rename newest = std::move(renames_.back());
    renames_.pop_back();
    TrackList* const list = find(newest.playlist);
    if (list)
        list->rename(newest.previousName);
    return list != nullptr;
}

bool PlaylistTabs::move(QUuid id, qsizetype toIndex) {
    const auto from = indexOf(id);
    const qsizetype to = std::clamp<qsizetype>(toIndex, 0, size() - 1);
    if (!from || *from == to)
        return false;
    const auto first = lists_.begin() + std::min(*from, to);
    const auto last = lists_.begin() + std::max(*from, to) + 1;
    std::rotate(first, *from < to ? first + 1 : last - 1, last);
    return true;
}

bool PlaylistTabs::canShift(QUuid id, qsizetype by) const {
    const auto index = indexOf(id);
    // Without a sum that could overflow.
    return index && by >= -*index && by < size() - *index;
}

bool PlaylistTabs::shift(QUuid id, qsizetype by) {
    if (!canShift(id, by))
        return false;
    const auto index = std::size_t(*indexOf(id));
    std::swap(lists_[index], lists_[index + std::size_t(by)]);
    return by != 0;
}

bool PlaylistTabs::close(QUuid id) {
    const auto index = indexOf(id);
    if (!index)
        return false;
    Closed closed{*index, take(*index), std::nullopt};
    if (lists_.empty())
        closed.placeholder = lists_.emplace_back(firstPlaylist()).id();
    pushLimited(closed_, std::move(closed), kMostClosed);
    if (id == active_)
        active_ = lists_.front().id();
    return true;
}

bool PlaylistTabs::undoClose() {
    if (closed_.empty())
        return false;
    const std::optional<QUuid> givesWay = placeholder();
    Closed newest = std::move(closed_.back());
    closed_.pop_back();
    if (givesWay)
        take(*indexOf(givesWay));
    active_ = newest.list.id();
    lists_.insert(lists_.begin() + std::min(newest.index, size()), std::move(newest.list));
    return true;
}

std::optional<QUuid> PlaylistTabs::placeholder() const {
    const TrackList* list = closed_.empty() ? nullptr : find(closed_.back().placeholder);
    return list && list->isEmpty() ? std::optional(list->id()) : std::nullopt;
}

const Playlist* PlaylistTabs::newestClosed() const {
    return closed_.empty() ? nullptr : &closed_.back().list.playlist();
}

const PlaylistTabs::Rename* PlaylistTabs::newestRename() const {
    return renames_.empty() ? nullptr : &renames_.back();
}

TrackList PlaylistTabs::take(qsizetype index) {
    TrackList list = std::move(lists_[std::size_t(index)]);
    lists_.erase(lists_.begin() + index);
    return list;
}

} // namespace quorel
