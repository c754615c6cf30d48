#pragma once

#include <QPainterPath>
#include <QPointer>
#include <QWidget>

namespace quorel {

/// A pop-up that hangs on a button by an arrow. Give it a layout with the content; the layout's
/// margins are set by the panel. Escape and a press outside close it; the press that closes it on
/// its own button does not open it again.
class PopoverPanel final : public QWidget {
    Q_OBJECT

  public:
    /// Belongs to the window of `parent`.
    explicit PopoverPanel(QWidget* parent);

    /// Below the button, or above where the screen ends, with the focus on its first control.
    void popUpAt(QWidget* button);

  Q_SIGNALS:
    void closed();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    void setMargins();
    void place();
    QPainterPath shape() const;
    void cutOut();

    QPointer<QWidget> button_;
    bool above_ = false;
    double tip_ = 0; ///< where the arrow is, base units from the left
};

} // namespace quorel
