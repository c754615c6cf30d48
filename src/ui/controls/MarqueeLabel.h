#pragma once

#include "core/Clock.h"
#include "ui/controls/MarqueePath.h"
#include "ui/theme/Theme.h"

#include <QImage>
#include <QWidget>
#include <memory>

namespace quorel {

/// One line of text that moves to and fro when it is too long for its room, or is cut short with
/// reduced animation. Neither repaints nor keeps a timer while it fits or is hidden.
class MarqueeLabel final : public QWidget {
    Q_OBJECT

  public:
    /// A step is one unit long: fewer of them would jerk, more would only cost more.
    static constexpr Clock::Duration kFrame = std::chrono::milliseconds(50);

    /// The clock outlives the label.
    explicit MarqueeLabel(Clock& clock, QWidget* parent = nullptr);

    const QString& text() const { return text_; }
    /// A new text starts from its beginning; it becomes the accessible name.
    void setText(const QString& text);
    void setColour(const QColor& colour);

    /// How far the text is shifted to the left now, in base units.
    double offset() const { return offset_; }
    bool isMoving() const { return timer_ != nullptr; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    double textWidth() const;
    QColor ink() const;
    QImage wholeText() const;
    void paintMoving();
    void restart();
    void step();

    Clock& clock_;
    QString text_;
    QColor colour_ = Theme::text;
    MarqueePath path_;
    Clock::Duration start_{0};
    double offset_ = 0;
    QImage moving_;                ///< the whole text while it moves
    std::unique_ptr<Timer> timer_; ///< until the end of a rest, or for each frame
    bool glides_ = false;          ///< the timer is that of the frames
};

} // namespace quorel
