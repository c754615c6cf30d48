#include "ui/panel/SavePresetDialog.h"

#include "player/PlayerController.h"
#include "ui/theme/Scale.h"
#include "ui/theme/Theme.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace quorel {

SavePresetDialog::SavePresetDialog(PlayerController& player, QWidget* parent)
    : QDialog(parent)
    , player_(player)
    , name_(new QLineEdit(this))
    , refusal_(new QLabel(this)) {
    setWindowTitle(tr("Save EQ Preset"));
    name_->setPlaceholderText(tr("Preset name"));
    name_->setAccessibleName(tr("Preset name"));
    name_->setMinimumWidth(px(260));
    QPalette red = refusal_->palette();
    red.setColor(QPalette::WindowText, Theme::danger);
    refusal_->setPalette(red);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Save, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SavePresetDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(name_, &QLineEdit::textChanged, this, &SavePresetDialog::typed);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(px(16), px(16), px(16), px(12));
    column->setSpacing(px(8));
    column->addWidget(name_);
    column->addWidget(refusal_);
    column->addWidget(buttons);
    buttons->button(QDialogButtonBox::Save)->setObjectName(QStringLiteral("save"));
    typed();
}

void SavePresetDialog::typed() {
    refusal_->clear();
    findChild<QPushButton*>(QStringLiteral("save"))->setEnabled(!name_->text().trimmed().isEmpty());
}

void SavePresetDialog::accept() {
    const QString name = name_->text().trimmed();
    if (name.isEmpty())
        return;
    // The list shows those with a capital.
    const bool isBuiltIn = std::ranges::any_of(kEqPresets, [&name](const EqPreset& preset) {
        return preset.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    if (!isBuiltIn && player_.saveCustomEQPreset(name))
        QDialog::accept();
    else
        refusal_->setText(tr("Built-in preset names can't be reused."));
}

} // namespace quorel
