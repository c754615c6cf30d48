#include "ui/theme/PanelStyle.h"

#include "ui/theme/Icons.h"
#include "ui/theme/StylePainting.h"
#include "ui/theme/Theme.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLineEdit>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>

namespace quorel {

using Theme::faded;

namespace {

constexpr double kFieldHeight = 28;
constexpr double kArrowWidth = 22; // of combo boxes and spin boxes

/// The metrics that differ from Fusion's, in base units; 0 for all others.
double metricOf(QStyle::PixelMetric metric) {
    switch (metric) {
    case QStyle::PM_ScrollBarExtent:
        return 12;
    case QStyle::PM_ScrollBarSliderMin:
        return 28;
    case QStyle::PM_IndicatorWidth:
    case QStyle::PM_IndicatorHeight:
    case QStyle::PM_ExclusiveIndicatorWidth:
    case QStyle::PM_ExclusiveIndicatorHeight:
    case QStyle::PM_SmallIconSize:
    case QStyle::PM_ButtonIconSize:
        return 16;
    case QStyle::PM_CheckBoxLabelSpacing:
    case QStyle::PM_RadioButtonLabelSpacing:
    case QStyle::PM_LayoutHorizontalSpacing:
    case QStyle::PM_LayoutVerticalSpacing:
        return 8;
    case QStyle::PM_LayoutLeftMargin:
    case QStyle::PM_LayoutTopMargin:
    case QStyle::PM_LayoutRightMargin:
    case QStyle::PM_LayoutBottomMargin:
        return 12;
    case QStyle::PM_ToolTipLabelFrameWidth:
        return 5;
    case QStyle::PM_MenuVMargin:
        return 4;
    case QStyle::PM_SliderLength:
        return 16;
    case QStyle::PM_SliderThickness:
    case QStyle::PM_SliderControlThickness:
        return 20;
    case QStyle::PM_TabBarTabHSpace:
        return 28;
    case QStyle::PM_TabBarTabVSpace:
        return 12;
    default:
        return 0;
    }
}

QSize menuItemSize(const QStyleOptionMenuItem& item, QSize contents, bool isOfComboBox) {
    if (isOfComboBox) // whose contents are the whole list
        contents = {item.fontMetrics.horizontalAdvance(item.text), 0};
    if (item.menuItemType == QStyleOptionMenuItem::Separator)
        return {contents.width(), px(9)};
    const bool shortcut = item.text.contains(QLatin1Char('\t'));
    return {contents.width() + px(shortcut ? 64 : 48), std::max(contents.height(), px(26))};
}

/// Scroll bars have no buttons at their ends: the thumb's way is the whole length.
QRect scrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part) {
    const bool flat = bar.orientation == Qt::Horizontal;
    const int length = flat ? bar.rect.width() : bar.rect.height();
    const qint64 content = qint64{bar.maximum} - bar.minimum + bar.pageStep;
    int thumb = length;
    if (bar.maximum > bar.minimum)
        thumb = std::clamp(static_cast<int>(qint64{bar.pageStep} * length / content),
                           std::min(px(28), length), length);
    const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                      length - thumb, bar.upsideDown);
    const auto stretch = [&](int from, int size) {
        return flat ? QRect(bar.rect.left() + from, bar.rect.top(), size, bar.rect.height())
                    : QRect(bar.rect.left(), bar.rect.top() + from, bar.rect.width(), size);
    };
    switch (part) {
    case QStyle::SC_ScrollBarGroove:
        return bar.rect;
    case QStyle::SC_ScrollBarSlider:
        return stretch(start, thumb);
    case QStyle::SC_ScrollBarSubPage:
        return stretch(0, start);
    case QStyle::SC_ScrollBarAddPage:
        return stretch(start + thumb, length - start - thumb);
    default:
        return {};
    }
}

} // namespace

PanelStyle::PanelStyle()
    : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion"))) {}

QPalette PanelStyle::panelPalette() {
    QPalette palette(Theme::text, Theme::steel, Theme::steelLight, Theme::panelBlack,
                     Theme::steelLight, Theme::text, Theme::text, Theme::panelBlack, Theme::bg);
    palette.setColor(QPalette::AlternateBase, Theme::listBlack);
    palette.setColor(QPalette::Highlight, QColor(0x0b, 0x3f, 0x85));
    palette.setColor(QPalette::HighlightedText, Theme::text.lighter(120));
    palette.setColor(QPalette::PlaceholderText, Theme::textDim);
    palette.setColor(QPalette::ToolTipBase, Theme::steel.darker(150));
    palette.setColor(QPalette::ToolTipText, Theme::text);
    palette.setColor(QPalette::Link, Theme::green);
    palette.setColor(QPalette::LinkVisited, Theme::greenDim);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, faded(Theme::textDim, 0.55));
    return palette;
}

void PanelStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    // They look different under the mouse.
    if (qobject_cast<QLineEdit*>(widget) || qobject_cast<QComboBox*>(widget) ||
        qobject_cast<QAbstractSpinBox*>(widget))
        widget->setAttribute(Qt::WA_Hover);
}

int PanelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const {
    if (const double units = metricOf(metric); units > 0)
        return px(units);
    const int base = QProxyStyle::pixelMetric(metric, option, widget);
    return base > 0 ? px(base) : base;
}

int PanelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returned) const {
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    case SH_ComboBox_Popup: // a menu, as all others
    case SH_Menu_Scrollable:
        return 1;
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_ScrollBar_Transient:
    case SH_DialogButtonBox_ButtonsHaveIcons: // from the desktop, in any colour
        return 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

QSize PanelStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                   const QSize& contents, const QWidget* widget) const {
    // By the font, not by the contents: Qt's fields never make theirs lower than 14 pixels.
    const auto field = [&](double sides) {
        return QSize(contents.width() + px(sides),
                     std::max(option->fontMetrics.height() + px(8), px(kFieldHeight)));
    };
    switch (type) {
    case CT_PushButton:
        return field(28).expandedTo(QSize(px(72), 0));
    case CT_LineEdit:
        return field(12);
    case CT_ComboBox:
        return field(18 + kArrowWidth);
    case CT_SpinBox:
        return field(10 + kArrowWidth);
    case CT_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            return menuItemSize(*item, contents, qobject_cast<const QComboBox*>(widget));
        break;
    case CT_MenuBarItem:
        return {contents.width() + px(16), std::max(contents.height() + px(6), px(24))};
    case CT_ItemViewItem:
        return QProxyStyle::sizeFromContents(type, option, contents, widget)
            .expandedTo(QSize(0, px(24)));
    default:
        break;
    }
    return QProxyStyle::sizeFromContents(type, option, contents, widget);
}

QRect PanelStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl part, const QWidget* widget) const {
    const QRect all = option->rect;
    const QRect arrows(all.right() + 1 - px(kArrowWidth), all.top(), px(kArrowWidth), all.height());
    // What is typed into stands as far from the edge as in a line edit of its own.
    const auto editor = [&](double left) {
        return all.adjusted(px(left), px(2), -px(kArrowWidth), -px(2));
    };
    const auto* combo = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (control == CC_ComboBox && part == SC_ComboBoxArrow)
        return arrows;
    if (control == CC_ComboBox && combo && part == SC_ComboBoxEditField)
        return editor(combo->editable ? 1 : 9);
    if (control == CC_SpinBox) {
        const QRect upper(arrows.topLeft(), QSize(arrows.width(), arrows.height() / 2));
        switch (part) {
        case SC_SpinBoxUp:
            return upper;
        case SC_SpinBoxDown:
            return arrows.adjusted(0, upper.height(), 0, 0);
        case SC_SpinBoxEditField:
            return editor(1);
        default:
            return all;
        }
    }
    const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (control == CC_ScrollBar && bar)
        return scrollBarPart(*bar, part);
    return QProxyStyle::subControlRect(control, option, part, widget);
}

/// Every menu bar asks for the mark of what has no room in it. Fusion has files for that, and would
/// load all formats of pictures there are before the first window is seen.
QIcon PanelStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                               const QWidget* widget) const {
    if (which == SP_ToolBarHorizontalExtensionButton || which == SP_ToolBarVerticalExtensionButton)
        return iconPixmap(Icon::ChevronDown, px(16), Theme::text, 1);
    if (which == SP_MessageBoxWarning)
        return iconPixmap(Icon::Warning, px(32), Theme::gold,
                          widget ? widget->devicePixelRatioF() : 1);
    return QProxyStyle::standardIcon(which, option, widget);
}

QRect PanelStyle::subElementRect(SubElement element, const QStyleOption* option,
                                 const QWidget* widget) const {
    if (element == SE_LineEditContents)
        return option->rect.adjusted(px(6), px(2), -px(6), -px(2));
    return QProxyStyle::subElementRect(element, option, widget);
}

} // namespace quorel
