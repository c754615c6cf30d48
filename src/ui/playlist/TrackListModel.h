#pragma once

#include <QAbstractListModel>

namespace quorel {

class PlayerController;

/// The rows that the track list shows. Nothing is kept here: a row is looked up when it is painted.
class TrackListModel final : public QAbstractListModel {
    Q_OBJECT

  public:
    TrackListModel(PlayerController& player, QObject* parent);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  private:
    void showOthers();
    void rowsChanged();

    PlayerController& player_;
    int count_ = 0; ///< as the view was told
};

} // namespace quorel
