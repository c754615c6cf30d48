#pragma once

#include <QWidget>
#include <functional>
#include <optional>

namespace quorel {

/// What the sliders of the panel have in common: a value that is set by dragging, clicking, the
/// wheel, the arrow keys, Page Up and Down, Home and End, or an assistive technology. It reports
/// its value there as a number and as text. Every edit, of one step as well, comes as
/// editingStarted, valueEdited (for each new value) and editingEnded; a drag that is cut off, as
/// the slider is hidden or disabled, ends with editingCutOff instead.
class ValueSlider : public QWidget {
    Q_OBJECT

  public:
    struct Range {
        double lowest;
        double highest;
        double step;                ///< of the arrow keys and the wheel
        double page;                ///< of Page Up and Page Down
        std::optional<double> rest; ///< where a double click leads
    };

    double value() const { return value_; }
    const Range& range() const { return range_; }

    /// Shows a value, held within the range, without a signal. While the user drags, what the hand
    /// holds stays.
    void setValue(double value);
    /// As if the user had done it: with signals. Ignored while the user drags.
    void edit(double value);
    bool isEditing() const { return editing_; }

    void setSteps(double step, double page);
    /// How the value is read out; by default as a plain number.
    void setValueText(std::function<QString(double)> text) { valueText_ = std::move(text); }
    QString valueText() const;

    /// The middle of the handle in the widget's pixels, for what is shown above it.
    QPointF handlePosition() const;

  Q_SIGNALS:
    void editingStarted();
    void valueEdited(double value);
    void editingEnded();
    void editingCutOff();

  protected:
    ValueSlider(const Range& range, QWidget* parent);

    /// The middle of the handle, in base units.
    virtual QPointF handleAt(double value) const = 0;
    /// The value whose handle comes closest to the position in base units; may lie out of range.
    virtual double valueAt(QPointF position) const = 0;
    /// What a value that was dragged to becomes, such as a detent.
    virtual double detent(double value) const { return value; }
    /// What any value that the user asks for becomes, such as the nearest whole step.
    virtual double snapped(double value) const { return value; }

    /// 0 at the lowest value, 1 at the highest.
    double share() const { return (value_ - range_.lowest) / (range_.highest - range_.lowest); }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

  private:
    bool change(double value);
    void repaintHandle();
    void drag(QPointF pixels);
    void endEditing();
    void cutOffEditing();

    Range range_;
    double value_;
    double paintedValue_;
    std::function<QString(double)> valueText_;
    bool editing_ = false;
    QPointF grip_; ///< from the mouse to the middle of the handle, base units
    int wheelTurn_ = 0;
};

} // namespace quorel
