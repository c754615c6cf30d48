#include "ui/panel/DisplayWell.h"

#include "player/PlayerController.h"
#include "ui/controls/LcdDigits.h"
#include "ui/controls/MarqueeLabel.h"
#include "ui/texts/Texts.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"
#include "ui/visualisers/VisualizationView.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <algorithm>

namespace quorel {

namespace {

// In base units.
constexpr double kHeight = 124;
constexpr double kPadding = 14;
constexpr double kTitleHeight = 24;
constexpr double kTimeTop = 42;
constexpr double kInfoHeight = 18;
constexpr double kLeastLeft = 220;
constexpr double kLeastVisualization = 240;
/// Wider, the dials of the meters would be stretched out of shape.
constexpr double kMostVisualization = 520;
constexpr QSizeF kTime(118, 44);

double visualizationWidth(double width) {
    return std::clamp(width * 0.54, kLeastVisualization, kMostVisualization);
}

} // namespace

DisplayWell::DisplayWell(PlayerController& player, Clock& clock, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , title_(new MarqueeLabel(clock, this))
    , time_(new LcdDigits(this))
    , visualization_(new VisualizationView(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(time_, &QAbstractButton::clicked, this, [this] {
        player_.changeSettings([](AppSettings& settings) {
            settings.showRemainingTime = !settings.showRemainingTime;
        });
    });
    connect(visualization_, &QAbstractButton::clicked, this,
            [this] { player_.cycleVisualization(); });
    connect(&player, &PlayerController::playingTrackChanged, this, &DisplayWell::showTrack);
    connect(&player, &PlayerController::transportChanged, this, &DisplayWell::showTrack);
    connect(&player, &PlayerController::settingsChanged, this, &DisplayWell::showSettings);
    connect(&player.playback(), &PlaybackState::positionChanged, this, &DisplayWell::showTime);
    connect(&player.playback(), &PlaybackState::metersChanged, this, &DisplayWell::showMeters);
    showSettings();
    showTrack();
    showMeters();
}

QSize DisplayWell::sizeHint() const {
    return {px(kLeastLeft + 340), px(kHeight)};
}

QSize DisplayWell::minimumSizeHint() const {
    return {px(kLeastLeft + kLeastVisualization + 3 * kPadding), px(kHeight)};
}

void DisplayWell::showTrack() {
    const Track* const playing = player_.playingTrack();
    shownDuration_ = player_.playback().duration();
    title_->setText(marqueeText(playing, shownDuration_));
    title_->setColour(playing ? Theme::text : Theme::textDim);
    format_ = playing ? formatInfoText(*playing) : QString();
    setAccessibleName(format_);
    showTime();
    update();
}

void DisplayWell::showTime() {
    const PlaybackState& state = player_.playback();
    if (state.duration() != shownDuration_)
        showTrack();
    time_->showTime(timeText(state.isLoaded(), player_.settings().showRemainingTime,
                             state.currentTime(), state.duration()));
}

void DisplayWell::showSettings() {
    const AppSettings& settings = player_.settings();
    time_->setAccessibleName(settings.showRemainingTime ? tr("Time remaining")
                                                        : tr("Elapsed time"));
    time_->setToolTip(settings.showRemainingTime ? tr("Time remaining — click to show elapsed")
                                                 : tr("Elapsed time — click to show remaining"));
    visualization_->setMode(settings.visualization);
    visualization_->setBrightness(std::clamp(settings.ledBrightness, 0.2, 1.0));
    showTime();
    update();
}

/// A window that cannot be seen needs no pictures.
void DisplayWell::showMeters() {
    if (isVisible() && !window()->isMinimized())
        visualization_->setValues(player_.playback().meters());
}

void DisplayWell::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    showMeters();
}

void DisplayWell::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    place();
}

void DisplayWell::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        place();
}

void DisplayWell::place() {
    const double scale = uiScale();
    const auto put = [scale](QWidget* widget, const QRectF& base) {
        widget->setGeometry(QRectF(base.topLeft() * scale, base.size() * scale).toAlignedRect());
    };
    const QRectF area = baseRect(*this);
    const double pictures = visualizationWidth(area.width());
    put(visualization_, {area.right() - pictures - 6, 6, pictures, area.height() - 12});
    const double left = area.right() - pictures - 6 - kPadding;
    put(title_, {kPadding, 10, left - kPadding, kTitleHeight});
    put(time_, {kPadding, kTimeTop, kTime.width(), kTime.height()});
}

void DisplayWell::paintEvent(QPaintEvent* event) {
    well_.show(*this, event->rect(), [this](QPainter& painter) {
        paintWell(painter, baseRect(*this), 8, Theme::panelBlack);
    });
    // Most often one of these alone moves.
    for (const QWidget* moving : {static_cast<QWidget*>(visualization_),
                                  static_cast<QWidget*>(title_), static_cast<QWidget*>(time_)}) {
        if (moving->geometry().contains(event->rect()))
            return;
    }
    BasePainter painter(this);
    paintTexts(painter);
    paintMarks(painter);
}

void DisplayWell::paintTexts(QPainter& painter) const {
    const QRectF area = baseRect(*this);
    const QFont small = Theme::font(Theme::TextRole::Small);
    const double left = area.right() - visualizationWidth(area.width()) - 6 - kPadding;
    painter.setFont(small);
    painter.setPen(Theme::textDim);
    painter.drawText(
        QRectF(kPadding, area.bottom() - 10 - kInfoHeight, left - kPadding, kInfoHeight),
        Qt::AlignVCenter | Qt::AlignLeft,
        QFontMetricsF(small).elidedText(format_, Qt::ElideRight, left - kPadding));
}

/// Beside the time: what playback does, and whether it is muted. Unlit marks can be made out, as on
/// a real display.
void DisplayWell::paintMarks(QPainter& painter) const {
    const PlaybackState& state = player_.playback();
    const double x = kPadding + kTime.width() + 14;
    const double y = kTimeTop + kTime.height() / 2;
    const auto mark = [&](Icon icon, double left, double top, bool lit, const QColor& colour) {
        drawIcon(painter, icon, {left, top, 14, 14},
                 lit ? colour : Theme::faded(Theme::steel, 0.55));
    };
    mark(Icon::Play, x, y - 17, state.isPlaying(), Theme::green);
    mark(Icon::Pause, x + 20, y - 17, state.isLoaded() && !state.isPlaying(), Theme::green);
    const bool isMuted = player_.settings().isMuted;
    mark(Icon::SpeakerMuted, x, y + 3, isMuted, Theme::danger);
    if (!isMuted)
        return;
    painter.setFont(Theme::font(Theme::TextRole::Indicator));
    painter.setPen(Theme::danger);
    painter.drawText(QRectF(x + 20, y + 3, 60, 14), Qt::AlignVCenter | Qt::AlignLeft,
                     QStringLiteral("MUTE"));
}

} // namespace quorel
