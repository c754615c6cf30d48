#pragma once

#include "player/PlaylistTabs.h"

#include <QHash>

namespace quorel {

/// Which files are still to be read for their tags and lengths, and what becomes of the readings.
/// Files are read elsewhere, one or a few at a time; the readings are put into the tracks in
/// batches, so that views are not kept busy. Tracks removed meanwhile are not read.
class MetadataScan {
  public:
    static constexpr std::size_t kBatch = 100;

    /// A file to be read because of that track.
    struct File {
        QUuid track;
        QString path;
        quint64 number = 0; ///< in the order in which files are given out
    };

    struct Applied {
        struct Rows {
            QUuid playlist;
            std::vector<RowRange> changed; ///< ascending, with gaps between them
        };
        std::vector<Rows> playlists; ///< those where something changed
        bool scanEnded = false;      ///< the state is to be saved
    };

    /// Begins to scan all tracks that need it, in the order of tabs and rows. While a scan is
    /// running, one more follows it, however often this is called.
    void request(const PlaylistTabs& tabs);
    bool isRunning() const { return isRunning_; }
    /// Files that wait are not given out any more; the scan ends with those that were.
    void cancel();

    qsizetype filesRead() const { return qsizetype(nextWaiting_ - givenOut_); }
    qsizetype filesInAll() const { return qsizetype(waiting_.size()); }

    /// The file to read next; nothing where none is left for now. Each is given back by read().
    std::optional<File> next(const PlaylistTabs& tabs);
    void read(const File& file, TrackMetadata metadata);

    /// The file's tags were replaced. What was read before that is dropped and read again.
    void tagsSaved(const QString& path);

    /// There is a full batch, or the scan comes to its end: time for apply(). To be asked after
    /// next() gave nothing and after read().
    bool isBatchReady() const;
    /// Puts the batch into all tracks it is about, wherever they stand now.
    Applied apply(PlaylistTabs& tabs);

  private:
    struct Reading {
        File file;
        TrackMetadata metadata;
    };

    bool isOutdated(const File& file) const {
        return file.number < firstAfterSaving_.value(file.path);
    }
    bool isAllRead() const { return nextWaiting_ == waiting_.size() && givenOut_ == 0; }
    std::vector<qsizetype> applyTo(TrackList& list) const;

    bool isRunning_ = false;
    bool isRequestedAgain_ = false;
    std::vector<QUuid> waiting_;
    std::size_t nextWaiting_ = 0;
    std::size_t givenOut_ = 0;
    quint64 nextNumber_ = 0;
    /// By path, the number from which on a reading shows the tags saved during the scan.
    QHash<QString, quint64> firstAfterSaving_;
    std::vector<Reading> batch_;
};

} // namespace quorel
