#include "ui/settings/SettingsView.h"

#include "player/PlayerController.h"
#include "ui/settings/OutputSettingsTab.h"
#include "ui/settings/SettingsTabBar.h"
#include "ui/settings/SettingsTabs.h"
#include "ui/theme/BasePainter.h"

#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace quorel {

SettingsView::SettingsView(PlayerController& player, bool canStayOnTop, QWidget* parent)
    : QDialog(parent)
    , player_(player)
    , before_(player.settings())
    , tabs_(new SettingsTabBar(this))
    , pages_(new QStackedWidget(this)) {
    setWindowTitle(tr("Settings"));
    tabs_->setAccessibleName(tr("Settings"));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_);
    column->addWidget(pages_, 1);
    addPage(Icon::PlayCircle, tr("Playback"),
            new PlaybackSettingsTab(player, canStayOnTop, pages_));
    addPage(Icon::Waveform, tr("Fades"), new FadesSettingsTab(player, pages_));
    addPage(Icon::Dial, tr("Processing"), new ProcessingSettingsTab(player, pages_));
    addPage(Icon::Loudspeaker, tr("Output"), new OutputSettingsTab(player, pages_));
    addPage(Icon::WindowFrame, tr("Interface"), new InterfaceSettingsTab(player, pages_));
    auto* const foot = new QWidget(this);
    auto* const buttons =
        new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Save, foot);
    (new QVBoxLayout(foot))->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsView::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SettingsView::reject);
    column->addWidget(foot);
    connect(tabs_, &QTabBar::currentChanged, pages_, &QStackedWidget::setCurrentIndex);
    addTabKeys();
    buttons->button(QDialogButtonBox::Save)->setDefault(true);
    tabs_->setFocus();
    fitToScale();
}

void SettingsView::addPage(Icon icon, const QString& name, QWidget* page) {
    page->setAccessibleName(name);
    // On a small screen, or in large letters, not all of a page may find room.
    auto* const area = new QScrollArea(pages_);
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(page);
    pages_->addWidget(area);
    tabs_->addTab(icon, name);
}

void SettingsView::addTabKeys() {
    const struct {
        Qt::KeyboardModifiers modifiers;
        Qt::Key key;
        int by;
    } kKeys[] = {{Qt::ControlModifier, Qt::Key_Tab, 1},
                 {Qt::ControlModifier, Qt::Key_PageDown, 1},
                 {Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Tab, -1},
                 {Qt::ControlModifier, Qt::Key_PageUp, -1}};
    for (const auto& [modifiers, key, by] : kKeys)
        connect(new QShortcut(QKeyCombination(modifiers, key), this), &QShortcut::activated, this,
                [this, by = by] {
                    tabs_->setCurrentIndex((tabs_->currentIndex() + by + tabs_->count()) %
                                           tabs_->count());
                });
}

void SettingsView::accept() {
    player_.scheduleSave();
    QDialog::accept();
}

void SettingsView::reject() {
    player_.restoreSettings(before_);
    QDialog::reject();
}

void SettingsView::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    // When the controls inside have heard of it, too.
    if (event->type() == QEvent::StyleChange && uiScale() != scale_)
        QMetaObject::invokeMethod(this, &SettingsView::fitToScale, Qt::QueuedConnection);
}

void SettingsView::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (uiScale() == scale_) // and not on the way to another
        size_ = QSizeF(size()) / scale_;
}

/// As large as before in base units, but no larger than the screen.
void SettingsView::fitToScale() {
    scale_ = uiScale();
    layout()->activate();
    resize(px(size_).boundedTo(screen()->availableSize() * 0.95));
}

} // namespace quorel
