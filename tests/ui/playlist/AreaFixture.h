#pragma once

#include "player/ControllerFixture.h"
#include "ui/playlist/DragContent.h"
#include "ui/playlist/PlaylistArea.h"
#include "ui/playlist/PlaylistToolbar.h"
#include "ui/playlist/SearchField.h"
#include "ui/playlist/TabRow.h"
#include "ui/playlist/TabsBar.h"
#include "ui/playlist/TrackListView.h"

#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTest>

namespace quorel::test {

/// The real area over the real controller, in a window of 600 by 400 pixels.
class AreaTest : public ControllerTest {
  protected:
    /// With playlists of these letters, every second one from the album x; the first is shown.
    void show(std::initializer_list<std::string_view> playlists) {
        area.reset();
        saved.playlists.clear();
        for (const std::string_view which : playlists) {
            saved.playlists += letters(which);
            for (qsizetype row = 1; row < saved.playlists.back().tracks.size(); row += 2)
                saved.playlists.back().tracks[row].album = QStringLiteral("x");
        }
        launch();
        area =
            std::make_unique<PlaylistArea>(*controller, clock, nullptr, SerialQueue::Mode::Pumped);
        area->resize(600, 400);
        area->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(area.get()));
        area->activateWindow();
        view().setFocus();
    }

    /// A hundred rows, more than are seen: /0 to /99.
    void showMany() {
        show({"A"});
        QStringList files;
        for (int i = 0; i < 100; ++i)
            files += QStringLiteral("/%1").arg(i);
        controller->addFiles(files);
        settle();
    }

    TrackListView& view() { return area->list(); }
    TabRow& tabs() { return area->tabs().tabs(); }
    QWidget* viewport() { return view().viewport(); }
    QRect rowRect(int row) { return view().visualRect(view().model()->index(row, 0)); }
    int currentRow() { return view().currentIndex().row(); }

    void clickRow(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(viewport(), Qt::LeftButton, modifiers, rowRect(row).center());
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&view(), Qt::Key(key), modifiers);
    }
    std::string selected() {
        std::string letters = lettersOf(controller->selection().ids());
        std::ranges::sort(letters);
        return letters;
    }
    QPoint tabAt(int index) { return tabs().mapTo(&area->tabs(), tabs().tabRect(index).center()); }

    template <class Event>
    static bool send(QWidget* to, QPoint at, const QMimeData& dragged) {
        if constexpr (std::is_same_v<Event, QDropEvent>) {
            QDropEvent event(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(to, &event);
            return event.isAccepted();
        } else {
            Event event(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(to, &event);
            return event.isAccepted();
        }
    }
    /// Drags it there; whether it may be dropped.
    static bool dragTo(QWidget* to, QPoint at, const QMimeData& dragged) {
        return send<QDragEnterEvent>(to, at, dragged) && send<QDragMoveEvent>(to, at, dragged);
    }
    bool dropAt(QWidget* to, QPoint at, const QMimeData& dragged) {
        const bool dropped = dragTo(to, at, dragged) && send<QDropEvent>(to, at, dragged);
        settle();
        return dropped;
    }
    /// The middle of the gap above a row.
    QPoint gapAbove(int row) { return {100, rowRect(row).top()}; }

    /// What a drag of these rows carries, which are made the selected ones.
    std::unique_ptr<DraggedTracks> rows(std::string_view which) {
        QList<QUuid> ids;
        QStringList paths;
        for (const char letter : which) {
            ids += idOf(letter);
            paths += u'/' + QChar::fromLatin1(letter);
        }
        return std::make_unique<DraggedTracks>(list(), ids, paths);
    }
    /// Files of a real folder, from another program.
    std::unique_ptr<QMimeData> files(std::initializer_list<const char*> names) {
        QByteArray uris;
        for (const char* const name : names)
            uris += "file://" + folder.write(name) + "\r\n";
        auto dragged = std::make_unique<QMimeData>();
        dragged->setData(QStringLiteral("text/uri-list"), uris);
        return dragged;
    }

    static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// The texts of the open menu; those in brackets are disabled.
    static std::string menuTexts() {
        std::string texts;
        for (const QAction* const action : openMenu()->actions()) {
            const std::string text = action->isSeparator() ? "-" : action->text().toStdString();
            texts += (texts.empty() ? "" : "|") + (action->isEnabled() ? text : '(' + text + ')');
        }
        return texts;
    }
    static void choose(const QString& text) {
        for (QAction* const action : openMenu()->actions()) {
            if (action->text() != text)
                continue;
            openMenu()->close();
            action->trigger();
            return;
        }
        ADD_FAILURE() << "no item " << text.toStdString();
    }
    void openMenuAt(QWidget* widget, QPoint at) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, widget->mapToGlobal(at));
        QCoreApplication::sendEvent(widget, &event);
    }

    std::unique_ptr<PlaylistArea> area;
};

} // namespace quorel::test
