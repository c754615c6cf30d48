#pragma once

#include "player/MetadataLoader.h"
#include "player/Playback.h"
#include "player/PlayerController.h"
#include "player/RemovalHistory.h"
#include "player/StateSaver.h"
#include "player/TrackAnalyses.h"
#include "storage/CrashMark.h"

namespace quorel {

/// What an operation has changed, told of at its end.
struct PlayerChanges {
    struct Edit {
        QUuid playlist;
        TracksEdit edit;
    };
    struct Data {
        QUuid playlist;
        std::vector<RowRange> rows;
    };

    bool playlists = false;
    bool activePlaylist = false;
    std::vector<Edit> edits;
    std::vector<Data> data;
    bool selection = false;
    bool searchText = false;
    bool playingTrack = false;
    bool transport = false;
    SettingsParts settings;
    bool undo = false;
    bool notice = false;
    bool activity = false;
    bool position = false;
    bool jumped = false;
    bool meters = false;
    std::vector<std::pair<QUuid, std::optional<double>>> tempos;
    std::vector<KeyNudge> nudges;
};

/// What the controller is made of: the records and the concerns, and how they are tied together.
struct PlayerController::Core {
    Core(PlayerController& owner, PlayerParts parts);

    // --- Telling ---------------------------------------------------------------------------------

    /// From its beginning to its end something changes; the end of the outermost tells of it.
    class Operation {
      public:
        explicit Operation(Core& core)
            : core_(core) {
            Q_ASSERT_X(!core.isTelling, "PlayerController", "changed by one who was told");
            ++core_.operations;
        }
        ~Operation() {
            if (--core_.operations == 0)
                core_.tell();
        }
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

      private:
        Core& core_;
    };

    void tell();
    void tellOf(const PlayerChanges& told);
    void publishPosition();

    // --- Records ---------------------------------------------------------------------------------

    struct Place {
        TrackList* list = nullptr;
        qsizetype row = 0;
    };
    std::optional<Place> placeOf(const QUuid& track);

    const VisibleRows& visibleRows();
    void prepareSearch();
    void tabSwitched();
    void insertTracks(TrackList& list, qsizetype row, QList<Track> tracks);
    QUuid addTab(const QString& name, QList<Track> tracks);
    void listEdited(TrackList& list, const TracksEdit& edit, std::optional<qsizetype> cursorRow);
    void dataChanged(const TrackList& list, std::vector<RowRange> rows);
    void importFiles(FileImport::Paths paths, ImportTarget target);
    void land(FileImport::Found found);

    // --- Background ------------------------------------------------------------------------------

    void connectEngine();
    void playbackChanged();
    void trackStarted();
    void saved();
    void measure();
    void takeMeasured();
    void readingsApplied(const MetadataScan::Applied& applied);
    void keepResumePoint();
    void forgetResumePoint();
    void resume(bool wanted);
    void clearResumeMark();
    PersistedState snapshot() const;

    /// Applies what differs from `before`, and tells of it.
    void settingsEdited(const AppSettings& before);
    SettingsParts applySound(const AppSettings& before);
    SettingsParts applyTransport(const AppSettings& before);
    SettingsParts applyWindow(const AppSettings& before);
    void trimsOutdated();
    /// Limited to what the interface can show.
    static double scaleOf(const AppSettings& settings);

    PlayerController& controller;
    Clock& clock;
    const std::unique_ptr<PlayerEngine> engine;
    const std::optional<QString> outputOverride;
    Persistence store;
    const CrashMark resumeMark;
    SerialQueue files;
    SerialQueue collecting;
    SerialQueue analysis;
    SerialQueue writer;

    AppSettings settings;
    std::optional<QUuid> resumePlaylistID;
    std::optional<QUuid> resumeTrackID;
    std::optional<double> resumePosition;
    PlaylistTabs tabs;
    RemovalHistory removals;
    Selection selection;
    QString searchText;
    TrackSearch search;
    std::optional<VisibleRows> visible; ///< until something changes
    PlaybackState state;
    Track playing; ///< as it was when it was last seen in its playlist
    PlayerWindow* window = nullptr;
    bool isFullScreen = false;

    Playback playback;
    StateSaver saver;
    MetadataLoader loader;
    FileImport import;
    TrackAnalyses analyses;
    std::vector<TrackAnalyses::Result> measured; ///< to be taken when no save holds the records
    std::unique_ptr<Timer> searchTimer;          ///< while the search is being prepared
    std::unique_ptr<Timer> resumeTimer;
    bool isResuming = false; ///< the mark is set
    std::unique_ptr<Timer> markTimer;

    int operations = 0;
    bool isTelling = false;
    PlayerChanges changes;

  private:
    PlaylistTabs load(PlayerParts& parts);
};

} // namespace quorel
