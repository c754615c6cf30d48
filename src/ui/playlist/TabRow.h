#pragma once

#include <QTabBar>
#include <QUuid>
#include <optional>

namespace quorel {

class PlayerController;

/// One tab per playlist. Clicking one, or the arrow keys, show it; tabs are dragged from here, but
/// dropped on the TabsBar.
class TabRow final : public QTabBar {
    Q_OBJECT

  public:
    TabRow(PlayerController& player, QWidget* parent);

    /// The playlist of the tab at a place of this widget.
    std::optional<QUuid> playlistAt(const QPoint& at) const;
    enum class Mark { None, Tab, Before, After };
    /// Marks a tab that something is dragged over, or the side of it where a tab would go.
    void markTarget(Mark mark, int index = -1);
    int target() const { return target_; } ///< -1 for none
    /// Of all tabs, in pixels.
    int tabsWidth() const { return tabRect(count() - 1).right() + 1; }

  Q_SIGNALS:
    void renameRequested(const QUuid& playlist);
    void closeRequested(const QUuid& playlist);
    void focused();

  protected:
    bool event(QEvent* event) override;
    QSize tabSizeHint(int index) const override;
    QSize minimumTabSizeHint(int index) const override { return tabSizeHint(index); }
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;

  private:
    void refresh();
    void paintTab(QPainter& painter, int index) const;
    int hoveredTab() const; ///< -1 for none
    void startDrag(int index);

    PlayerController& player_;
    std::optional<QPoint> pressedAt_;
    std::optional<QUuid> closing_; ///< the middle button was pressed on it
    Mark mark_ = Mark::None;
    int target_ = -1;
    int hovered_ = -1; ///< as it is painted
};

} // namespace quorel
