#pragma once

#include "model/PersistedState.h"

namespace quorel {

/// The state file: read once when the program starts, replaced whole by every save. What it holds
/// on disk is always one complete state. One thread at a time; both calls wait for the disk.
class Persistence {
  public:
    /// Where the state file of this user belongs. Makes its folder where that is missing.
    static QString dataURL();

    explicit Persistence(const QString& path = dataURL());

    /// The state of the last session; nothing where the file is missing, cannot be read or decoded,
    /// or holds no playlist. The file stays as it is.
    std::optional<PersistedState> load();

    /// Replaces the file, readable by the user alone; false, and the old one intact, where that
    /// fails. One of which `load` made nothing is first set aside, beside it, as
    /// quorel-data.json.unread (.unread.2 and so on while earlier ones are there).
    bool save(const PersistedState& state);

  private:
    bool setAside() const;

    QByteArray path_;
    bool isUnread_ = false; ///< there is a file that the next save would destroy unread
};

/// A state file and what it held.
struct LoadedState {
    static LoadedState of(const QString& path);

    Persistence file;
    std::optional<PersistedState> state;
};

} // namespace quorel
