#pragma once

#include <QStyledItemDelegate>

namespace quorel {

class PlayerController;

/// Paints a row of the track list: its number or the mark of the playing track, its label, its
/// length.
class TrackDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    TrackDelegate(PlayerController& player, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  private:
    PlayerController& player_;
};

} // namespace quorel
