#pragma once

#include <QPalette>
#include <QProxyStyle>

namespace quorel {

/// The look of Qt's own controls: Fusion with every metric multiplied by the interface's scale, and
/// what stands on the front panel painted like it: buttons, fields, lists to choose from, check
/// boxes, sliders, tabs, menus, scroll bars, tooltips.
class PanelStyle final : public QProxyStyle {
    Q_OBJECT

  public:
    PanelStyle();

    static QPalette panelPalette();

    QPalette standardPalette() const override { return panelPalette(); }
    void polish(QWidget* widget) override;
    using QProxyStyle::polish;

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                           const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;

    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
};

} // namespace quorel
