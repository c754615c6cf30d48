#pragma once

#include "media/tags/Id3Builder.h"
#include "ui/AboutDialog.h"
#include "ui/BannerFixture.h"
#include "ui/FilesAndFoldersDialog.h"
#include "ui/panel/SavePresetDialog.h"
#include "ui/playlist/Questions.h"
#include "ui/playlist/TabMenu.h"
#include "ui/playlist/TrackMenu.h"
#include "ui/settings/SettingsView.h"
#include "ui/tags/TagEditorView.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTabBar>

namespace quorel::test {

/// Everything that the program shows, one after the other, over the main window.
class AllWindowsTest : public BannerTest {
  protected:
    struct Scene {
        std::string name;
        std::function<QWidget*()> show; ///< gives what came
    };

    AllWindowsTest() {
        AppSettings& all = saved.settings;
        for (bool AppSettings::*const on :
             {&AppSettings::trimSilence, &AppSettings::fadePlayOn, &AppSettings::fadePauseOn,
              &AppSettings::fadeStopOn, &AppSettings::fadeChangeOn, &AppSettings::compOn,
              &AppSettings::loudness, &AppSettings::normalize, &AppSettings::shuffle})
            all.*on = true;
        all.pbMode = PlaybackMode::One; // the widest
        all.outputDeviceUID = QStringLiteral("a device that is not here");
        saved.playlists[0].name = QStringLiteral("Songs for a long way home, in the rain");
        Track& picture = saved.playlists[0].tracks[3]; // with something that saving drops
        picture.path = pathFromBytes(folder.write(
            "a.mp3", QByteArray::fromStdString(id3Tag(3, frame3("APIC", "picture")) + "\xFF\xFB")));
    }

    std::vector<Scene> panels() {
        return {{"mode", [this] { return clicked("Mode: repeat one, shuffle"); }},
                {"equalizer", [this] { return clicked("Equalizer"); }}};
    }
    std::vector<Scene> dialogs() {
        std::vector<Scene> all = {
            {"about", [this] { return shown(new AboutDialog(window.get())); }},
            {"preset", [this] { return savingPreset(); }},
            {"tags", [this] { return editingTags(); }},
            {"clear", [this] { return asking(askToClear); }},
            {"close", [this] { return asking(askToClose); }},
        };
        for (int page = 0; page < 5; ++page)
            all.push_back({"settings " + std::to_string(page), [this, page] {
                               auto* const view =
                                   new SettingsView(*controller, false, window.get());
                               view->findChild<QTabBar*>()->setCurrentIndex(page);
                               return shown(view);
                           }});
        return all;
    }
    /// Menus, lists and Qt's own dialog.
    std::vector<Scene> laidOutByQt() {
        std::vector<Scene> all = {
            {"add files",
             [this] {
                 auto* const dialog = new FilesAndFoldersDialog(
                     window.get(), QStringLiteral("Add music"), pathFromBytes(folder.path()));
                 dialog->setViewMode(QFileDialog::List); // without what can be scrolled
                 dialog->setSidebarUrls({});
                 return shown(dialog);
             }},
            {"genres", [this] { return choosingGenre(); }},
            {"tab", [this] { return popped(new TabMenu(*controller, list(), window.get())); }},
            {"track", [this] {
                 return popped(new TrackMenu(*controller, &controller->activePlaylist().tracks[0],
                                             false, window.get()));
             }}};
        for (const QAction* const title : window->menuBar()->actions())
            all.push_back({"menu " + title->text().toStdString(),
                           [this, title] { return popped(title->menu()); }});
        return all;
    }
    /// Closes all but the main window.
    void leave() {
        for (QWidget* const other : QApplication::topLevelWidgets())
            if (other->isVisible() && other != window.get())
                other->close();
        rest();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

  private:
    QWidget* shown(QWidget* dialog) {
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
        rest();
        return dialog;
    }
    QWidget* popped(QMenu* menu) {
        menu->popup({});
        rest();
        return menu;
    }
    QWidget* clicked(const char* opener) {
        click(opener);
        return &front();
    }
    QWidget* asking(void (*ask)(PlayerController&, const QUuid&, QWidget*)) {
        ask(*controller, list(), window.get());
        rest();
        return &front();
    }
    QWidget* savingPreset() {
        auto* const dialog = new SavePresetDialog(*controller, window.get());
        dialog->findChild<QLineEdit*>()->setText(QStringLiteral("Rock")); // is there already
        dialog->accept();
        return shown(dialog);
    }
    QWidget* editingTags() {
        auto* const editor = new TagEditorView(*controller, idOf('D'), window.get());
        ::chmod(folder.path("a.mp3"), 0400); // so that there is an error to show
        editor->accept();
        ::chmod(folder.path("a.mp3"), 0600);
        return shown(editor);
    }
    QWidget* choosingGenre() {
        QWidget* const editor = editingTags();
        auto* const genre = find<QLineEdit>("Genre");
        genre->setFocus();
        QTest::keyClick(genre, Qt::Key_S);
        rest();
        return editor->findChild<QListWidget*>();
    }
};

} // namespace quorel::test
