#pragma once

#include "ui/theme/Icons.h"

#include <QAbstractButton>

namespace quorel {

/// A row of a pop-over to choose by: a symbol, its title (the text()), and a check mark while it is
/// checked. The accessible name is the title unless another is set.
class ModeRow final : public QAbstractButton {
    Q_OBJECT

  public:
    ModeRow(Icon icon, const QString& title, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    const Icon icon_;
};

} // namespace quorel
