#pragma once

#include "core/Error.h"
#include "media/tags/ID3Writer.h"
#include "model/PersistedState.h"
#include "player/FileImport.h"
#include "player/KeyMap.h"
#include "player/News.h"
#include "player/PlaybackState.h"
#include "player/PlayerParts.h"
#include "player/PlayerWindow.h"
#include "player/Selection.h"
#include "player/TracksEdit.h"

#include <QObject>
#include <memory>

namespace quorel {

/// The one object that the views observe: it owns the playlists, the settings and the state of
/// playback, drives the engine and decides what plays next.
///
/// Main thread only. An operation changes all that it concerns and then tells of it, once; whoever
/// is told may read whatever they like, but not change anything. An unknown track or playlist is no
/// error: the operation does nothing. Times are seconds.
class PlayerController : public QObject {
    Q_OBJECT

  public:
    /// Loads the state file and applies its settings to the engine.
    explicit PlayerController(PlayerParts parts);
    /// Writes what was not saved yet.
    ~PlayerController() override;

    /// What can wait until the views are there: opens the output, reads tags that are missing and,
    /// with `resume` and where the settings say so, plays on where the last session ended.
    void start(bool resume);

    // --- What there is ---------------------------------------------------------------------------

    qsizetype playlistCount() const;
    const Playlist& playlistAt(qsizetype index) const;
    std::optional<qsizetype> playlistIndex(const std::optional<QUuid>& id) const;
    const Playlist* findPlaylist(const std::optional<QUuid>& id) const;
    const QUuid& activePlaylistID() const;
    const Playlist& activePlaylist() const;
    /// The row of a track in that playlist; constant in time.
    std::optional<qsizetype> rowOf(const QUuid& track, const QUuid& playlist) const;

    const AppSettings& settings() const;
    const PlaybackState& playback() const;
    std::optional<QUuid> playingPlaylistID() const;
    std::optional<QUuid> playingTrackID() const;
    std::optional<QUuid> plannedNextID() const;
    /// The record of the playing track, also when it has left its playlist; null without one.
    const Track* playingTrack() const;
    bool canPlayNext() const;
    bool canPlayPrevious() const;

    const IdSet& selection() const;
    const QString& searchText() const;
    /// The rows of the active playlist that match the search, all without one.
    const VisibleRows& visibleTracks() const;

    bool removalUndoAvailable() const;
    bool closedPlaylistUndoAvailable() const;
    bool renameUndoAvailable() const;
    /// Names for the undo entries; empty without one.
    QString closedPlaylistName() const;
    QString renamedPlaylistName() const;

    /// Why nothing can be heard, or empty.
    QString notice() const;
    std::optional<Activity> activity() const;
    QList<OutputDevice> outputDevices() const;
    bool fullscreenActive() const;

    // --- Transport -------------------------------------------------------------------------------

    void play(const QUuid& trackID, const QUuid& playlistID);
    /// The play button: plays the topmost selected track unless it is the playing one, else
    /// toggles pause, else begins the shown playlist.
    void togglePlay();
    /// The space bar and the media key: pauses what sounds, else as togglePlay().
    void playPause();
    void pauseToggle();
    void pause(); ///< nothing while nothing sounds
    void stop();
    void nextTrack(bool automatic = false);
    void prevTrack();
    /// The play button pressed while the track plays.
    void restartTrack();
    void seek(double time);
    /// True where the key did something.
    bool handleKey(Qt::Key key, Qt::KeyboardModifiers modifiers, FocusContext focus);

    // --- Playlists -------------------------------------------------------------------------------

    void setActivePlaylist(const QUuid& id);
    void addPlaylist(const QString& name = {});
    void renamePlaylist(const QUuid& id, const QString& name);
    void undoRenamePlaylist();
    void closePlaylist(const QUuid& id);
    void undoClosePlaylist();
    void clearPlaylist(const QUuid& id);
    void movePlaylist(const QUuid& id, qsizetype toIndex);
    void shiftPlaylist(const QUuid& id, qsizetype by);
    bool canShiftPlaylist(const QUuid& id, qsizetype by) const;

    // --- Tracks of the active playlist -----------------------------------------------------------

    void removeSelected();
    void undoRemove();
    void clearActivePlaylist();
    /// Moves one row to the gap before a row, counted before the move.
    void moveTrack(qsizetype fromIndex, qsizetype toInsertionIndex);
    /// Moves rows, ascending, as one block; the result is that of moving them one by one.
    void moveTracks(const std::vector<qsizetype>& rows, qsizetype toInsertionIndex);
    void handleTrackClick(const QUuid& id, bool shift, bool cmd);
    void selectOnly(const QUuid& id);
    void selectAll();
    /// The search field was entered: makes what the first letter would otherwise wait for.
    void prepareSearch();
    void setSearchText(const QString& text);

    // --- Files -----------------------------------------------------------------------------------

    // Of audio files already collected, in their order; duplicates are kept.
    void addFiles(const QStringList& files);
    void addFiles(const QStringList& files, const QUuid& playlistID);
    void insertFiles(const QStringList& files, qsizetype at);
    /// The new playlist, or nothing where there are no files. Without a name it is numbered.
    std::optional<QUuid> newPlaylist(const QStringList& files, const QString& name = {});

    /// Collects what stands in and below these paths in the background and then adds it as said;
    /// what was asked for first comes first. Playlist files open as playlists of their own.
    void importPaths(const QStringList& paths, const ImportTarget& target);
    /// The same for the local files of a list of URIs (text/uri-list).
    void importUriList(const QByteArray& list, const ImportTarget& target);
    /// The playlist file as a new tab.
    void loadPlaylist(const QString& file, PlaylistFileDone done = {});
    /// Writes the playlist, as it is now, in the background.
    void savePlaylist(const QUuid& id, const QString& file, PlaylistFileDone done = {});
    /// Stops the activity that is shown.
    void cancelActivity();

    /// Rewrites the file's tag; waits for the disk.
    std::optional<Error> saveTags(const QUuid& trackID, const ID3Writer::Tags& tags);
    /// Tells later how many frames of the track's old tag saveTags would leave out.
    void countFramesDropped(const QUuid& trackID, std::function<void(qint64)> done);
    void loadMissingMetadata();
    void recomputeBPM(const QUuid& trackID);
    void clearTrimCache();

    // --- Settings --------------------------------------------------------------------------------

    void setVolume(double volume);
    void toggleMute();
    void setPan(double pan);
    void setPlaybackMode(PlaybackMode mode);
    void toggleShuffle();
    void setEQEnabled(bool on);
    /// Is not saved by itself: scheduleSave() when the drag ends.
    void setEQGain(int index, double db);
    void applyEQPreset(const QString& name);
    void resetEQ();
    /// False where the name is empty or that of a built-in preset.
    bool saveCustomEQPreset(const QString& name);
    void deleteCustomEQPreset(const QString& name);
    bool isCurrentEQPresetCustom() const;
    void setOutputDevice(const std::optional<QString>& uid);
    void cycleVisualization();
    void setUIScale(double scale);
    /// Any other fields: applied, told and saved.
    void changeSettings(const std::function<void(AppSettings&)>& change);
    /// Puts back the fields that the settings window shows.
    void restoreSettings(const AppSettings& before);
    void scheduleSave();

    // --- Window ----------------------------------------------------------------------------------

    /// The window follows the settings from now on; null when it is gone.
    void attachWindow(PlayerWindow* window);
    void togglePlaylistVisible();
    void setFullScreen(bool on);
    /// The window is, or is no longer, in full screen.
    void fullScreenChanged(bool active);
    void raiseWindow();

  Q_SIGNALS:
    void playlistsEdited(); ///< tabs came, went, moved or were renamed
    void activePlaylistChanged();
    void tracksEdited(const QUuid& playlist, const TracksEdit& edit);
    void trackDataChanged(const QUuid& playlist, const std::vector<RowRange>& rows);
    void selectionChanged();
    void searchTextChanged();
    void playingTrackChanged();
    void transportChanged(); ///< playing, paused, stopped, or what may follow
    void settingsChanged(SettingsParts which);
    void undoChanged();
    void noticeChanged(); ///< notice or output devices
    void activityChanged();
    /// What recomputeBPM() asked for; no tempo where none was found.
    void tempoMeasured(const Track& track, std::optional<double> bpm);
    void keyNudge(KeyNudge what);

  private:
    friend struct PlayerControllerInsides; ///< of the tests
    struct Core;
    std::unique_ptr<Core> core_;
};

} // namespace quorel
