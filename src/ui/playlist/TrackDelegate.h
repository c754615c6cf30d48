#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QStyledItemDelegate>

namespace quorel {

class MissingFiles;
class PlayerController;
class TrackListModel;
struct Track;

/// Paints a row of the track list: its number or the mark of the playing track, its label, its
/// length. Rows whose files are gone are dim.
class TrackDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    TrackDelegate(PlayerController& player, MissingFiles& missing, TrackListModel& model,
                  QObject* parent);

    /// In pixels; the same for all rows.
    int rowHeight() const;
    /// Takes over the font size of the settings.
    void refreshFont();

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// What a tooltip says of a row that wide: what cannot be seen of it; empty where all can.
    QString toolTip(const QModelIndex& index, int width) const;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

  private:
    struct Columns {
        QRectF number;
        QRectF label;
        QRectF length;
    };

    Columns columnsOf(const QRectF& area, const Track& track) const;
    void paintGround(QPainter& painter, const QRectF& area, const QStyleOptionViewItem& option,
                     int row, bool selected) const;
    bool isPlaying(const Track& track) const;

    PlayerController& player_;
    MissingFiles& missing_;
    TrackListModel& model_;
    QFont font_;
    QFontMetricsF metrics_;
};

} // namespace quorel
