// Long random use of playlists, selection, search and shuffle order together, against plain lists
// that are edited one track at a time.
#include "player/MadeList.h"
#include "player/PlaylistTabs.h"
#include "player/RemovalHistory.h"
#include "player/Selection.h"
#include "player/ShuffleOrder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

using namespace quorel;
using namespace quorel::test;

namespace {

using Ids = std::vector<QUuid>;

Ids idsOf(const TrackList& list) {
    Ids ids;
    for (const Track& track : list.tracks())
        ids.push_back(track.id);
    return ids;
}

/// What a view that keeps something by row makes of an edit.
void replay(const TracksEdit& edit, Ids& ids, const TrackList& after) {
    Ids moved;
    qsizetype gap = edit.gap;
    if (edit.kind == TracksEdit::Kind::Inserted) {
        for (const RowRange& range : edit.ranges)
            for (qsizetype row = range.first; row < range.first + range.count; ++row)
                ids.insert(ids.begin() + row, after.tracks().at(row).id);
        return;
    }
    for (auto range = edit.ranges.rbegin(); range != edit.ranges.rend(); ++range) {
        const auto first = ids.begin() + range->first;
        moved.insert(moved.begin(), first, first + range->count);
        ids.erase(first, first + range->count);
        gap -= std::clamp<qsizetype>(edit.gap - range->first, 0, range->count);
    }
    if (edit.kind == TracksEdit::Kind::Moved)
        ids.insert(ids.begin() + gap, moved.begin(), moved.end());
}

class Soak {
  public:
    explicit Soak(quint64 seed)
        : random_(seed)
        , order_([random = std::mt19937_64(seed)]() mutable { return random(); }) {}

    void step() {
        TrackList& list = tabs_.active();
        before_ = idsOf(list);
        switch (below(13)) {
        case 0:
            return add(list);
        case 1:
            return remove(list);
        case 2:
            return undoRemove();
        case 3:
            return move(list);
        case 4:
            return moveAsOneByOne(list);
        case 5:
            return changeTabs();
        case 6:
            return takeNext();
        case 7:
            return order_.rollBack();
        case 8:
            return type(list);
        default:
            return click(list);
        }
    }

    void check() const {
        ASSERT_GT(tabs_.size(), 0);
        ASSERT_TRUE(tabs_.indexOf(tabs_.activeId()));
        const TrackList& list = tabs_.active();
        for (qsizetype row = 0; row < list.size(); ++row)
            ASSERT_EQ(list.rowOf(list.tracks().at(row).id), row);
        for (const QUuid& id : selection_.ids().ids())
            ASSERT_TRUE(list.contains(id));
        if (const TrackList* const playing = tabs_.find(order_.playlist())) {
            Ids living;
            std::ranges::copy_if(order_.order(), std::back_inserter(living),
                                 [&](const QUuid& id) { return playing->contains(id); });
            ASSERT_TRUE(std::ranges::is_permutation(living, idsOf(*playing)));
            ASSERT_LT(order_.position(), qsizetype(order_.order().size()));
        }
    }

  private:
    qsizetype below(qsizetype bound) {
        return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random_);
    }

    std::vector<qsizetype> someRows(const TrackList& list) {
        std::vector<qsizetype> rows;
        const qsizetype oneIn = 1 + below(6);
        for (qsizetype row = 0; row < list.size(); ++row)
            if (below(oneIn) == 0)
                rows.push_back(row);
        return rows;
    }

    void edited(const TracksEdit& edit, const TrackList& list) {
        search_.rowsEdited(edit);
        replay(edit, before_, list);
        ASSERT_EQ(before_, idsOf(list));
        selection_.keepOnly(tabs_.active());
    }

    void add(TrackList& list) {
        if (list.size() > 60)
            return edited(list.clear(), list);
        QList<Track> block;
        for (qsizetype i = below(9); i > 0; --i)
            block += Track::fromPath(QStringLiteral("/music/%1.flac").arg(below(100)));
        Ids ids;
        for (const Track& track : block)
            ids.push_back(track.id);
        edited(list.insert(below(70) - 5, std::move(block)), list);
        order_.insert(ids, list.id());
    }

    void remove(TrackList& list) {
        const Playlist whole = list.playlist();
        const auto rows = someRows(list);
        if (!history_.remove(list, rows))
            return;
        if (below(2) == 0) { // at once undone, as if nothing had been
            list.restore(history_.takeNewest()->removed);
            ASSERT_EQ(list.playlist(), whole);
            return;
        }
        edited({TracksEdit::Kind::Removed, rangesOf(rows)}, list);
    }

    void undoRemove() {
        auto removal = history_.takeNewest();
        TrackList* const list = removal ? tabs_.find(removal->playlist) : nullptr;
        if (!list)
            return;
        Ids ids = idsOf(*list);
        Ids restored;
        for (qsizetype i = 0; i < removal->removed.tracks.size(); ++i) {
            restored.push_back(removal->removed.tracks.at(i).id);
            const qsizetype row =
                std::min(removal->removed.rows[std::size_t(i)], qsizetype(ids.size()));
            ids.insert(ids.begin() + row, restored.back());
        }
        before_ = idsOf(*list);
        edited(list->restore(std::move(removal->removed)), *list);
        ASSERT_EQ(idsOf(*list), ids);
        if (list->id() != tabs_.activeId())
            search_.reset();
        order_.insert(restored, list->id());
    }

    void move(TrackList& list) {
        const auto rows = someRows(list);
        edited(list.move(rows, below(list.size() + 3) - 1), list);
    }

    /// A block moved at once ends up as moved track by track.
    void moveAsOneByOne(TrackList& list) {
        if (list.isEmpty())
            return;
        const qsizetype first = below(list.size());
        const qsizetype count = 1 + below(list.size() - first);
        const qsizetype gap = below(list.size() + 1);
        TrackList slow = list;
        for (qsizetype i = 0; i < count; ++i)
            if (gap > first)
                slow.move({first}, std::max(gap, first + count));
            else
                slow.move({first + i}, gap + i);
        std::vector<qsizetype> rows(static_cast<std::size_t>(count));
        std::iota(rows.begin(), rows.end(), first);
        // Dropped within itself, a block stays; so does what goes around it in a circle.
        edited(list.move(rows, gap), list);
        ASSERT_EQ(idsOf(slow), idsOf(list));
    }

    void changeTabs() {
        const QUuid before = tabs_.activeId();
        const QUuid some = tabs_.at(below(tabs_.size())).id();
        switch (below(7)) {
        case 0:
            tabs_.create(tabs_.nextName());
            break;
        case 1:
            tabs_.close(some);
            break;
        case 2:
            tabs_.undoClose();
            break;
        case 3:
            tabs_.rename(some, QString::number(below(9)));
            break;
        case 4:
            tabs_.undoRename();
            break;
        case 5:
            tabs_.move(some, below(20) - 5);
            break;
        default:
            tabs_.activate(some);
            break;
        }
        if (tabs_.activeId() == before)
            return;
        selection_.clear();
        search_.reset();
        if (below(3) == 0)
            order_.start(tabs_.active(), {});
    }

    /// What is looked up is what is then taken, queued or not.
    void takeNext() {
        const TrackList& list = tabs_.active();
        const IdSet none;
        const auto next = order_.peekNext(list, cursor_, below(2) == 0, none);
        ASSERT_EQ(next.has_value() && !list.contains(*next), false);
        if (!next)
            return;
        if (below(2) == 0)
            order_.take(*next, list, cursor_);
        else
            order_.takeQueued(*next, list, cursor_);
        ASSERT_EQ(order_.order().at(std::size_t(order_.position())), *next);
        cursor_ = next;
    }

    void type(const TrackList& list) {
        const QString text = QString::number(below(12));
        const VisibleRows visible = search_.find(list, text);
        std::vector<qint32> expected;
        for (qsizetype row = 0; row < list.size(); ++row)
            if (list.tracks().at(row).title.contains(text))
                expected.push_back(static_cast<qint32>(row));
        ASSERT_EQ(visible, VisibleRows(expected));
        selection_.selectAll(list, visible);
        ASSERT_EQ(list.rowsOf(selection_.ids().ids()).size(), expected.size());
    }

    void click(const TrackList& list) {
        if (!list.isEmpty())
            selection_.click(list, list.tracks().at(below(list.size())).id, below(3) == 0,
                             below(3) == 0);
    }

    std::mt19937_64 random_;
    PlaylistTabs tabs_{{}, std::nullopt};
    Selection selection_;
    TrackSearch search_;
    RemovalHistory history_;
    ShuffleOrder order_;
    std::optional<QUuid> cursor_;
    Ids before_;
};

} // namespace

TEST(PlayerSoak, keepsItsInvariants) {
    for (quint64 seed = 1; seed <= 4; ++seed) {
        Soak soak(seed);
        for (int i = 0; i < 10'000; ++i) {
            soak.step();
            soak.check();
            if (testing::Test::HasFatalFailure())
                FAIL() << "seed " << seed << ", step " << i;
        }
    }
}
