#pragma once

#include "player/TrackList.h"

#include <functional>
#include <string>

namespace quorel {

/// The rows of a playlist that a view shows, ascending.
class VisibleRows {
  public:
    /// All of that many rows.
    explicit VisibleRows(qsizetype all = 0)
        : all_(all) {}
    /// Those only, ascending.
    explicit VisibleRows(std::vector<qint32> rows)
        : some_(std::move(rows))
        , filtered_(true) {}

    bool isFiltered() const { return filtered_; }
    qsizetype size() const { return filtered_ ? qsizetype(some_.size()) : all_; }
    qsizetype rowAt(qsizetype index) const { return filtered_ ? some_[std::size_t(index)] : index; }
    /// The index of the first visible row from that row on; size() without one.
    qsizetype indexFrom(qsizetype row) const;

    bool operator==(const VisibleRows&) const = default;

  private:
    qsizetype all_ = 0;
    std::vector<qint32> some_;
    bool filtered_ = false;
};

/// Finds the tracks of the shown playlist whose title, artist or album contains a text, in whatever
/// case; accents count. Their texts are kept folded to lower case, in chunks of rows, each made
/// when it is first searched; whoever changes a track or the rows says so, and only the chunks that
/// were touched are made again.
class TrackSearch {
  public:
    /// Blanks around the text do not count; an empty text finds every track.
    VisibleRows find(const TrackList& shown, const QString& text);

    /// Makes a part of what find() needs, some 5,000 rows, so that the first letter typed does not
    /// wait for it; true when all is made.
    bool prepareSome(const TrackList& shown);

    /// Another list is shown, or all of it changed.
    void reset() { chunks_.clear(); }
    void rowsEdited(const TracksEdit& edit);
    void tracksChanged(const std::vector<RowRange>& rows);

  private:
    struct Chunk {
        qsizetype rows = 0;
        std::string text = {};          ///< UTF-8; kBetween after each field
        std::vector<quint32> ends = {}; ///< of each track's fields in the text
        bool isCurrent = false;
    };

    /// Makes at most that many chunks; true when none is left.
    bool foldStale(const TrackList& shown, std::size_t chunks);
    void removeRows(const std::vector<RowRange>& ranges);
    void insertRows(const std::vector<RowRange>& ranges);
    /// Of each chunk that has rows in the ranges, with their number.
    void forOverlaps(const std::vector<RowRange>& ranges,
                     const std::function<void(Chunk&, qsizetype)>& act);
    /// Chunks to be made, of that many rows in all.
    static void appendChunks(std::vector<Chunk>& chunks, qsizetype rows);
    static void fold(Chunk& chunk, std::span<const Track> tracks);

    std::vector<Chunk> chunks_;
};

} // namespace quorel
