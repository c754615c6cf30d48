#pragma once

#include <QAbstractButton>
#include <QPixmap>
#include <QTransform>
#include <optional>

namespace quorel {

/// A seven-segment readout of a time such as "-1:23:45", 118 x 44 base units, right-aligned over
/// the dark segments of the digits that it could show. Can be clicked like any button. Characters
/// other than digits, ':' and '-' stay dark. The time is its accessible description; give it a
/// name.
class LcdDigits final : public QAbstractButton {
    Q_OBJECT

  public:
    explicit LcdDigits(QWidget* parent = nullptr);

    /// Repaints if it is new. Unlike setText() leaves the layout alone, as a clock should.
    void showTime(const QString& time);
    const QString& time() const { return time_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    /// What the picture depends on.
    struct Shown {
        QString time;
        double dark; ///< opacity of the segments that are not lit
        double ratio;
        QTransform toDevice;
        bool operator==(const Shown&) const = default;
    };

    void renewPicture(double dark);

    QString time_;
    // A glow takes too long to make it for every repaint.
    std::optional<Shown> shown_;
    QPixmap picture_;
};

} // namespace quorel
