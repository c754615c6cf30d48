#include "ui/theme/FocusVisible.h"
#include "ui/theme/PanelStyle.h"
#include "ui/theme/StylePainting.h"
#include "ui/theme/Theme.h"

#include <QComboBox>
#include <QStyleOption>

namespace quorel {

namespace {

constexpr double kGroupTitle = 19;

/// What takes typed text shows its focus however it came by it.
ControlState typedInto(ControlState state, const QStyleOption& option) {
    state.focused = (option.state & QStyle::State_HasFocus) != 0;
    return state;
}

void drawSpinBox(QPainter& painter, const QStyleOptionSpinBox& spin, ControlState state,
                 const PanelStyle& style, const QWidget* widget) {
    stylepainting::field(painter, InBaseUnits::area(spin.rect), typedInto(state, spin));
    for (const auto part : {QStyle::SC_SpinBoxUp, QStyle::SC_SpinBoxDown}) {
        const bool up = part == QStyle::SC_SpinBoxUp;
        state.hovered = spin.activeSubControls == part;
        state.enabled = spin.stepEnabled &
                        (up ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
        stylepainting::chevron(
            painter,
            InBaseUnits::area(style.subControlRect(QStyle::CC_SpinBox, &spin, part, widget))
                .translated(-2, up ? 1.5 : -1.5),
            up, state);
    }
}

void drawSlider(QPainter& painter, const QStyleOptionSlider& slider, ControlState state,
                const PanelStyle& style, const QWidget* widget) {
    const QRectF area = InBaseUnits::area(slider.rect);
    const QPointF knob = InBaseUnits::area(style.subControlRect(QStyle::CC_Slider, &slider,
                                                                QStyle::SC_SliderHandle, widget))
                             .center();
    const bool flat = slider.orientation == Qt::Horizontal;
    const QRectF groove = flat ? QRectF(area.left() + 4, knob.y() - 3, area.width() - 8, 6)
                               : QRectF(knob.x() - 3, area.top() + 4, 6, area.height() - 8);
    QRectF fill = groove;
    if (flat)
        fill.setRight(knob.x());
    else
        fill.setTop(knob.y());
    state.pressed = slider.activeSubControls & QStyle::SC_SliderHandle && state.pressed;
    paintGroove(painter, groove);
    paintGrooveFill(painter, fill, state.enabled);
    paintKnob(painter, knob, 6.5, state);
}

} // namespace

void PanelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    const InBaseUnits units(*painter);
    const QRectF area = InBaseUnits::area(option->rect);
    const ControlState state = stateOf(*option, widget);
    switch (element) {
    case PE_PanelButtonCommand:
    case PE_PanelButtonTool:
        stylepainting::button(*painter, area, state);
        return;
    case PE_PanelLineEdit:
        // Inside a spin box or a combo box these have painted the well already.
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
            frame && frame->lineWidth > 0)
            stylepainting::field(*painter, area, typedInto(state, *option));
        return;
    case PE_FrameLineEdit:
    case PE_FrameStatusBarItem:
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
        stylepainting::checkBox(*painter, area, state);
        return;
    case PE_IndicatorRadioButton:
        stylepainting::radioButton(*painter, area, state);
        return;
    case PE_FrameFocusRect:
        if (showsFocusRing(widget))
            paintFocusRing(*painter, area.adjusted(1, 1, -1, -1), 3);
        return;
    case PE_PanelMenu:
    case PE_PanelTipLabel:
        stylepainting::menuPanel(*painter, area);
        return;
    case PE_FrameMenu:
    case PE_FrameTabBarBase:
        return;
    case PE_FrameTabWidget:
        stylepainting::group(*painter, area);
        return;
    case PE_FrameGroupBox:
        // Below the title, for which Fusion keeps this much room.
        stylepainting::group(*painter, area.adjusted(0, kGroupTitle, 0, 0));
        return;
    case PE_PanelMenuBar:
        painter->fillRect(area, Theme::bg);
        return;
    default:
        break;
    }
    painter->scale(1 / uiScale(), 1 / uiScale());
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

void PanelStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const InBaseUnits units(*painter);
    const QRectF area = InBaseUnits::area(option->rect);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    const auto* tab = qstyleoption_cast<const QStyleOptionTab*>(option);
    if (element == CE_PushButtonBevel) {
        ControlState state = stateOf(*option, widget);
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        state.lit |= button && (button->features & QStyleOptionButton::DefaultButton);
        stylepainting::button(*painter, area, state);
    } else if (element == CE_MenuItem && item) {
        stylepainting::menuItem(*painter, *item);
    } else if (element == CE_MenuBarItem && item) {
        stylepainting::menuBarItem(*painter, *item);
    } else if (element == CE_MenuBarEmptyArea) {
        painter->fillRect(area, Theme::bg);
    } else if (element == CE_TabBarTabShape && tab) {
        stylepainting::tab(*painter, *tab);
    } else {
        painter->scale(1 / uiScale(), 1 / uiScale());
        QProxyStyle::drawControl(element, option, painter, widget);
    }
}

void PanelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const InBaseUnits units(*painter);
    const QRectF area = InBaseUnits::area(option->rect);
    ControlState state = stateOf(*option, widget);
    const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    const auto* spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option);
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto part = [&](SubControl name) {
        return InBaseUnits::area(subControlRect(control, option, name, widget));
    };
    if (control == CC_ComboBox && combo) {
        state.lit = false;
        if (combo->editable)
            stylepainting::field(*painter, area, typedInto(state, *option));
        else
            stylepainting::button(*painter, area, state);
        stylepainting::chevron(*painter, part(SC_ComboBoxArrow).translated(-2, 0), false, state);
    } else if (control == CC_SpinBox && spin) {
        drawSpinBox(*painter, *spin, state, *this, widget);
    } else if (control == CC_Slider && slider) {
        drawSlider(*painter, *slider, state, *this, widget);
    } else if (control == CC_ScrollBar && slider) {
        painter->fillRect(area, Theme::listBlack);
        const bool onThumb = slider->activeSubControls & SC_ScrollBarSlider;
        state.hovered = state.hovered && onThumb;
        state.pressed = state.pressed && onThumb;
        if (slider->maximum > slider->minimum)
            stylepainting::scrollBarSlider(*painter, part(SC_ScrollBarSlider), state);
    } else {
        painter->scale(1 / uiScale(), 1 / uiScale());
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

} // namespace quorel
