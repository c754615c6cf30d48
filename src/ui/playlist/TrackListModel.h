#pragma once

#include <QAbstractListModel>

namespace quorel {

class PlayerController;
struct Track;

/// The rows that the track list shows. Nothing is kept here: a row is looked up when it is painted.
/// Whatever changes the rows resets the model; the view keeps its place by itself.
class TrackListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    TrackListModel(PlayerController& player, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    /// The track shown there; null for an index that is not valid.
    const Track* trackAt(const QModelIndex& index) const;
    /// The row of the playlist that is shown there.
    qsizetype playlistRow(int shownRow) const;
    /// Where a row of the playlist, or the first one shown after it, is shown; rowCount() without.
    int shownRow(qsizetype playlistRow) const;
    /// The gap of the playlist that a gap between shown rows stands for: hidden rows between the
    /// two stay behind it.
    qsizetype playlistGap(int shownGap) const;

  private:
    void showOthers();
    void rowsChanged();
    QString spokenText(const Track& track, qsizetype row) const;

    PlayerController& player_;
    int count_ = 0; ///< as the view was told
};

} // namespace quorel
