#pragma once

#include <QCheckBox>

namespace quorel {

/// A check box that looks like a switch: lit and to the right when on. Its text() stands after it.
class Switch final : public QCheckBox {
    Q_OBJECT

  public:
    explicit Switch(const QString& text, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quorel
