#include "ui/controls/PanelButton.h"

#include "ui/controls/ButtonAccessible.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>
#include <QKeyEvent>

namespace quorel {

namespace {

constexpr double kRadius = 7;
constexpr QMarginsF kShadow(2, 1, 2, 3);

constexpr double kTextIcon = 18;
constexpr double kIconGap = 4;
constexpr double kSides = 12;

bool isReturn(const QKeyEvent& event) {
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

/// Qt's buttons go down and up by Space; this way they do so by Return as well.
QKeyEvent asSpace(const QKeyEvent& event) {
    return {event.type(), Qt::Key_Space, event.modifiers(), QString(), event.isAutoRepeat()};
}

} // namespace

PanelButton::PanelButton(Face face, QWidget* parent)
    : QAbstractButton(parent)
    , face_(face) {
    makeButtonsAccessible();
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void PanelButton::setLit(bool lit) {
    if (lit_ == lit)
        return;
    lit_ = lit;
    update();
}

void PanelButton::setFaceSize(QSizeF units) {
    faceSize_ = units;
    updateGeometry();
}

QSize PanelButton::sizeHint() const {
    const QSizeF face = faceSize_.isEmpty() ? naturalFaceSize() : faceSize_;
    return px(face.grownBy(kShadow));
}

void PanelButton::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    ControlState state = stateOf(*this);
    state.pressed = isDown();
    state.lit = isLit();
    const QRectF face = baseRect(*this).marginsRemoved(kShadow);
    if (face_ == Face::Raised && isEnabled() && !state.pressed)
        paintDropShadow(painter, face, kRadius);
    if (face_ == Face::Raised || state.hovered || state.pressed)
        paintFace(painter, face, kRadius, state);
    if (state.focused)
        paintFocusRing(painter, face.adjusted(-0.5, -0.5, 0.5, 0.5), kRadius + 0.5);
    // What is pressed goes down.
    paintContent(painter, state.pressed ? face.translated(0, 1) : face, state);
}

void PanelButton::keyPressEvent(QKeyEvent* event) {
    if (isReturn(*event)) {
        QKeyEvent space = asSpace(*event);
        QAbstractButton::keyPressEvent(&space);
    } else if (event->key() == Qt::Key_Space && !spacePresses_) {
        event->ignore();
    } else {
        QAbstractButton::keyPressEvent(event);
    }
}

void PanelButton::keyReleaseEvent(QKeyEvent* event) {
    if (isReturn(*event)) {
        QKeyEvent space = asSpace(*event);
        QAbstractButton::keyReleaseEvent(&space);
    } else {
        QAbstractButton::keyReleaseEvent(event);
    }
}

TransportButton::TransportButton(Icon icon, Face face, QWidget* parent)
    : PanelButton(face, parent)
    , icon_(icon) {}

void TransportButton::setIcon(Icon icon) {
    if (icon_ == icon)
        return;
    icon_ = icon;
    update();
}

void TransportButton::setIconSize(double units) {
    iconSize_ = units;
    updateGeometry();
    update();
}

void TransportButton::paintContent(QPainter& painter, const QRectF& face,
                                   const ControlState& state) {
    QRectF square(0, 0, iconSize_, iconSize_);
    square.moveCenter(face.center());
    drawRaisedIcon(painter, icon_, square, inkOf(state), state.lit && state.enabled);
}

QSizeF TransportButton::naturalFaceSize() const {
    return {iconSize_ + 20, iconSize_ + 16};
}

TextIconButton::TextIconButton(const QString& text, Face face, QWidget* parent)
    : PanelButton(face, parent) {
    setText(text);
}

void TextIconButton::setIcons(const QList<Icon>& icons) {
    if (icons_ == icons)
        return;
    icons_ = icons;
    updateGeometry();
    update();
}

double TextIconButton::contentWidth() const {
    const QFontMetricsF metrics(Theme::font(Theme::TextRole::Strong));
    return static_cast<double>(icons_.size()) * (kTextIcon + kIconGap) +
           metrics.horizontalAdvance(text());
}

void TextIconButton::paintContent(QPainter& painter, const QRectF& face,
                                  const ControlState& state) {
    const QColor ink = inkOf(state);
    double x = face.center().x() - contentWidth() / 2;
    for (const Icon icon : icons_) {
        drawRaisedIcon(painter, icon,
                       QRectF(x, face.center().y() - kTextIcon / 2, kTextIcon, kTextIcon), ink,
                       state.lit && state.enabled);
        x += kTextIcon + kIconGap;
    }
    const QRectF place(x, face.top(), face.right() - x, face.height());
    painter.setFont(Theme::font(Theme::TextRole::Strong));
    painter.setPen(Theme::faded(Qt::black, 0.55));
    painter.drawText(place.translated(0, 1), Qt::AlignVCenter | Qt::AlignLeft, text());
    painter.setPen(ink);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft, text());
}

QSizeF TextIconButton::naturalFaceSize() const {
    return {contentWidth() + 2 * kSides, 36};
}

} // namespace quorel
