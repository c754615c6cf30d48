#pragma once

#include <QCheckBox>

namespace quorel {

/// A check box that looks like a switch: lit and to the right when on. Its text() stands after it,
/// or at the left edge with the switch at the right one.
class Switch final : public QCheckBox {
    Q_OBJECT

  public:
    enum class Slot { BeforeText, AtRightEdge };

    explicit Switch(const QString& text, QWidget* parent = nullptr);
    Switch(const QString& text, Slot slot, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

  private:
    const Slot slot_;
};

} // namespace quorel
