#include "ui/StatusBar.h"

#include "player/PlayerController.h"
#include "ui/controls/PanelButton.h"
#include "ui/texts/Texts.h"
#include "ui/theme/BasePainter.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Surfaces.h"
#include "ui/theme/Theme.h"

#include <QFontMetricsF>
#include <QResizeEvent>

namespace quorel {

namespace {

constexpr double kHeight = 28;
constexpr double kMargin = 14;
constexpr double kSpacing = 5;
constexpr double kStopSize = 20;

} // namespace

StatusBar::StatusBar(PlayerController& player, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , stop_(new TransportButton(Icon::Close, PanelButton::Face::Quiet, this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    stop_->setFaceSize({kStopSize, kStopSize});
    stop_->setIconSize(12);
    stop_->setAccessibleName(tr("Stop the work in the background"));
    stop_->setToolTip(tr("Stop"));
    connect(stop_, &QAbstractButton::clicked, this, [this] { player_.cancelActivity(); });
    for (const auto signal :
         {&PlayerController::playingTrackChanged, &PlayerController::activePlaylistChanged,
          &PlayerController::noticeChanged, &PlayerController::activityChanged,
          &PlayerController::searchTextChanged})
        connect(&player, signal, this, &StatusBar::refresh);
    connect(&player, &PlayerController::tracksEdited, this, &StatusBar::refresh);
    connect(&player, &PlayerController::settingsChanged, this, &StatusBar::refresh);
    refresh();
}

QSize StatusBar::sizeHint() const {
    return {px(400), px(kHeight)};
}

QSize StatusBar::minimumSizeHint() const {
    return {px(120), px(kHeight)};
}

QString StatusBar::activityText() const {
    const auto activity = player_.activity();
    if (!activity)
        return {};
    switch (activity->kind) {
    case Activity::Kind::Collecting:
        return tr("Looking for music: %1 found").arg(activity->done);
    case Activity::Kind::ReadingTags:
        return tr("Reading tags: %1 of %2").arg(activity->done).arg(activity->total);
    case Activity::Kind::Analysing:
        break;
    }
    return tr("Measuring the tempo");
}

void StatusBar::refresh() {
    QStringList parts;
    isWarning_ = !player_.notice().isEmpty();
    if (isWarning_)
        parts += player_.notice();
    else if (const Track* const playing = player_.playingTrack())
        parts += tr("Playing: %1").arg(titleText(*playing));
    const qsizetype all = player_.activePlaylist().tracks.size();
    if (const VisibleRows& visible = player_.visibleTracks(); visible.isFiltered())
        parts += tr("%1 of %2").arg(visible.size()).arg(trackCountText(all));
    else
        parts += trackCountText(all);
    const QString activity = activityText();
    if (!activity.isEmpty())
        parts += activity;
    const QString text = parts.join(QStringLiteral("   "));
    const QStringList flags = statusFlags(player_.settings());
    stop_->setVisible(!activity.isEmpty());
    if (text == text_ && flags == flags_)
        return;
    text_ = text;
    flags_ = flags;
    setAccessibleName(text_ + QStringLiteral(". ") + flags_.join(u' '));
    placeStop();
    update();
}

void StatusBar::placeStop() {
    const QFontMetricsF metrics(Theme::font(Theme::TextRole::Small));
    const double left = kMargin + (isWarning_ ? 18 : 0) + metrics.horizontalAdvance(text_) + 4;
    const QRectF area = baseRect(*this);
    const double x = std::min(left, area.width() / 2);
    stop_->setGeometry(qRound(x * uiScale()), qRound((kHeight - kStopSize) / 2 * uiScale()),
                       px(kStopSize), px(kStopSize));
}

void StatusBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeStop();
}

void StatusBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        placeStop();
}

/// From the right; returns where the free room ends.
double StatusBar::paintFlags(QPainter& painter, const QRectF& area) const {
    const QFont font = Theme::font(Theme::TextRole::Indicator);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    double right = area.right() - kMargin;
    for (qsizetype i = flags_.size() - 1; i >= 0; --i) {
        const QString& flag = flags_.at(i);
        const double width = metrics.horizontalAdvance(flag) + 12;
        const QRectF chip(right - width, area.center().y() - 8, width, 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::faded(Theme::gold, 0.08));
        painter.drawRoundedRect(crisp(painter, chip), 4, 4);
        strokeInside(painter, crisp(painter, chip), 4, Theme::faded(Theme::gold, 0.35));
        painter.setPen(Theme::gold);
        painter.drawText(chip, Qt::AlignCenter, flag);
        right -= width + kSpacing;
        if (right < area.width() * 0.45)
            break; // the rest would leave no room for the text
    }
    return right;
}

void StatusBar::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    painter.fillRect(area, Theme::bg);
    paintSeparator(painter, area.topLeft(), area.topRight());
    const double end = paintFlags(painter, area);
    double left = area.left() + kMargin;
    if (isWarning_) {
        drawIcon(painter, Icon::Warning, {left, area.center().y() - 7, 14, 14}, Theme::gold);
        left += 18;
    }
    const double right = stop_->isVisible() ? stop_->x() / uiScale() : end;
    const QFont font = Theme::font(Theme::TextRole::Small);
    painter.setFont(font);
    painter.setPen(Theme::textDim);
    const double room = std::min(right, end) - left - kSpacing;
    painter.drawText(QRectF(left, area.top(), std::max(room, 0.0), area.height()),
                     Qt::AlignVCenter | Qt::AlignLeft,
                     QFontMetricsF(font).elidedText(text_, Qt::ElideRight, room));
}

} // namespace quorel
