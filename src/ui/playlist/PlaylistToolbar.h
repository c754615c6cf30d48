#pragma once

#include "ui/controls/PanelButton.h"

#include <QUuid>

namespace quorel {

class PlayerController;
class SearchField;

/// A small button of the playlist's toolbar.
class ToolbarButton final : public PanelButton {
    Q_OBJECT

  public:
    ToolbarButton(Icon icon, const QString& name, const QKeySequence& shortcut, QWidget* parent);

  protected:
    void paintContent(QPainter& painter, const QRectF& face, const ControlState& state) override;
    QSizeF naturalFaceSize() const override;

  private:
    const Icon icon_;
};

/// Above the track list: adding, loading, saving, removing and its undo, and the search.
class PlaylistToolbar final : public QWidget {
    Q_OBJECT

  public:
    explicit PlaylistToolbar(PlayerController& player, QWidget* parent = nullptr);

    SearchField& search() const { return *search_; }

  Q_SIGNALS:
    void addRequested();
    void loadRequested();
    void saveRequested(const QUuid& playlist);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void refresh();
    void setMargins();

    PlayerController& player_;
    ToolbarButton* remove_ = nullptr;
    ToolbarButton* undo_ = nullptr;
    SearchField* search_;
};

} // namespace quorel
