#include "player/ControllerSoak.h"

#include <algorithm>
#include <numeric>

namespace quorel::test {

namespace {

using P = PlayerController;
using S = AppSettings;

constexpr qsizetype kManyTabs = 5;
constexpr qsizetype kManyTracks = 40;

} // namespace

ControllerSoak::ControllerSoak(P& player, Surroundings surroundings, quint64 seed)
    : player_(player)
    , at_(std::move(surroundings))
    , random_(seed)
    , view_(player, [this] {
        if (testing::Test::HasFatalFailure())
            return;
        ASSERT_TRUE(view_.areRowsCurrent()) << "told before it was done, by " << lastUse_;
        checkSelectionAndSearch();
        checkPlayback();
    }) {
    add("a pause", 40, [this] { at_.pass(between(0, at_.longestPause)); });
    addTransport();
    addTabs();
    addTracks();
    addFiles();
    addSettings();
    std::vector<int> weights;
    for (const Use& use : uses_)
        weights.push_back(use.weight);
    which_ = {weights.begin(), weights.end()};
}

bool ControllerSoak::step() {
    const Use& use = uses_.at(which_(random_));
    lastUse_ = use.name;
    use.run();
    if (player_.activePlaylist().tracks.size() > kManyTracks)
        player_.clearActivePlaylist();
    if (!testing::Test::HasFatalFailure())
        check();
    if (testing::Test::HasFatalFailure())
        ADD_FAILURE() << "after " << use.name;
    return !testing::Test::HasFatalFailure();
}

PersistedState ControllerSoak::expected() const {
    PersistedState state;
    for (qsizetype i = 0; i < player_.playlistCount(); ++i)
        state.playlists += player_.playlistAt(i);
    state.activePlaylistID = player_.activePlaylistID();
    state.settings = player_.settings();
    return state;
}

// --- Uses ----------------------------------------------------------------------------------------

QUuid ControllerSoak::someTab() {
    return below(20) == 0 ? QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11)
                          : player_.playlistAt(below(player_.playlistCount())).id;
}

/// Null where there is none, which no track bears.
QUuid ControllerSoak::someTrack(const Playlist& playlist) {
    return playlist.tracks.isEmpty() ? QUuid()
                                     : playlist.tracks.at(below(playlist.tracks.size())).id;
}

std::vector<qsizetype> ControllerSoak::someRows() {
    std::vector<qsizetype> rows;
    const qsizetype oneIn = 1 + below(6);
    for (qsizetype row = 0; row < player_.activePlaylist().tracks.size(); ++row)
        if (below(oneIn) == 0)
            rows.push_back(row);
    return rows;
}

QStringList ControllerSoak::someFiles() {
    QStringList files;
    for (qsizetype i = below(9); i > 0; --i)
        files += at_.files.at(below(at_.files.size()));
    return files;
}

void ControllerSoak::addTransport() {
    add("play", 20, [this] {
        const Playlist& playlist = player_.playlistAt(below(player_.playlistCount()));
        player_.play(someTrack(playlist), playlist.id);
    });
    add("the play button", 10, [this] { player_.togglePlay(); });
    add("the media key", 4, [this] { player_.playPause(); });
    add("pausing or not", 4, [this] { player_.pauseToggle(); });
    add("pausing", 2, [this] { player_.pause(); });
    add("stopping", 2, [this] { player_.stop(); });
    add("next", 20, [this] { player_.nextTrack(); });
    add("next, automatic", 3, [this] { player_.nextTrack(true); });
    add("previous", 10, [this] { player_.prevTrack(); });
    add("the track anew", 2, [this] { player_.restartTrack(); });
    add("seeking", 8, [this] { player_.seek(between(-5, 25)); });
    add("a key", 8, [this] {
        const Qt::Key kKeys[] = {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_A};
        player_.handleKey(kKeys[below(5)], below(2) == 0 ? Qt::ControlModifier : Qt::NoModifier,
                          {FocusKind(below(3)), below(2) == 0});
    });
}

void ControllerSoak::addTabs() {
    add("showing a tab", 12, [this] { player_.setActivePlaylist(someTab()); });
    add("a new tab", 5,
        [this] { player_.addPlaylist(QString::number(below(3)).repeated(below(3))); });
    add("renaming", 4, [this] { player_.renamePlaylist(someTab(), QString::number(below(9))); });
    add("undoing a name", 3, [this] { player_.undoRenamePlaylist(); });
    add("closing", 6, [this] {
        do
            player_.closePlaylist(someTab());
        while (player_.playlistCount() > kManyTabs);
    });
    add("undoing a closing", 4, [this] { player_.undoClosePlaylist(); });
    add("emptying", 1, [this] { player_.clearPlaylist(someTab()); });
    add("emptying the shown one", 1, [this] { player_.clearActivePlaylist(); });
    add("moving a tab", 3, [this] { player_.movePlaylist(someTab(), below(20) - 5); });
    add("shifting a tab", 3, [this] {
        const QUuid tab = someTab();
        const qsizetype by = below(5) - 2;
        const auto index = player_.playlistIndex(tab);
        const bool can = player_.canShiftPlaylist(tab, by);
        player_.shiftPlaylist(tab, by);
        ASSERT_EQ(player_.playlistIndex(tab), can ? std::optional(*index + by) : index);
    });
}

void ControllerSoak::addTracks() {
    const auto toInsertAt = [this] { return below(kManyTracks) - 5; };
    add("removing", 8, [this] { player_.removeSelected(); });
    add("undoing a removal", 6, [this] { player_.undoRemove(); });
    add("removing and undoing it", 6, [this] { removeAndUndo(); });
    add("moving one", 8,
        [this, toInsertAt] { player_.moveTrack(below(kManyTracks) - 2, toInsertAt()); });
    add("moving some", 8, [this, toInsertAt] { player_.moveTracks(someRows(), toInsertAt()); });
    add("moving a block", 8, [this] { moveAsOneByOne(); });
    add("clicking", 30, [this] {
        player_.handleTrackClick(someTrack(player_.activePlaylist()), below(3) == 0, below(3) == 0);
    });
    add("selecting one", 4, [this] { player_.selectOnly(someTrack(player_.activePlaylist())); });
    add("selecting all", 2, [this] { player_.selectAll(); });
    add("searching", 8, [this] {
        const char* const kTexts[] = {"", " ", "1", "2", "0", "TRACK", "1 ", "é", "zz"};
        player_.setSearchText(QString::fromUtf8(kTexts[below(9)]));
    });
}

void ControllerSoak::addFiles() {
    add("adding", 6, [this] { player_.addFiles(someFiles()); });
    add("adding to some tab", 3, [this] {
        if (const QUuid tab = someTab(); player_.activePlaylistID() != tab)
            player_.addFiles(someFiles().mid(0, 2), tab);
    });
    add("inserting", 6, [this] { player_.insertFiles(someFiles(), below(kManyTracks) - 3); });
    add("a tab of files", 2, [this] { player_.newPlaylist(someFiles()); });
    add("importing", 4, [this] {
        QStringList paths = someFiles();
        if (below(6) == 0)
            paths = QStringList{at_.folder};
        else if (below(3) == 0)
            paths += at_.playlistFile;
        player_.importPaths(paths,
                            {ImportTarget::Kind(below(3)), below(2) == 0 ? QUuid() : someTab(),
                             below(kManyTracks), below(2) == 0});
    });
    add("a playlist file", 1, [this] { player_.loadPlaylist(at_.playlistFile); });
    add("writing a playlist file", 2, [this] {
        player_.savePlaylist(player_.activePlaylistID(), at_.playlistFile,
                             [](const auto& error) { EXPECT_FALSE(error); });
    });
    add("stopping the work", 3, [this] { player_.cancelActivity(); });
    add("tags", 2, [this] {
        ID3Writer::Tags tags;
        tags.title = QStringLiteral("track %1 é").arg(below(9));
        player_.saveTags(someTrack(player_.activePlaylist()), tags);
    });
    add("reading tags", 2, [this] { player_.loadMissingMetadata(); });
    add("measuring a tempo", 2,
        [this] { player_.recomputeBPM(someTrack(player_.activePlaylist())); });
    add("forgetting silence", 1, [this] { player_.clearTrimCache(); });
}

void ControllerSoak::addSettings() {
    const auto toggle = [this](bool S::*field) {
        player_.changeSettings([field](S& settings) { settings.*field = !(settings.*field); });
    };
    add("the volume", 2, [this] { player_.setVolume(between(-0.5, 1.5)); });
    add("muting", 1, [this] { player_.toggleMute(); });
    add("the balance", 1, [this] { player_.setPan(between(-2, 2)); });
    add("the mode", 6, [this] { player_.setPlaybackMode(PlaybackMode(below(4))); });
    add("shuffle", 6, [this] { player_.toggleShuffle(); });
    add("the equaliser", 1, [this] { player_.setEQEnabled(below(2) == 0); });
    add("a band", 2, [this] { player_.setEQGain(int(below(12)) - 1, between(-12, 12)); });
    const auto own = [this] { return QString::number(below(3)); };
    add("a preset", 1, [this] { player_.applyEQPreset(kEqPresets.back().name); });
    add("an own preset", 1, [this, own] { player_.applyEQPreset(own()); });
    add("no preset", 1, [this] { player_.resetEQ(); });
    add("keeping a preset", 1, [this, own] {
        ASSERT_TRUE(player_.saveCustomEQPreset(own()) && player_.isCurrentEQPresetCustom());
    });
    add("deleting a preset", 1, [this, own] { player_.deleteCustomEQPreset(own()); });
    add("the device", 1, [this] { player_.setOutputDevice(QString::number(below(2))); });
    add("the picture", 1, [this] { player_.cycleVisualization(); });
    add("the scale", 1, [this] { player_.setUIScale(between(0, 2)); });
    add("joining", 3, [toggle] { toggle(&S::gapless); });
    add("trimming", 3, [toggle] { toggle(&S::trimSilence); });
    add("normalising", 3, [toggle] { toggle(&S::normalize); });
    add("fades", 4, [this, toggle] {
        bool S::*const kFades[] = {&S::fadePlayOn, &S::fadePauseOn, &S::fadeStopOn,
                                   &S::fadeChangeOn};
        toggle(kFades[below(4)]);
    });
    add("the defaults", 1, [this] { player_.restoreSettings({}); });
    add("the window", 2, [this] {
        player_.togglePlaylistVisible();
        player_.fullScreenChanged(below(2) == 0);
    });
}

/// A block moved at once ends up as moved track by track.
void ControllerSoak::moveAsOneByOne() {
    const qsizetype size = player_.activePlaylist().tracks.size();
    if (size == 0)
        return;
    const qsizetype first = below(size);
    const qsizetype count = 1 + below(size - first);
    const qsizetype gap = below(size + 1);
    TrackList slow(player_.activePlaylist());
    // Dropped within itself, a block stays; so does what goes around it in a circle.
    for (qsizetype i = 0; i < count; ++i)
        if (gap > first)
            slow.move({first}, std::max(gap, first + count));
        else
            slow.move({first + i}, gap + i);
    std::vector<qsizetype> rows(static_cast<std::size_t>(count));
    std::iota(rows.begin(), rows.end(), first);
    player_.moveTracks(rows, gap);
    ASSERT_EQ(slow.tracks(), player_.activePlaylist().tracks);
}

/// At once undone, as if nothing had been.
void ControllerSoak::removeAndUndo() {
    if (player_.selection().isEmpty())
        return;
    const Playlist whole = player_.activePlaylist();
    const std::vector<QUuid> selected = player_.selection().ids();
    player_.removeSelected();
    ASSERT_TRUE(player_.selection().isEmpty());
    ASSERT_EQ(player_.activePlaylist().tracks.size() + qsizetype(selected.size()),
              whole.tracks.size());
    player_.undoRemove();
    ASSERT_EQ(player_.activePlaylist(), whole);
}

} // namespace quorel::test
