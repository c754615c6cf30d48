#pragma once

#include "core/Clock.h"
#include "core/SerialQueue.h"

#include <QUuid>
#include <QWidget>

namespace quorel {

class MissingFiles;
class PlayerController;
class PlaylistToolbar;
class TabsBar;
class TrackListView;

/// The lower half of the window: tabs, toolbar and the tracks of the active playlist.
class PlaylistArea final : public QWidget {
    Q_OBJECT

  public:
    /// Player and clock outlive it. `queue` is how files are looked for that may be gone.
    PlaylistArea(PlayerController& player, Clock& clock, QWidget* parent = nullptr,
                 SerialQueue::Mode queue = SerialQueue::Mode::Threaded);

    TabsBar& tabs() const { return *tabs_; }
    PlaylistToolbar& toolbar() const { return *toolbar_; }
    TrackListView& list() const { return *list_; }
    MissingFiles& missingFiles() const { return *missing_; }

  Q_SIGNALS:
    void addRequested();
    void loadRequested();
    void saveRequested(const QUuid& playlist);
    void editTagsRequested(const QUuid& track);
    void showFileRequested(const QString& path); ///< in the file manager

  protected:
    void changeEvent(QEvent* event) override;

  private:
    void addShortcuts();

    PlayerController& player_;
    MissingFiles* missing_;
    TabsBar* tabs_;
    PlaylistToolbar* toolbar_;
    TrackListView* list_;
};

} // namespace quorel
