#pragma once

#include "ui/theme/BasePainter.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QWidget>

namespace quorel {

/// An engraved line across a panel.
class SeparatorLine final : public QWidget {
  public:
    explicit SeparatorLine(QWidget* parent)
        : QWidget(parent) {}

    QSize sizeHint() const override { return {px(20), px(9)}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        BasePainter painter(this);
        const QRectF area = baseRect(*this);
        paintSeparator(painter, {area.left() + 4, area.center().y()},
                       {area.right() - 4, area.center().y()});
    }
};

/// A small text on the panel, in one line, painted in base units.
class PanelText final : public QWidget {
  public:
    PanelText(const QString& text, Theme::TextRole role, const QColor& colour, double width,
              QWidget* parent)
        : QWidget(parent)
        , text_(text)
        , role_(role)
        , colour_(colour)
        , width_(width) {}

    void setText(const QString& text) {
        if (text == text_)
            return;
        text_ = text;
        update();
    }
    const QString& text() const { return text_; }

    QSize sizeHint() const override { return {px(width_), px(14)}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        BasePainter painter(this);
        painter.setFont(Theme::font(role_));
        painter.setPen(isEnabled() ? colour_ : Theme::faded(colour_, 0.5));
        painter.drawText(baseRect(*this), Qt::AlignCenter, text_);
    }

  private:
    QString text_;
    const Theme::TextRole role_;
    const QColor colour_;
    const double width_;
};

} // namespace quorel
