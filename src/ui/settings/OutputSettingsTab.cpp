#include "ui/settings/OutputSettingsTab.h"

#include "player/PlayerController.h"
#include "ui/settings/FormParts.h"

#include <QComboBox>

namespace quorel {

namespace {

/// For a device that has not been seen yet nothing but this is known.
QString shortened(const QString& uid) {
    constexpr qsizetype kMost = 36;
    return uid.size() <= kMost ? uid : uid.first(kMost / 2) + u'…' + uid.last(kMost / 2 - 1);
}

} // namespace

OutputSettingsTab::OutputSettingsTab(PlayerController& player, QWidget* parent)
    : SettingsForm(player, parent) {
    beginPlate();
    devices_ = addPickerRow(tr("Output device"), {}, Qt::Vertical); // names are long
    notice_ = new FormCaption({}, this);
    notice_->setWarning();
    addToPlate(notice_);
    connect(devices_, &QComboBox::activated, this, [this](int index) {
        const QString uid = shown_.at(index).uid;
        this->player().setOutputDevice(uid.isEmpty() ? std::nullopt : std::optional(uid));
    });
    connect(&player, &PlayerController::noticeChanged, this, &OutputSettingsTab::refresh);
    follow([this](const AppSettings&) { refresh(); });
}

void OutputSettingsTab::showEvent(QShowEvent* event) {
    SettingsForm::showEvent(event);
    refresh();
}

QList<OutputSettingsTab::Entry> OutputSettingsTab::entries() const {
    QList<Entry> entries = {{QString(), tr("System default")}};
    const QString chosen = player().settings().outputDeviceUID.value_or(QString());
    bool isThere = chosen.isEmpty();
    for (const OutputDevice& device : player().outputDevices()) {
        entries.append({device.uid, device.name});
        isThere |= device.uid == chosen;
    }
    if (!isThere)
        entries.append({chosen, names_.value(chosen, shortened(chosen)), false});
    return entries;
}

void OutputSettingsTab::refresh() {
    for (const OutputDevice& device : player().outputDevices())
        names_[device.uid] = device.name;
    const QList<Entry> now = entries();
    if (shown_ != now) {
        shown_ = now;
        devices_->clear();
        for (const Entry& entry : now) {
            devices_->addItem(entry.isThere ? entry.name : tr("%1 (not connected)").arg(entry.name),
                              entry.uid);
            // Two devices of one kind bear the same name.
            devices_->setItemData(devices_->count() - 1, entry.uid, Qt::ToolTipRole);
        }
    }
    const QString chosen = player().settings().outputDeviceUID.value_or(QString());
    devices_->setCurrentIndex(devices_->findData(chosen));
    const bool isAbsent = !shown_.at(devices_->currentIndex()).isThere;
    notice_->setText(isAbsent && player().notice().isEmpty()
                         ? tr("Until it is connected, the sound goes to the system's default.")
                         : player().notice());
    notice_->setVisible(!notice_->text().isEmpty());
}

} // namespace quorel
