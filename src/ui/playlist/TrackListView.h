#pragma once

#include <QListView>

namespace quorel {

class PlayerController;
struct Track;

/// The tracks of the active playlist. What is selected is the controller's; the view only has a
/// current row.
class TrackListView final : public QListView {
    Q_OBJECT

  public:
    explicit TrackListView(PlayerController& player, QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    const Track* trackAt(const QModelIndex& index) const;
    void play(const QModelIndex& index);

    PlayerController& player_;
};

} // namespace quorel
