#include "media/FolderWalk.h"

#include "storage/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <memory>

namespace quorel {

namespace {

/// The names that a folder's file ".hidden" gives, one a line, as file browsers read it.
QSet<QByteArray> namesHiddenIn(const QByteArray& folder) {
    const QByteArrayList names = readFile(folder + "/.hidden").value_or(QByteArray()).split('\n');
    return {names.begin(), names.end()};
}

} // namespace

FolderWalk::FolderWalk(Actions actions)
    : actions_(std::move(actions)) {}

void FolderWalk::enter(const QByteArray& folder) {
    // What was entered from elsewhere may be wanted by this path too; mounts can make circles.
    Folders entered;
    walk(folder, entered);
    entered_ += entered;
}

void FolderWalk::followLinks() {
    while (!links_.empty()) {
        for (const QByteArray& link : std::exchange(links_, {}))
            walk(link, entered_);
    }
}

void FolderWalk::walk(const QByteArray& root, Folders& passedOver) {
    std::vector<QByteArray> waiting{root};
    while (!waiting.empty() && !actions_.stop.stop_requested()) {
        const QByteArray folder = std::move(waiting.back());
        waiting.pop_back();
        const QByteArray prefix = folder.endsWith('/') ? folder : folder + '/';
        for (const Entry& entry : list(folder, passedOver)) {
            if (entry.kind == Kind::File)
                actions_.found(prefix + entry.name);
            else
                (entry.kind == Kind::Folder ? waiting : links_).push_back(prefix + entry.name);
        }
        actions_.afterFolder();
    }
}

std::vector<FolderWalk::Entry> FolderWalk::list(const QByteArray& folder,
                                                Folders& passedOver) const {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::opendir(folder.constData()), ::closedir);
    struct stat status {};
    if (!stream || ::fstat(::dirfd(stream.get()), &status) != 0)
        return {};
    const qsizetype before = passedOver.size();
    passedOver.insert({status.st_dev, status.st_ino});
    if (passedOver.size() == before)
        return {};

    std::vector<Entry> entries;
    bool hidesSome = false;
    while (const dirent* entry = ::readdir(stream.get())) {
        hidesSome = hidesSome || QByteArrayView(entry->d_name) == ".hidden";
        if (entry->d_name[0] == '.')
            continue;
        const Kind kind = kindOf(::dirfd(stream.get()), entry->d_name, entry->d_type);
        if (kind != Kind::Other)
            entries.push_back({entry->d_name, kind});
    }
    if (hidesSome) {
        const QSet<QByteArray> hidden = namesHiddenIn(folder);
        std::erase_if(entries, [&](const Entry& entry) { return hidden.contains(entry.name); });
    }
    std::ranges::sort(entries, {}, &Entry::name);
    return entries;
}

FolderWalk::Kind FolderWalk::kindOf(int folder, const char* name, unsigned char type) const {
    struct stat status {};
    if (type == DT_UNKNOWN && ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0)
        type = IFTODT(status.st_mode);
    if (type == DT_DIR)
        return Kind::Folder;
    const bool isLink = type == DT_LNK;
    if (isLink && ::fstatat(folder, name, &status, 0) == 0)
        type = IFTODT(status.st_mode);
    if (type == DT_REG && actions_.isWanted(name))
        return Kind::File;
    return isLink && type == DT_DIR ? Kind::LinkToFolder : Kind::Other;
}

} // namespace quorel
