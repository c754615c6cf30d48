#include "ui/settings/SettingsTabs.h"

#include "player/PlayerController.h"
#include "ui/controls/Switch.h"
#include "ui/settings/FormParts.h"

#include <QComboBox>
#include <QPushButton>

namespace quorel {

namespace {

using S = AppSettings;
using Apply = SettingsForm::Apply;
template <class Value>
using Choice = SettingsForm::Choice<Value>;

QString whole(double value) {
    return QString::number(std::lround(value));
}

QString decibels(double value) {
    return SettingsForm::tr("%1 dB").arg(whole(value));
}

QString seconds(double value) {
    return SettingsForm::tr("%1 s").arg(whole(value));
}

QString milliseconds(double value) {
    return SettingsForm::tr("%1 ms").arg(whole(value));
}

QString percent(double share) {
    return SettingsForm::tr("%1%").arg(whole(share * 100));
}

QString points(double value) {
    return SettingsForm::tr("%1 pt").arg(value, 0, 'f', 1);
}

ValueSlider::Range range(double lowest, double highest, double step, double page) {
    return {.lowest = lowest, .highest = highest, .step = step, .page = page, .rest = std::nullopt};
}

constexpr std::array<Choice<bool>, 2> kOnClose = {{
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Keep playing in background"), false},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Quit Quorel"), true},
}};

constexpr std::array<Choice<CompressorPreset>, 5> kStyles = {{
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Gentle — light leveling"),
     CompressorPreset::Gentle},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Warm — smooth glue"), CompressorPreset::Warm},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Punch — keeps transients"),
     CompressorPreset::Punch},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Radio — dense & even"), CompressorPreset::Radio},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Maximum — loud & flat"), CompressorPreset::Maximum},
}};

constexpr std::array<Choice<LoudnessStrength>, 3> kStrengths = {{
    {displayLabel(LoudnessStrength::Gentle).data(), LoudnessStrength::Gentle},
    {displayLabel(LoudnessStrength::Medium).data(), LoudnessStrength::Medium},
    {displayLabel(LoudnessStrength::Strong).data(), LoudnessStrength::Strong},
}};

// Without "off": the panel itself and its menu switch it off.
constexpr std::array<Choice<VisualizationMode>, 4> kVisualisations = {{
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Spectrum analyzer"), VisualizationMode::Spectrum},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "Oscilloscope"), VisualizationMode::Scope},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "LED level meter"), VisualizationMode::Led},
    {QT_TRANSLATE_NOOP("quorel::SettingsForm", "VU meter"), VisualizationMode::Vu},
}};

} // namespace

PlaybackSettingsTab::PlaybackSettingsTab(PlayerController& player, bool canStayOnTop,
                                         QWidget* parent)
    : SettingsForm(player, parent) {
    beginPlate();
    Switch* const onTop = addSwitch(tr("Always on top"), &S::alwaysOnTop);
    if (!canStayOnTop) {
        onTop->setEnabled(false);
        addCaption(onTop, tr("This desktop does not let a program keep its window on top."));
    }
    addSwitch(tr("Resume playback on startup"), &S::resumeOnStartup);
    addPicker(tr("When window is closed"), kOnClose, &S::quitOnClose);
    beginPlate();
    addSwitch(tr("Gapless playback"), &S::gapless);
    Switch* const trim = addSwitch(tr("Trim silence"), &S::trimSilence);
    addCaption(trim, tr("Trim leading/trailing silence"));
    // The files are searched anew for each value: not while the slider is on its way.
    SliderRow* const threshold = addSlider({.title = tr("Silence threshold"),
                                            .range = range(-90, -30, 1, 10),
                                            .text = decibels,
                                            .help = tr("Quieter than this counts as silence")},
                                           &S::trimThresholdDb, Apply::WhenReleased);
    SliderRow* const most = addSlider({.title = tr("Max trim per edge"),
                                       .range = range(1, 15, 1, 5),
                                       .text = seconds,
                                       .help = tr("Never trims more than this from start or end")},
                                      &S::trimMaxSec, Apply::WhenReleased);
    enableWith(&S::trimSilence, {threshold, most});
}

FadesSettingsTab::FadesSettingsTab(PlayerController& player, QWidget* parent)
    : SettingsForm(player, parent) {
    addFadeRow(tr("Play"), &S::fadePlayOn, &S::fadePlayMs);
    addFadeRow(tr("Pause"), &S::fadePauseOn, &S::fadePauseMs);
    addFadeRow(tr("Stop"), &S::fadeStopOn, &S::fadeStopMs);
    addFadeRow(tr("Track change"), &S::fadeChangeOn, &S::fadeChangeMs);
}

void FadesSettingsTab::addFadeRow(const QString& name, bool S::*on, double S::*length) {
    beginPlate();
    addSwitch(name, on)->setAccessibleName(tr("Fade: %1").arg(name));
    SliderRow* const row = addSlider({.title = tr("Length of the fade: %1").arg(name),
                                      .titled = false,
                                      .range = range(50, 5000, 50, 500),
                                      .text = milliseconds},
                                     length, Apply::WhileDragged);
    enableWith(on, {row});
}

ProcessingSettingsTab::ProcessingSettingsTab(PlayerController& player, QWidget* parent)
    : SettingsForm(player, parent) {
    beginPlate();
    addSwitch(tr("Loudness normalization"), &S::normalize);
    beginPlate();
    addSwitch(tr("Compressor"), &S::compOn);
    QComboBox* const style = addPicker(tr("Style"), kStyles, &S::compPreset);
    enableWith(&S::compOn, {style->parentWidget()});
    beginPlate();
    addSwitch(tr("Tone compensation"), &S::loudness);
    QComboBox* const strength = addPicker(tr("Strength"), kStrengths, &S::loudnessStrength);
    // To be read before it is switched on, too.
    addCaption(strength, tr("Lifts bass and treble as the volume comes down, to counter the "
                            "ear losing them at low levels. Nothing is added at full volume."));
    enableWith(&S::loudness, {strength->parentWidget()});
}

InterfaceSettingsTab::InterfaceSettingsTab(PlayerController& player, QWidget* parent)
    : SettingsForm(player, parent) {
    beginPlate();
    addPicker(tr("Visualization"), kVisualisations, &S::visualization);
    SliderRow* const brightness = addSlider({.title = tr("Visualization brightness"),
                                             .range = range(0.2, 1, 0.05, 0.2),
                                             .snap = FillSlider::Snap::None,
                                             .text = percent},
                                            &S::ledBrightness, Apply::WhileDragged);
    follow([brightness](const S& settings) {
        brightness->setEnabled(settings.visualization != VisualizationMode::Off);
    });
    beginPlate();
    addSlider({.title = tr("Playlist font size"),
               .range = range(10, 36, 0.5, 4),
               .snap = FillSlider::Snap::None,
               .text = points},
              &S::playlistFontSize, Apply::WhileDragged);
    addSwitch(tr("Show “QUOREL” wordmark on application icon"), &S::showWordmarkIcon);
    beginPlate();
    addScaleRow();
}

void InterfaceSettingsTab::addScaleRow() {
    auto* const row = new SliderRow(
        {.title = tr("Interface scale"),
         .range = range(0.5, 1.5, 0.1, 0.2),
         .text = percent,
         .help = tr("Zooms the whole player, in 10% steps. The window's minimum size grows with "
                    "it.")},
        this);
    auto* const reset = new QPushButton(tr("Reset"), row);
    reset->setAutoDefault(false);
    reset->setAccessibleDescription(tr("Interface scale back to 100%"));
    row->addBeforeValue(reset);
    addToPlate(row);
    // This window grows, too: the slider would run away from the mouse that drags it.
    connect(&row->slider(), &ValueSlider::editingEnded, this,
            [this, row] { player().setUIScale(row->slider().value()); });
    connect(reset, &QAbstractButton::clicked, this, [this] { player().setUIScale(1); });
    follow([row, reset](const S& settings) {
        row->showValue(settings.uiScale);
        reset->setEnabled(settings.uiScale != 1);
    });
}

} // namespace quorel
