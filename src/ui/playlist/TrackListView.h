#pragma once

#include "ui/playlist/PlaylistAutoScroller.h"

#include <QHash>
#include <QListView>
#include <QUuid>
#include <optional>

namespace quorel {

class MissingFiles;
class PlayerController;
class TrackDelegate;
class TrackListModel;
struct Track;
struct TracksEdit;

/// The tracks of the active playlist. What is selected is the controller's; the view only has a
/// current row, which the keyboard moves. Rows and files are dragged within it, into and out of it.
class TrackListView final : public QListView {
    Q_OBJECT

  public:
    /// All of them outlive the view.
    TrackListView(PlayerController& player, Clock& clock, MissingFiles& missing,
                  QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// Makes the row of the playing track the current and only selected one and scrolls to it, in
    /// whatever playlist it is.
    void showPlayingTrack();
    /// With the focus, at the first row unless another is the current one.
    void enterByKeyboard();

    /// The gap between shown rows where what is dragged would land.
    std::optional<int> dropGap() const { return gap_; }
    const PlaylistAutoScroller& autoScroller() const { return scroller_; }

    void keyboardSearch(const QString& typed) override;

  Q_SIGNALS:
    void editTagsRequested(const QUuid& track);
    void showFileRequested(const QString& path);

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void dataChanged(const QModelIndex& first, const QModelIndex& last,
                     const QList<int>& roles) override;

  private:
    /// Where one is in a playlist: by tracks, as rows come and go.
    struct Place {
        QUuid top;            ///< the track at the upper edge; null at the very top
        qsizetype topRow = 0; ///< of the playlist
        int offset = 0;       ///< pixels of the top row above the edge
        QUuid current;        ///< null without
        qsizetype currentRow = 0;
    };

    // The current row.
    void play(const QModelIndex& index);
    bool moveByKey(const QKeyEvent& event);
    void goTo(int row, bool extend);
    void setCurrent(const QModelIndex& index);
    bool isTypingAhead() const;

    // Keeping the place.
    void remember();
    void findPlace(const TracksEdit* edit);
    qsizetype rowOf(const QUuid& track, qsizetype rowBefore, const TracksEdit* edit) const;

    // Dragging.
    void startDragOfSelection();
    void moveGap(const QPoint& pointer);
    void endDragOver();
    void drop(const QMimeData& dragged, int gap);

    void paintEmpty(QPainter& painter, const QRectF& area) const;
    void paintGap(QPainter& painter) const;

    PlayerController& player_;
    Clock& clock_;
    MissingFiles& missing_;
    TrackListModel* model_;
    TrackDelegate* delegate_;
    PlaylistAutoScroller scroller_;

    QHash<QUuid, Place> places_; ///< by playlist
    bool findingPlace_ = false;

    std::optional<QPoint> pressedAt_; ///< on a row, in the viewport
    bool selectAtRelease_ = false;    ///< it may become a drag of the selection
    QUuid rangeStart_;                ///< of a range that the keyboard extends; null without
    QString typed_;
    Clock::Duration typedAt_{0};

    QPoint pointer_; ///< of a drag, in the viewport
    std::optional<int> gap_;
};

} // namespace quorel
