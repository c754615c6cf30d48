#pragma once

#include "ui/controls/Sliders.h"

class QBoxLayout;
class QLabel;

namespace quorel {

/// A number that is set by a slider: what it is on the left, the value with its unit on the right,
/// the slider beneath; all in one line where the title stands elsewhere.
class SliderRow final : public QWidget {
    Q_OBJECT

  public:
    struct Look {
        QString title;
        bool titled = true; ///< false: the title is told to assistive technologies only
        ValueSlider::Range range{};
        FillSlider::Snap snap = FillSlider::Snap::ToSteps;
        QString (*text)(double value); ///< the value with its unit
        QString help = {};             ///< shown under the mouse
    };

    SliderRow(const Look& look, QWidget* parent);

    FillSlider& slider() { return *slider_; }
    /// Puts a control in front of the value of a row with a title.
    void addBeforeValue(QWidget* control);
    void showValue(double value);

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void refreshText();
    void reserveText();

    FillSlider* const slider_;
    QLabel* const value_;
    QBoxLayout* valueLine_; ///< what the value stands in
};

} // namespace quorel
