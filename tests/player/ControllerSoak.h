#pragma once

#include "player/MadeList.h"
#include "player/PlayerController.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace quorel::test {

/// What a view shows of a controller, each thing read again only when a signal tells of it, and
/// rows edited as they are told. Whatever the controller forgets to tell differs from what it says.
class ToldView {
  public:
    /// `told` is called in slots, when the rows are as they were told.
    ToldView(PlayerController& player, const std::function<void()>& told);

    /// What of it differs from the controller; empty without any.
    std::string differences() const;
    /// The same of rows alone: true also while other things are still to be told.
    bool areRowsCurrent() const;

  private:
    using Row = std::tuple<QUuid, QString, QString, QString, std::optional<double>>;
    using Rows = std::vector<Row>;
    struct Part {
        const char* name;
        std::function<bool()> isCurrent;
    };

    template <class Signal, class Read>
    void show(const char* name, Signal signal, Read read);
    static Row rowFor(const Track& track) {
        return {track.id, track.path, track.title, track.artist, track.duration};
    }
    static Rows rowsFor(const Playlist& playlist);
    void tabsEdited();
    void edited(const QUuid& playlist, const TracksEdit& edit);
    void replay(const TracksEdit& edit, Rows& rows, const Playlist& after) const;

    PlayerController& player_;
    QObject context_;
    std::map<QUuid, Rows> rows_;
    std::vector<Part> parts_;
};

/// Uses a controller at random, in every way there is, and holds it to what must always be so.
class ControllerSoak {
  public:
    struct Surroundings {
        QStringList files;                ///< to be added
        QString folder;                   ///< of these files
        QString playlistFile;             ///< to write to and to read from
        std::function<void(double)> pass; ///< lets seconds go by
        double longestPause = 0;          ///< seconds
    };

    ControllerSoak(PlayerController& player, Surroundings surroundings, quint64 seed);

    /// One use and the checks after it, which fail the test; false where they did.
    bool step();
    /// What is to be found in the state file once the controller is gone.
    PersistedState expected() const;

  private:
    struct Use {
        const char* name;
        int weight;
        std::function<void()> run;
    };

    void add(const char* name, int weight, std::function<void()> run) {
        uses_.push_back({name, weight, std::move(run)});
    }
    void addTransport();
    void addTabs();
    void addTracks();
    void addFiles();
    void addSettings();

    qsizetype below(qsizetype bound) {
        return std::uniform_int_distribution<qsizetype>(0, bound - 1)(random_);
    }
    double between(double least, double most) {
        return std::uniform_real_distribution(least, most)(random_);
    }
    QUuid someTab();
    QUuid someTrack(const Playlist& playlist);
    std::vector<qsizetype> someRows();
    QStringList someFiles();

    void moveAsOneByOne();
    void removeAndUndo();

    void check() const;
    void checkSelectionAndSearch() const;
    void checkPlayback() const;
    void checkShuffleOrder() const;

    PlayerController& player_;
    const Surroundings at_;
    std::mt19937_64 random_;
    std::vector<Use> uses_;
    std::discrete_distribution<std::size_t> which_;
    const char* lastUse_ = "nothing";
    ToldView view_;
};

} // namespace quorel::test
