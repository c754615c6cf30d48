#include "ui/visualisers/VisualizationView.h"

#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"
#include "ui/visualisers/Light.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>

namespace quorel {

namespace {

constexpr double kRim = 2; // of the well around the display
constexpr double kCorner = 5;

QString nameOf(VisualizationMode mode) {
    const std::string_view raw = rawValue(mode);
    QString name = QString::fromLatin1(raw.data(), static_cast<qsizetype>(raw.size()));
    name[0] = name[0].toUpper();
    return name;
}

/// Whether that mode would show the second values as it shows the first.
bool looksSame(VisualizationMode mode, const MeterValues& a, const MeterValues& b) {
    switch (mode) {
    case VisualizationMode::Spectrum:
        return a.spectrumBars == b.spectrumBars;
    case VisualizationMode::Scope:
        return a.waveform == b.waveform;
    case VisualizationMode::Vu:
        return a.vuLeftDb == b.vuLeftDb && a.vuRightDb == b.vuRightDb;
    case VisualizationMode::Led:
        return a.peakLeftDb == b.peakLeftDb && a.peakRightDb == b.peakRightDb &&
               a.peakHoldLeftDb == b.peakHoldLeftDb && a.peakHoldRightDb == b.peakHoldRightDb;
    case VisualizationMode::Off:
        break;
    }
    return true;
}

} // namespace

VisualizationView::VisualizationView(QWidget* parent)
    : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    // A click leaves the keys to the playlist.
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Visualization"));
    nameMode();
}

void VisualizationView::nameMode() {
    setToolTip(tr("Visualization: %1 — click to change").arg(nameOf(mode_)));
    setAccessibleDescription(tr("Shows %1. Click to change.").arg(nameOf(mode_)));
}

void VisualizationView::setMode(VisualizationMode mode) {
    if (mode != mode_) {
        mode_ = mode;
        nameMode();
        update();
    }
}

void VisualizationView::setBrightness(double brightness) {
    if (brightness != brightness_) {
        brightness_ = brightness;
        update();
    }
}

void VisualizationView::setValues(const MeterValues& values) {
    if (!looksSame(mode_, values_, values)) {
        update();
    }
    values_ = values;
}

QSize VisualizationView::sizeHint() const {
    return {px(2 * 206 + 8), px(104)};
}

QSize VisualizationView::minimumSizeHint() const {
    return {px(120), px(40)};
}

void VisualizationView::keyPressEvent(QKeyEvent* event) {
    const bool enters = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enters && !event->isAutoRepeat()) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void VisualizationView::paintEvent(QPaintEvent* event) {
    const QSizeF size = QSizeF(this->size()) / uiScale();
    well_.show(*this, event->rect(), [&](QPainter& painter) { paintWell(painter, size); });
    QPainter painter(this);
    painter.scale(uiScale(), uiScale());
    painter.translate(kRim, kRim);
    paintMode(painter, size.shrunkBy(QMarginsF(kRim, kRim, kRim, kRim)));
    painter.translate(-kRim, -kRim);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Theme::faded(Theme::gold, 0.7), 1));
        painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(0.5, 0.5, -0.5, -0.5), kCorner,
                                kCorner);
    }
}

void VisualizationView::paintWell(QPainter& painter, QSizeF size) const {
    const QRectF well(QPointF(), size);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::panelBlack);
    painter.drawRoundedRect(well, kCorner, kCorner);
    // Light from above: the upper edge throws a shadow, the lower one catches the light.
    QLinearGradient edge(well.topLeft(), well.bottomLeft());
    edge.setColorAt(0, Theme::faded(Qt::black, 0.9));
    edge.setColorAt(1, Theme::faded(Theme::steelLight, 0.6));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(edge, 1));
    painter.drawRoundedRect(well.adjusted(0.5, 0.5, -0.5, -0.5), kCorner, kCorner);
    painter.restore();
}

void VisualizationView::paintMode(QPainter& painter, QSizeF size) {
    switch (mode_) {
    case VisualizationMode::Spectrum:
        SpectrumView{values_.spectrumBars}.paint(painter, size, brightness_, spectrum_);
        break;
    case VisualizationMode::Scope:
        ScopeView{values_.waveform}.paint(painter, size, brightness_, scope_);
        break;
    case VisualizationMode::Vu: {
        VUMeterView gauges;
        gauges.leftDb = values_.vuLeftDb;
        gauges.rightDb = values_.vuRightDb;
        gauges.paint(painter, size, brightness_, vu_);
        break;
    }
    case VisualizationMode::Led: {
        LEDMeterView rows;
        rows.leftDb = values_.peakLeftDb;
        rows.rightDb = values_.peakRightDb;
        rows.holdL = values_.peakHoldLeftDb;
        rows.holdR = values_.peakHoldRightDb;
        rows.brightness = brightness_;
        rows.paint(painter, size, led_);
        break;
    }
    case VisualizationMode::Off:
        break;
    }
}

} // namespace quorel
