#include "ui/panel/EQPanel.h"

#include "player/PlayerController.h"
#include "ui/controls/PanelButton.h"
#include "ui/controls/PopoverPanel.h"
#include "ui/controls/Sliders.h"
#include "ui/controls/Switch.h"
#include "ui/panel/PanelParts.h"
#include "ui/panel/SavePresetDialog.h"
#include "ui/texts/Texts.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorel {

namespace {

constexpr double kBandWidth = 27;
constexpr const char* kBands[kEqBands] = {"31", "62", "125", "250", "500",
                                          "1k", "2k", "4k",  "8k",  "16k"};

/// A preset's name for people: the built-in ones begin with a capital.
QString presetTitle(const QString& name) {
    return findEqPreset(name) ? name.left(1).toUpper() + name.mid(1) : name;
}

TransportButton* smallButton(Icon icon, const QString& help, QWidget* parent) {
    auto* const button = new TransportButton(icon, PanelButton::Face::Quiet, parent);
    button->setFaceSize({28, 26});
    button->setIconSize(16);
    button->setToolTip(help);
    button->setAccessibleName(help);
    return button;
}

} // namespace

void EQPanel::showAt(PlayerController& player, QWidget* button) {
    auto* const panel = new PopoverPanel(button);
    panel->setAccessibleName(tr("Equalizer"));
    new EQPanel(player, panel);
    connect(panel, &PopoverPanel::closed, panel, &QObject::deleteLater);
    panel->popUpAt(button);
}

EQPanel::EQPanel(PlayerController& player, PopoverPanel* panel)
    : QObject(panel)
    , player_(player)
    , panel_(panel) {
    auto* const column = new QVBoxLayout(panel);
    column->setSpacing(px(10));
    column->addWidget(makeHeader());
    column->addWidget(makeBands());
    auto* const reset = new TextIconButton(tr("Reset"), PanelButton::Face::Raised, panel);
    reset->setFaceSize({72, 26});
    connect(reset, &QAbstractButton::clicked, &player_, &PlayerController::resetEQ);
    column->addWidget(reset, 0, Qt::AlignHCenter);
    connect(&player_, &PlayerController::settingsChanged, this, [this](SettingsParts which) {
        if (which.testFlag(SettingsPart::Equalizer))
            refresh();
    });
    refresh();
}

QWidget* EQPanel::makeHeader() {
    auto* const header = new QWidget(panel_);
    auto* const row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(px(4));
    on_ = new Switch(tr("On"), header);
    on_->setAccessibleName(tr("Equalizer"));
    connect(on_, &QAbstractButton::clicked, &player_, &PlayerController::setEQEnabled);
    presets_ = new QComboBox(header);
    presets_->setAccessibleName(tr("Preset"));
    presets_->setAccessibleDescription(tr("Preset")); // its name is what is chosen, to AT-SPI
    presets_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(presets_, &QComboBox::activated, this,
            [this] { player_.applyEQPreset(presets_->currentData().toString()); });
    auto* const add = smallButton(Icon::PlusCircle, tr("Save current EQ as a preset"), header);
    connect(add, &QAbstractButton::clicked, this, &EQPanel::askForName);
    remove_ = smallButton(Icon::Trash, tr("Delete this preset"), header);
    connect(remove_, &QAbstractButton::clicked, this,
            [this] { player_.deleteCustomEQPreset(player_.settings().eqPreset); });
    row->addWidget(on_);
    row->addSpacing(px(4));
    row->addWidget(presets_, 1);
    row->addWidget(add);
    row->addWidget(remove_);
    return header;
}

QWidget* EQPanel::makeBands() {
    auto* const bands = new QWidget(panel_);
    auto* const grid = new QGridLayout(bands);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(px(2));
    for (int band = 0; band < kEqBands; ++band) {
        gains_ += new PanelText({}, Theme::TextRole::Indicator, Theme::text, kBandWidth, bands);
        auto* const slider = new EQBandSlider(bands);
        const QString hertz = QString::fromLatin1(kBands[band]);
        slider->setAccessibleName(
            tr("%1 Hz").arg(QString(hertz).replace(u'k', QString::fromLatin1("000"))));
        slider->setValueText([](double db) { return tr("%1 dB").arg(db, 0, 'f', 1); });
        connect(slider, &ValueSlider::valueEdited, &player_,
                [this, band](double db) { player_.setEQGain(band, db); });
        for (const auto end : {&ValueSlider::editingEnded, &ValueSlider::editingCutOff})
            connect(slider, end, &player_, &PlayerController::scheduleSave);
        sliders_ += slider;
        grid->addWidget(gains_.back(), 0, band, Qt::AlignHCenter);
        grid->addWidget(slider, 1, band, Qt::AlignHCenter);
        grid->addWidget(
            new PanelText(hertz, Theme::TextRole::Indicator, Theme::textDim, kBandWidth, bands), 2,
            band, Qt::AlignHCenter);
    }
    return bands;
}

void EQPanel::refresh() {
    const AppSettings& settings = player_.settings();
    on_->setChecked(settings.eqOn);
    fillPresets();
    remove_->setVisible(player_.isCurrentEQPresetCustom());
    for (qsizetype band = 0; band < sliders_.size(); ++band) {
        if (!sliders_.at(band)->isEditing())
            sliders_.at(band)->setValue(settings.eqGains.value(band));
        gains_.at(band)->setText(gainText(settings.eqGains, band));
    }
}

void EQPanel::fillPresets() {
    const AppSettings& settings = player_.settings();
    QStringList names;
    for (const EqPreset& preset : kEqPresets)
        names += preset.name;
    names += settings.customEQPresets.keys();
    QStringList shown;
    for (int i = 0; i < presets_->count(); ++i)
        shown += presets_->itemData(i).toString();
    shown.removeAll(QString());
    if (shown != names) {
        presets_->clear();
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (i == qsizetype(kEqPresets.size()))
                presets_->insertSeparator(presets_->count());
            presets_->addItem(presetTitle(names.at(i)), names.at(i));
        }
    }
    presets_->setCurrentIndex(presets_->findData(settings.eqPreset));
}

void EQPanel::askForName() {
    // The pop-over closes when the dialog opens, so the dialog belongs to its window.
    PlayerController& player = player_;
    QWidget* const window = panel_->parentWidget()->window();
    panel_->close();
    SavePresetDialog(player, window).exec();
}

} // namespace quorel
