#include "ui/playlist/PlaylistArea.h"

#include "player/PlayerController.h"
#include "ui/playlist/MissingFiles.h"
#include "ui/playlist/PlaylistToolbar.h"
#include "ui/playlist/Questions.h"
#include "ui/playlist/SearchField.h"
#include "ui/playlist/TabsBar.h"
#include "ui/playlist/TrackListView.h"

#include <QEvent>
#include <QShortcut>
#include <QVBoxLayout>

namespace quorel {

PlaylistArea::PlaylistArea(PlayerController& player, Clock& clock, QWidget* parent,
                           SerialQueue::Mode queue)
    : QWidget(parent)
    , player_(player)
    , missing_(new MissingFiles(clock, queue, this))
    , tabs_(new TabsBar(player, clock, this))
    , toolbar_(new PlaylistToolbar(player, this))
    , list_(new TrackListView(player, clock, *missing_, this)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(tabs_);
    column->addWidget(toolbar_);
    column->addWidget(list_, 1);
    connect(toolbar_, &PlaylistToolbar::addRequested, this, &PlaylistArea::addRequested);
    connect(toolbar_, &PlaylistToolbar::loadRequested, this, &PlaylistArea::loadRequested);
    connect(toolbar_, &PlaylistToolbar::saveRequested, this, &PlaylistArea::saveRequested);
    connect(tabs_, &TabsBar::loadRequested, this, &PlaylistArea::loadRequested);
    connect(tabs_, &TabsBar::saveRequested, this, &PlaylistArea::saveRequested);
    connect(tabs_, &TabsBar::renamingEnded, list_, qOverload<>(&QWidget::setFocus));
    connect(list_, &TrackListView::editTagsRequested, this, &PlaylistArea::editTagsRequested);
    connect(list_, &TrackListView::showFileRequested, this, &PlaylistArea::showFileRequested);
    connect(&toolbar_->search(), &SearchField::left, this, [this](bool toResults) {
        if (toResults)
            list_->enterByKeyboard();
        else
            list_->setFocus();
    });
    addShortcuts();
}

void PlaylistArea::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, auto action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(QKeySequence(Qt::CTRL | Qt::Key_Tab), [this] { tabs_->step(1); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Tab), [this] { tabs_->step(-1); });
    add(QKeySequence(Qt::CTRL | Qt::Key_W),
        [this] { askToClose(player_, player_.activePlaylistID(), this); });
    add(QKeySequence::Find, [this] {
        toolbar_->search().setFocus(Qt::ShortcutFocusReason);
        toolbar_->search().selectAll();
    });
}

void PlaylistArea::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // Files come and go while one is at work in another window.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && missing_)
        missing_->forget();
}

} // namespace quorel
