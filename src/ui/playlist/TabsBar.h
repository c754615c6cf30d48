#pragma once

#include "core/Clock.h"

#include <QPointer>
#include <QUuid>
#include <QWidget>
#include <optional>

class QMimeData;

namespace quorel {

class PlayerController;
class RenameField;
class TabRow;
class TransportButton;

/// The strip of playlist tabs with the button for a new one. It scrolls where they do not fit, by
/// itself while something is dragged over its ends.
/// Files dropped on a tab go to its playlist, those dropped on the free end to a new one; a tab
/// dropped on another takes its place.
class TabsBar final : public QWidget {
    Q_OBJECT

  public:
    /// Player and clock outlive it.
    TabsBar(PlayerController& player, Clock& clock, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    TabRow& tabs() const { return *row_; }
    void rename(const QUuid& playlist);
    /// Shows the playlist that many tabs further, around the ends.
    void step(int by);
    /// A new tab is offered to files that are dragged over the free end.
    bool showsGhost() const { return ghost_; }

  Q_SIGNALS:
    void loadRequested();
    void saveRequested(const QUuid& playlist);
    void renamingEnded();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void place();
    void scrollTo(int offset);
    void showTab(int index);
    void showCurrent();
    QRect fieldArea(int index) const;
    void paintGhost(QPainter& painter) const;
    /// The tab there, the number of tabs for the free end.
    int dropIndexAt(const QPoint& at) const;
    bool canDrop(const QMimeData& dragged, int index) const;
    void showFileTarget(int index);
    void showTabTarget(const QUuid& tab, int index);
    void showNoTarget();
    void setGhost(bool shown);
    /// Whether it may be dropped there.
    bool dragOver(const QMimeData& dragged, const QPoint& at);
    void scrollStep();
    void endDragOver();

    PlayerController& player_;
    Clock& clock_;
    QWidget* window_; ///< what is seen of the tabs
    TabRow* row_;
    QWidget* fades_[2]; ///< over the ends where more tabs follow
    TransportButton* add_;
    QPointer<RenameField> field_;
    int offset_ = 0; ///< pixels scrolled
    bool ghost_ = false;

    QPointer<const QMimeData> dragged_; ///< over it
    QPoint draggedAt_;
    std::unique_ptr<Timer> scrolling_;
};

} // namespace quorel
