#include "ui/panel/PlayerPanel.h"

#include "model/TimeText.h"
#include "player/PlayerController.h"
#include "ui/controls/FloatingValueLabel.h"
#include "ui/controls/PanelButton.h"
#include "ui/controls/Sliders.h"
#include "ui/panel/DisplayWell.h"
#include "ui/panel/EQPanel.h"
#include "ui/panel/ModePanel.h"
#include "ui/panel/PanelParts.h"
#include "ui/texts/Texts.h"

#include <QHBoxLayout>
#include <QPaintEvent>
#include <QVBoxLayout>

namespace quorel {

namespace {

constexpr QSizeF kButton(34, 32);
constexpr double kSeekStep = 5; // seconds, as the arrow keys have it

Icon iconOf(PlaybackMode mode) {
    switch (mode) {
    case PlaybackMode::StopAfter:
        return Icon::ModeStopAfter;
    case PlaybackMode::One:
        return Icon::RepeatOne;
    case PlaybackMode::All:
        return Icon::RepeatAll;
    case PlaybackMode::Normal:
        break;
    }
    return Icon::ModeNormal;
}

QString wordsOf(PlaybackMode mode) {
    switch (mode) {
    case PlaybackMode::StopAfter:
        return PlayerPanel::tr("auto-stop");
    case PlaybackMode::One:
        return PlayerPanel::tr("repeat one");
    case PlaybackMode::All:
        return PlayerPanel::tr("repeat all");
    case PlaybackMode::Normal:
        break;
    }
    return PlayerPanel::tr("normal");
}

QString percent(double share) {
    return PlayerPanel::tr("%1%").arg(qRound(share * 100));
}

} // namespace

PlayerPanel::PlayerPanel(PlayerController& player, Clock& clock, QWidget* parent)
    : QWidget(parent)
    , player_(player)
    , display_(new DisplayWell(player, clock, this))
    , seek_(new FillSlider(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent); // the metal fills it
    makeTransport();
    makeSound();
    makeOpeners();
    seekLabel_ = new FloatingValueLabel(clock, seek_);
    volumeLabel_ = new FloatingValueLabel(clock, volume_);
    panLabel_ = new FloatingValueLabel(clock, pan_);
    layOut();
    connect(&player, &PlayerController::transportChanged, this, &PlayerPanel::refreshTransport);
    connect(&player, &PlayerController::settingsChanged, this, &PlayerPanel::refreshSettings);
    connect(&player, &PlayerController::keyNudge, this, &PlayerPanel::showNudge);
    connect(&player.playback(), &PlaybackState::positionChanged, this,
            &PlayerPanel::refreshPosition);
    refreshTransport();
    refreshPosition();
    refreshSettings();
}

TransportButton* PlayerPanel::addButton(Icon icon, const QString& name,
                                        void (PlayerPanel::*pressed)()) {
    auto* const button = new TransportButton(icon, PanelButton::Face::Raised, this);
    button->setFaceSize(kButton);
    button->setSpacePresses(false); // the space bar plays and pauses, wherever the focus is
    button->setAccessibleName(name);
    button->setToolTip(name);
    connect(button, &QAbstractButton::clicked, this, pressed);
    return button;
}

void PlayerPanel::makeTransport() {
    seek_->setAccessibleName(tr("Position"));
    seek_->setValueText(
        [this](double share) { return formatTime(share * player_.playback().duration()); });
    connect(seek_, &ValueSlider::valueEdited, this, &PlayerPanel::showSeekTime);
    connect(seek_, &ValueSlider::editingEnded, this,
            [this] { player_.seek(seek_->value() * player_.playback().duration()); });
    previous_ = addButton(Icon::Previous, tr("Previous track"), &PlayerPanel::pressPrevious);
    play_ = addButton(Icon::Play, tr("Play"), &PlayerPanel::pressPlay);
    play_->setFaceSize({48, kButton.height()});
    pause_ = addButton(Icon::Pause, tr("Pause"), &PlayerPanel::pressPause);
    stop_ = addButton(Icon::Stop, tr("Stop"), &PlayerPanel::pressStop);
    next_ = addButton(Icon::Next, tr("Next track"), &PlayerPanel::pressNext);
}

void PlayerPanel::makeSound() {
    mute_ = new TransportButton(Icon::Speaker, PanelButton::Face::Quiet, this);
    mute_->setFaceSize({30, 30});
    mute_->setSpacePresses(false);
    connect(mute_, &QAbstractButton::clicked, this, &PlayerPanel::pressMute);
    volume_ = new FillSlider(this);
    volume_->setAccessibleName(tr("Volume"));
    volume_->setSteps(0.05, 0.2);
    volume_->setValueText(percent);
    connect(volume_, &ValueSlider::valueEdited, this, [this](double volume) {
        player_.setVolume(volume);
        volumeLabel_->showValue(percent(volume), volume_->handlePosition());
    });
    connect(volume_, &ValueSlider::editingEnded, &player_, &PlayerController::scheduleSave);
    pan_ = new PanSlider(this);
    pan_->setAccessibleName(tr("Balance"));
    pan_->setToolTip(tr("Balance"));
    pan_->setValueText(panText);
    connect(pan_, &ValueSlider::valueEdited, this, [this](double pan) {
        player_.setPan(pan);
        panLabel_->showValue(panText(pan), pan_->handlePosition());
    });
    connect(pan_, &ValueSlider::editingEnded, &player_, &PlayerController::scheduleSave);
}

void PlayerPanel::makeOpeners() {
    mode_ = new TextIconButton(tr("Mode"), PanelButton::Face::Raised, this);
    mode_->setFaceSize({100, kButton.height()}); // with two symbols
    mode_->setSpacePresses(false);
    mode_->setToolTip(tr("Playback mode"));
    connect(mode_, &QAbstractButton::clicked, this, &PlayerPanel::pressMode);
    equalizer_ = addButton(Icon::Equalizer, tr("Equalizer"), &PlayerPanel::pressEqualizer);
    settings_ = addButton(Icon::Gear, tr("Settings"), &PlayerPanel::pressSettings);
    playlist_ = addButton(Icon::Playlist, tr("Playlist"), &PlayerPanel::pressPlaylist);
}

void PlayerPanel::layOut() {
    delete layout();
    auto* const row = new QHBoxLayout;
    row->setSpacing(px(2));
    for (QWidget* const button : {previous_, play_, pause_, stop_, next_})
        row->addWidget(button);
    row->addSpacing(px(8));
    row->addWidget(mute_);
    volume_->setMinimumWidth(px(72));
    volume_->setMaximumWidth(px(260));
    row->addWidget(volume_, 3);
    row->addSpacing(px(6));
    row->addWidget(pan_);
    row->addStretch(1);
    row->addSpacing(px(8));
    for (QWidget* const button :
         std::initializer_list<QWidget*>{mode_, equalizer_, settings_, playlist_})
        row->addWidget(button);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(px(12), px(10), px(12), px(8));
    column->setSpacing(px(4));
    column->addWidget(display_);
    column->addWidget(seek_);
    column->addLayout(row);
}

void PlayerPanel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && playlist_)
        layOut();
}

void PlayerPanel::paintEvent(QPaintEvent* event) {
    metal_.show(*this, event->rect(), [this](QPainter& painter) {
        const QRectF area = baseRect(*this);
        QLinearGradient metal(area.topLeft(), area.bottomLeft());
        metal.setColorAt(0, Theme::bg.lighter(128));
        metal.setColorAt(1, Theme::bg);
        painter.fillRect(area, metal);
        paintSeparator(painter, area.bottomLeft() - QPointF(0, 1),
                       area.bottomRight() - QPointF(0, 1));
    });
}

// --- What is shown -------------------------------------------------------------------------------

void PlayerPanel::refreshTransport() {
    const PlaybackState& state = player_.playback();
    play_->setLit(state.isPlaying());
    play_->setEnabled(state.isLoaded() || !player_.activePlaylist().tracks.isEmpty());
    pause_->setLit(state.isLoaded() && !state.isPlaying());
    pause_->setEnabled(state.isLoaded());
    stop_->setEnabled(state.isLoaded());
    previous_->setEnabled(player_.canPlayPrevious());
    next_->setEnabled(player_.canPlayNext());
    seek_->setEnabled(state.isLoaded());
}

void PlayerPanel::refreshPosition() {
    const PlaybackState& state = player_.playback();
    const double duration = state.duration();
    seek_->setValue(duration > 0 ? state.currentTime() / duration : 0);
    if (duration > 0)
        seek_->setSteps(kSeekStep / duration, 6 * kSeekStep / duration);
}

void PlayerPanel::refreshSettings() {
    const AppSettings& settings = player_.settings();
    mute_->setIcon(settings.isMuted ? Icon::SpeakerMuted : Icon::Speaker);
    mute_->setToolTip(settings.isMuted ? tr("Unmute") : tr("Mute"));
    mute_->setAccessibleName(mute_->toolTip());
    volume_->setValue(settings.volume);
    pan_->setValue(settings.pan);
    QList<Icon> icons = {iconOf(settings.pbMode)};
    if (settings.shuffle)
        icons += Icon::Shuffle;
    mode_->setIcons(icons);
    mode_->setLit(settings.pbMode != PlaybackMode::Normal || settings.shuffle);
    mode_->setAccessibleName(settings.shuffle
                                 ? tr("Mode: %1, shuffle").arg(wordsOf(settings.pbMode))
                                 : tr("Mode: %1").arg(wordsOf(settings.pbMode)));
    equalizer_->setLit(settings.eqOn);
    equalizer_->setAccessibleDescription(settings.eqOn ? tr("On") : tr("Off"));
    playlist_->setLit(settings.showPlaylist);
    playlist_->setToolTip(settings.showPlaylist ? tr("Hide playlist") : tr("Show playlist"));
    playlist_->setEnabled(!player_.fullscreenActive());
}

void PlayerPanel::showSeekTime() {
    seekLabel_->showValue(formatTime(seek_->value() * player_.playback().duration()),
                          seek_->handlePosition());
}

void PlayerPanel::showNudge(KeyNudge what) {
    if (what == KeyNudge::Seek) {
        refreshPosition();
        showSeekTime();
    } else {
        refreshSettings();
        volumeLabel_->showValue(percent(volume_->value()), volume_->handlePosition());
    }
}

// --- What is pressed -----------------------------------------------------------------------------

void PlayerPanel::pressPrevious() {
    player_.prevTrack();
}

void PlayerPanel::pressPlay() {
    if (player_.playback().isPlaying())
        player_.restartTrack();
    else
        player_.togglePlay();
}

void PlayerPanel::pressPause() {
    if (player_.playback().isLoaded())
        player_.pauseToggle();
}

void PlayerPanel::pressStop() {
    player_.stop();
}

void PlayerPanel::pressNext() {
    player_.nextTrack();
}

void PlayerPanel::pressMute() {
    player_.toggleMute();
}

void PlayerPanel::pressMode() {
    showModePanel(player_, mode_);
}

void PlayerPanel::pressEqualizer() {
    EQPanel::showAt(player_, equalizer_);
}

void PlayerPanel::pressSettings() {
    Q_EMIT settingsRequested();
}

void PlayerPanel::pressPlaylist() {
    player_.togglePlaylistVisible();
}

} // namespace quorel
