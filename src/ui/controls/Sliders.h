#pragma once

#include "ui/controls/ValueSlider.h"
#include "ui/theme/StillPicture.h"

namespace quorel {

/// A horizontal track filled from the left up to the value: 0..1 for volume and position, or any
/// other range.
class FillSlider final : public ValueSlider {
    Q_OBJECT

  public:
    enum class Snap { None, ToSteps };

    explicit FillSlider(QWidget* parent = nullptr);
    /// With Snap::ToSteps the user reaches only whole multiples of the range's step.
    FillSlider(const Range& range, Snap snap, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    QPointF handleAt(double value) const override;
    double valueAt(QPointF position) const override;
    double snapped(double value) const override;
    void paintEvent(QPaintEvent* event) override;

  private:
    const Snap snap_;
    StillPicture groove_;
};

/// A horizontal track around a centre, -1..1, with a detent at 0, where a double click leads.
class PanSlider final : public ValueSlider {
    Q_OBJECT

  public:
    explicit PanSlider(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    QPointF handleAt(double value) const override;
    double valueAt(QPointF position) const override;
    double detent(double value) const override;
    void paintEvent(QPaintEvent* event) override;
};

/// An upright track for a gain of -12..+12 dB with a line at 0 dB, where a double click leads.
class EQBandSlider final : public ValueSlider {
    Q_OBJECT

  public:
    explicit EQBandSlider(QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    QPointF handleAt(double value) const override;
    double valueAt(QPointF position) const override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quorel
