#pragma once

#include "core/Clock.h"

#include <QWidget>
#include <memory>

namespace quorel {

/// A bubble above (or, without room there, below) a control that tells its value while it changes.
/// Hides kShown after the last change. A child of the control's window, deaf to the mouse.
class FloatingValueLabel final : public QWidget {
    Q_OBJECT

  public:
    static constexpr Clock::Duration kShown = std::chrono::milliseconds(900);

    /// `target` is what it floats over; the clock outlives the label.
    FloatingValueLabel(Clock& clock, QWidget* target);

    /// Shows the text, its tip at `at` in the target's pixels. Nothing if the target is hidden.
    void showValue(const QString& text, QPointF at);
    const QString& text() const { return text_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void place(QPointF at);

    Clock& clock_;
    QWidget* const target_;
    QString text_;
    bool below_ = false;
    double tip_ = 0; ///< where its tip is, base units from its left
    std::unique_ptr<Timer> timer_;
};

} // namespace quorel
