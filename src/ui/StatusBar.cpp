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
constexpr double kWarningWidth = 18;
constexpr double kLeastFirstPart = 60; // of the text, when it is cut
constexpr std::chrono::seconds kAnswerStays(6);

} // namespace

StatusBar::StatusBar(PlayerController& player, Clock& clock, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , clock_(clock)
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
    connect(&player, &PlayerController::tempoMeasured, this, &StatusBar::showTempo);
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

void StatusBar::showTempo(const Track& track, std::optional<double> bpm) {
    const qint64 tempo = qRound64(bpm.value_or(0));
    const QString title = isolated(titleText(track));
    answer_ = tempo >= 1 ? tr("%1 BPM: %2").arg(tempo).arg(title)
                         : tr("No tempo was found: %1").arg(title);
    answerEnd_ = clock_.startTimer(kAnswerStays, Clock::Repeat::Once, [this] {
        answer_.clear();
        refresh();
    });
    refresh();
}

QString StatusBar::firstPart() const {
    if (isWarning_)
        return player_.notice();
    if (!answer_.isEmpty())
        return answer_;
    const Track* const playing = player_.playingTrack();
    return playing ? tr("Playing: %1").arg(isolated(titleText(*playing))) : QString();
}

void StatusBar::refresh() {
    QStringList parts;
    isWarning_ = !player_.notice().isEmpty();
    if (const QString first = firstPart(); !first.isEmpty())
        parts += first;
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
    firstPart_ = parts.first().size();
    flags_ = flags;
    setAccessibleName(text_ + QStringLiteral(". ") + flags_.join(u' '));
    placeStop();
    update();
}

double StatusBar::textLeft() const {
    return kMargin + (isWarning_ ? kWarningWidth : 0);
}

double StatusBar::textRight() const {
    const std::vector<QRectF> chips = flagChips();
    return chips.empty() ? baseRect(*this).right() - kMargin : chips.back().left() - 2 * kSpacing;
}

void StatusBar::placeStop() {
    const QFontMetricsF metrics(Theme::font(Theme::TextRole::Small));
    const double x =
        std::min(textLeft() + metrics.horizontalAdvance(text_) + 4, textRight() - kStopSize);
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

QString StatusBar::textFor(double room) const {
    const QFontMetricsF metrics(Theme::font(Theme::TextRole::Small));
    // Parts measured one by one, and the button's whole pixels, may come out wider by a fraction.
    if (metrics.horizontalAdvance(text_) <= room + 2)
        return text_;
    const QString rest = text_.mid(firstPart_);
    const double left = room - metrics.horizontalAdvance(rest);
    if (left < kLeastFirstPart)
        return metrics.elidedText(text_, Qt::ElideRight, room);
    // What is cut off may be the end of a title that is written from the right.
    return metrics.elidedText(text_.left(firstPart_), Qt::ElideRight, left) + QChar(0x2069) + rest;
}

std::vector<QRectF> StatusBar::flagChips() const {
    const QRectF area = baseRect(*this);
    const QFontMetricsF metrics(Theme::font(Theme::TextRole::Indicator));
    std::vector<QRectF> chips;
    double right = area.right() - kMargin;
    for (qsizetype i = flags_.size() - 1; i >= 0; --i) {
        const double width = metrics.horizontalAdvance(flags_.at(i)) + 12;
        chips.emplace_back(right - width, area.center().y() - 8, width, 16);
        right -= width + kSpacing;
        if (right < area.width() * 0.45)
            break; // the rest would leave no room for the text
    }
    return chips;
}

void StatusBar::paintFlags(QPainter& painter) const {
    painter.setFont(Theme::font(Theme::TextRole::Indicator));
    qsizetype i = flags_.size();
    for (const QRectF& chip : flagChips()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::faded(Theme::gold, 0.08));
        painter.drawRoundedRect(crisp(painter, chip), 4, 4);
        strokeInside(painter, crisp(painter, chip), 4, Theme::faded(Theme::gold, 0.35));
        painter.setPen(Theme::gold);
        painter.drawText(chip, Qt::AlignCenter, flags_.at(--i));
    }
}

void StatusBar::paintEvent(QPaintEvent*) {
    BasePainter painter(this);
    const QRectF area = baseRect(*this);
    painter.fillRect(area, Theme::bg);
    paintSeparator(painter, area.topLeft(), area.topRight());
    paintFlags(painter);
    const double left = textLeft();
    if (isWarning_)
        drawIcon(painter, Icon::Warning, {kMargin, area.center().y() - 7, 14, 14}, Theme::gold);
    const double right = stop_->isVisible() ? stop_->x() / uiScale() - 4 : textRight();
    const double room = std::max(right - left, 0.0);
    painter.setFont(Theme::font(Theme::TextRole::Small));
    painter.setPen(Theme::textDim);
    painter.drawText(QRectF(left, area.top(), room, area.height()),
                     Qt::AlignVCenter | Qt::AlignLeft, textFor(room));
}

} // namespace quorel
