#pragma once

#include "player/IdSet.h"
#include "player/TrackList.h"

#include <functional>

namespace quorel {

/// A random order of one playlist's tracks and a cursor that walks it. Tracks that have left the
/// playlist are passed over; should they come back, they stand where they stood.
class ShuffleOrder {
  public:
    /// Evenly distributed 64-bit numbers.
    using Random = std::function<quint64()>;

    explicit ShuffleOrder(Random random)
        : random_(std::move(random)) {
        pass_.pick = random_();
    }

    /// Draws a new order. A track to start with comes first and counts as played.
    void start(const TrackList& list, const std::optional<QUuid>& startingWith);

    /// The track that follows `cursor`, the one playing or tried last; nothing at the end. With
    /// `repeat`, a new order follows a used-up one; it begins with another track than the cursor
    /// where it can. Those in `failed` are left out. The answer stays until something changes.
    std::optional<QUuid> peekNext(const TrackList& list, const std::optional<QUuid>& cursor,
                                  bool repeat, const IdSet& failed) const;
    /// That track is played next: what peekNext() gave, or what was planned earlier.
    void take(QUuid track, const TrackList& list, const std::optional<QUuid>& cursor);
    /// The same for a track that is only queued: rollBack() undoes it until confirm() is called.
    void takeQueued(QUuid track, const TrackList& list, const std::optional<QUuid>& cursor);
    void confirm() { beforeQueued_.reset(); }
    void rollBack();

    std::optional<QUuid> peekPrevious(const TrackList& list) const;
    /// The cursor goes back to what peekPrevious() gave.
    void goBack(QUuid track);

    /// Gives new tracks of that playlist random places among those not yet played.
    void insert(const std::vector<QUuid>& newTracks, const QUuid& playlist);

    const std::vector<QUuid>& order() const { return pass_.order; }
    /// Of the cursor in the order, -1 while that is empty.
    qsizetype position() const { return pass_.position; }
    const std::optional<QUuid>& playlist() const { return pass_.playlist; }

  private:
    struct Pass {
        std::optional<QUuid> playlist;
        std::vector<QUuid> order;
        qsizetype position = -1;
        bool entered = false; ///< whether the track at the cursor counts as played
        quint64 pick = 0;     ///< which track begins the next order

        qsizetype firstUnplayed() const {
            return entered ? position + 1 : std::max(position, qsizetype{0});
        }
    };

    bool isFor(const TrackList& list) const {
        return pass_.playlist == list.id() && !pass_.order.empty();
    }
    std::optional<QUuid> firstOfNewPass(const TrackList& list, const std::optional<QUuid>& cursor,
                                        bool repeat, const IdSet& failed) const;
    bool isUsedUp(const TrackList& list) const;
    std::size_t below(std::size_t bound);
    void shuffle(std::vector<QUuid>& ids);
    void insert(Pass& pass, const std::vector<QUuid>& newTracks);

    Random random_;
    Pass pass_;
    std::optional<Pass> beforeQueued_;
};

} // namespace quorel
