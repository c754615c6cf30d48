#include "player/FileImport.h"

#include "media/AudioFiles.h"
#include "media/M3U8.h"
#include "model/Path.h"
#include "storage/Files.h"

namespace quorel {

namespace {

bool isPlaylistFile(const QString& path) {
    const QStringView found = extension(path);
    return found.compare(u"m3u8", Qt::CaseInsensitive) == 0 ||
           found.compare(u"m3u", Qt::CaseInsensitive) == 0;
}

FileImport::Found collect(const QStringList& paths, ImportTarget target,
                          const CollectControl& control) {
    FileImport::Found found{target, {}, {}, {}};
    QStringList others;
    for (const QString& path : paths) {
        if (!isPlaylistFile(path)) {
            others += path;
        } else if (auto playlist = M3U8::importPlaylist(path)) {
            found.playlists += Playlist{QUuid(), playlist->name, Track::fromPaths(playlist->paths)};
        }
    }
    found.tracks = Track::fromPaths(collectAudioFiles(others, control));
    if (paths.size() == 1) {
        const QByteArray path = absolutePath(pathToBytes(paths.front()), workingFolder());
        if (isFolder(path))
            found.folderName = lastComponent(pathFromBytes(path)).toString();
    }
    return found;
}

} // namespace

void FileImport::request(Paths paths, ImportTarget target) {
    const auto tell = [this, alive = std::weak_ptr(alive_)](qsizetype files) {
        clock_.post([this, alive, files] {
            if (alive.expired() || requests_.empty())
                return;
            foundSoFar_ = files;
            events_.progressed();
        });
    };
    requests_.push_back(queue_.post(
        SerialQueue::Priority::Ordinary,
        [paths = std::move(paths), target, tell](const std::stop_token& stop) {
            return collect(paths(), target, {stop, tell});
        },
        [this](Found found) { ended(std::move(found)); }));
    events_.progressed();
}

void FileImport::ended(Found found) {
    requests_.pop_front();
    foundSoFar_ = 0;
    events_.found(std::move(found));
}

void FileImport::cancel() {
    for (std::stop_source& request : requests_)
        request.request_stop();
    requests_.clear();
    foundSoFar_ = 0;
    events_.progressed();
}

} // namespace quorel
