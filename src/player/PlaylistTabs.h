#pragma once

#include "player/TrackList.h"

#include <deque>

namespace quorel {

/// The playlists in the order of their tabs, which of them is shown, and the undo histories of
/// closing and renaming. There is always a playlist, and one is always shown. Operations on an
/// unknown id do nothing; they return whether they did something. References to lists hold until
/// the next operation on tabs.
class PlaylistTabs {
  public:
    static constexpr std::size_t kMostClosed = 10;
    static constexpr std::size_t kMostRenames = 20;

    struct Rename {
        QUuid playlist;
        QString previousName;
    };

    /// Playlists as loaded; where there are none, an empty "Playlist 1". The first tab is shown
    /// where `active` is none of them.
    PlaylistTabs(QList<Playlist> playlists, const std::optional<QUuid>& active);

    qsizetype size() const { return qsizetype(lists_.size()); }
    const TrackList& at(qsizetype index) const { return lists_[std::size_t(index)]; }
    /// Records for saving; they share their tracks with the lists.
    QList<Playlist> records() const;
    /// There are few tabs: this goes through them.
    std::optional<qsizetype> indexOf(const std::optional<QUuid>& id) const;
    const TrackList* find(const std::optional<QUuid>& id) const;
    TrackList* find(const std::optional<QUuid>& id);

    const QUuid& activeId() const { return active_; }
    const TrackList& active() const { return at(*indexOf(active_)); }
    TrackList& active() { return lists_[std::size_t(*indexOf(active_))]; }
    bool activate(QUuid id);

    /// "Playlist N", N being the number of playlists with the new one.
    QString nextName() const;
    /// A new tab at the end, which is shown; returns its id.
    QUuid create(const QString& name, QList<Track> tracks = {});
    bool rename(QUuid id, const QString& name);
    bool move(QUuid id, qsizetype toIndex);
    bool shift(QUuid id, qsizetype by);
    bool canShift(QUuid id, qsizetype by) const;

    /// Playback from that playlist is to be stopped before. The first tab is shown where this one
    /// was; an empty "Playlist 1" takes the place of the last.
    bool close(QUuid id);
    /// Shows the tab that was closed last where it was. A "Playlist 1" that had taken its place is
    /// removed, unless something was put into it since.
    bool undoClose();
    /// The tab that undoClose() would remove.
    std::optional<QUuid> placeholder() const;
    /// False also where the playlist is no more; the history is a step shorter even so.
    bool undoRename();

    /// What the next undo would bring back, null without any.
    const Playlist* newestClosed() const;
    const Rename* newestRename() const;

  private:
    struct Closed {
        qsizetype index = 0;
        TrackList list;
        std::optional<QUuid> placeholder; ///< made because the closed tab was the last
    };

    TrackList take(qsizetype index);

    std::vector<TrackList> lists_;
    QUuid active_;
    std::deque<Closed> closed_;
    std::deque<Rename> renames_;
};

} // namespace quorel
