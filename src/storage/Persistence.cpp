#include "storage/Persistence.h"

#include "model/Json.h"
#include "model/Path.h"
#include "storage/FileReplacement.h"
#include "storage/Files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

namespace quorel {

namespace {

bool isThere(const QByteArray& path) {
    struct stat status {};
    return ::lstat(path.constData(), &status) == 0;
}

/// The first name of its kind that is not taken by another file.
QByteArray unreadName(const QByteArray& path) {
    QByteArray name = path + ".unread";
    for (int number = 2; isThere(name) && !isSameFile(name, path); ++number)
        name = path + ".unread." + QByteArray::number(number);
    return name;
}

} // namespace

QString Persistence::dataURL() {
    QByteArray data = qgetenv("XDG_DATA_HOME");
    if (!data.startsWith('/')) // the standard has relative ones ignored
        data = qgetenv("HOME") + "/.local/share";
    const QByteArray folder = absolutePath(data, "/") + "/Quorel";
    makeFolders(folder);
    return pathFromBytes(folder + "/quorel-data.json");
}

Persistence::Persistence(const QString& path)
    : path_(pathToBytes(path)) {}

std::optional<PersistedState> Persistence::load() {
    const QByteArray file = FileReplacement::resolved(path_);
    FileReplacement::removeUnfinished(folderOf(file));
    std::optional<QByteArray> json = readFile(file);
    auto state = json ? fromJson<PersistedState>(std::move(*json)) : std::nullopt;
    if (state && state->playlists.isEmpty())
        state.reset();
    isUnread_ = !state && isThere(file);
    return state;
}

bool Persistence::save(const PersistedState& state) {
    makeFolders(folderOf(path_));
    if (isUnread_ && !setAside())
        return false;
    isUnread_ = false;
    FileReplacement file(path_, FileReplacement::Access::UserOnly);
    return writeJson(state, [&file](QByteArrayView piece) { return file.write(piece); }) &&
           file.commit();
}

bool Persistence::setAside() const {
    const QByteArray file = FileReplacement::resolved(path_);
    const QByteArray aside = unreadName(file);
    // A second name costs no space and leaves the file in place until the save succeeds. Where the
    // file system has no second names, or the file is another user's, it is moved.
    if (::link(file.constData(), aside.constData()) != 0 &&
        std::rename(file.constData(), aside.constData()) != 0)
        return !isThere(file);
    ::chmod(aside.constData(), 0600);
    return true;
}

LoadedState LoadedState::of(const QString& path) {
    LoadedState loaded{Persistence(path), {}};
    loaded.state = loaded.file.load();
    return loaded;
}

} // namespace quorel
