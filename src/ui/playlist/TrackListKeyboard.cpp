// The track list under the keyboard: moving the current row, finding a track by typing its name.
#include "player/PlayerController.h"
#include "player/TrackSearch.h"
#include "ui/playlist/TrackDelegate.h"
#include "ui/playlist/TrackListModel.h"
#include "ui/playlist/TrackListView.h"
#include "ui/texts/Texts.h"
#include "ui/theme/FocusVisible.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyleHints>
#include <algorithm>

namespace quorel {

void TrackListView::goTo(int row, bool extend) {
    const QModelIndex index = model_->index(row);
    const Track* const track = model_->trackAt(index);
    if (!track)
        return;
    const QUuid id = track->id;
    if (!extend) {
        rangeStart_ = {};
        player_.selectOnly(id);
    } else {
        const Track* const current = model_->trackAt(currentIndex());
        if (rangeStart_.isNull())
            rangeStart_ = current ? current->id : id;
        player_.selectOnly(rangeStart_);
        player_.handleTrackClick(id, true, false);
    }
    setCurrent(index);
    scrollTo(index);
}

void TrackListView::enterByKeyboard() {
    beginFocusWalk();
    setFocus(Qt::TabFocusReason);
    goTo(std::max(currentIndex().row(), 0), false);
}

void TrackListView::showPlayingTrack() {
    const auto playlist = player_.playingPlaylistID();
    const auto track = player_.playingTrackID();
    if (!playlist || !track)
        return;
    player_.setActivePlaylist(*playlist);
    const auto row = player_.rowOf(*track, *playlist);
    if (!row)
        return;
    const auto isHidden = [&] {
        const int shown = model_->shownRow(*row);
        return shown >= model_->rowCount() || model_->playlistRow(shown) != *row;
    };
    if (isHidden())
        player_.setSearchText({});
    goTo(model_->shownRow(*row), false);
    scrollTo(currentIndex(), PositionAtCenter);
}

/// The row that a key leads to. Plain arrows come here only where nobody else wants them.
bool TrackListView::moveByKey(const QKeyEvent& event) {
    const int last = model_->rowCount() - 1;
    const int page = std::max(viewport()->height() / delegate_->rowHeight() - 1, 1);
    const int current = currentIndex().row(); // -1 without
    int row = 0;
    switch (event.key()) {
    case Qt::Key_Home:
        break;
    case Qt::Key_End:
        row = last;
        break;
    case Qt::Key_PageUp:
        row = current - page;
        break;
    case Qt::Key_PageDown:
        row = current + page;
        break;
    case Qt::Key_Up:
        row = current - 1;
        break;
    case Qt::Key_Down:
        row = current + 1;
        break;
    default:
        return false;
    }
    if (last >= 0)
        goTo(std::clamp(row, 0, last), event.modifiers().testFlag(Qt::ShiftModifier));
    return true;
}

void TrackListView::keyPressEvent(QKeyEvent* event) {
    const bool plain =
        !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const Track* const current = model_->trackAt(currentIndex());
    if (event->matches(QKeySequence::SelectAll)) {
        player_.selectAll();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        play(currentIndex());
    } else if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
        player_.removeSelected();
    } else if (event->key() == Qt::Key_Space && !plain && current) {
        player_.handleTrackClick(current->id, false, true);
    } else if (moveByKey(*event)) {
        event->accept();
    } else if (const QString text = event->text(); plain && !text.isEmpty() && text[0].isPrint()) {
        keyboardSearch(text);
    } else {
        event->ignore();
    }
}

/// The item view would make the first row the current one.
void TrackListView::focusInEvent(QFocusEvent* event) {
    const bool hadCurrent = currentIndex().isValid();
    QListView::focusInEvent(event);
    // Qt makes the first row the current one, which shows a walk by Tab where it has got to.
    const bool isWalk =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    if (!hadCurrent && !isWalk)
        selectionModel()->clearCurrentIndex();
}

bool TrackListView::isTypingAhead() const {
    const std::chrono::milliseconds limit(QGuiApplication::styleHints()->keyboardInputInterval());
    return !typed_.isEmpty() && clock_.now() - typedAt_ < 2 * limit;
}

bool TrackListView::event(QEvent* event) {
    // In a name that is being typed a space is no command.
    if (event->type() == QEvent::ShortcutOverride && isTypingAhead()) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Space && key->modifiers() == Qt::NoModifier) {
            event->accept();
            return true;
        }
    }
    return QListView::event(event);
}

void TrackListView::keyboardSearch(const QString& typed) {
    const bool goesOn = isTypingAhead();
    const bool again = goesOn && typed_ == typed; // the same letter: the next one with it
    typed_ = goesOn && !again ? typed_ + typed : typed;
    typedAt_ = clock_.now();
    const auto begins = [this](const Track& track) {
        const auto startsLike = [this](const QString& text, qsizetype length) {
            return text.startsWith(QStringView(typed_).left(length), Qt::CaseInsensitive);
        };
        const QString& artist = track.artist;
        return startsLike(track.title, typed_.size()) ||
               (startsLike(artist, artist.size()) && startsLike(rowLabel(track), typed_.size()));
    };
    const QList<Track>& tracks = player_.activePlaylist().tracks;
    const VisibleRows& visible = player_.visibleTracks();
    const int rows = model_->rowCount();
    const int current = currentIndex().row(); // -1 without
    const int first = goesOn && !again ? std::max(current, 0) : current + 1;
    for (int step = 0; step < rows; ++step) {
        const int row = (first + step) % rows;
        if (begins(tracks.at(visible.rowAt(row)))) {
            goTo(row, false);
            return;
        }
    }
}

} // namespace quorel
