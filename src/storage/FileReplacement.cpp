#include "storage/FileReplacement.h"

#include "storage/Files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <QRandomGenerator>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <memory>

namespace quorel {

namespace {

constexpr QByteArrayView kUnfinishedPrefix = ".quorel-save-";

/// The disk is told to begin each time so much has come, so that less is left to wait for: a tenth
/// of the time that saving 70 MB takes.
constexpr qint64 kFlushStep = 8 << 20;

QByteArray unfinishedIn(const QByteArray& folder) {
    const quint64 number = QRandomGenerator::system()->generate64();
    return folder + '/' + kUnfinishedPrefix.toByteArray() + QByteArray::number(number, 16);
}

/// What a rename into that folder did lasts from here on. Not every file system can say so, and
/// nothing could be done about a failure: the new file is in place already.
void flushFolder(const QByteArray& folder) {
    const Descriptor opened(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.isOpen())
        ::fsync(opened.number());
}

} // namespace

FileReplacement::FileReplacement(const QByteArray& path, Access access)
    : target_(resolved(path))
    , unfinished_(unfinishedIn(folderOf(target_)))
    , file_(::open(unfinished_.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                   access == Access::UserOnly ? 0600 : 0666)) {
    if (!file_.isOpen()) {
        unfinished_.clear();
        return;
    }
    struct stat old {};
    const bool exists = ::lstat(target_.constData(), &old) == 0;
    // A device or a pipe is nothing that a file could take the place of.
    good_ = exists ? S_ISREG(old.st_mode) : errno == ENOENT;
    if (exists && access == Access::AsUsual)
        ::fchmod(file_.number(), old.st_mode & 0777);
}

FileReplacement::~FileReplacement() {
    if (!unfinished_.isEmpty())
        ::unlink(unfinished_.constData());
}

bool FileReplacement::write(QByteArrayView bytes) {
    while (good_ && !bytes.isEmpty()) {
        const ssize_t done =
            ::write(file_.number(), bytes.data(), static_cast<size_t>(bytes.size()));
        if (done > 0) {
            bytes = bytes.sliced(done);
            written_ += done;
        } else {
            good_ = done < 0 && errno == EINTR;
        }
    }
    if (good_ && written_ - flushing_ >= kFlushStep) {
        ::sync_file_range(file_.number(), flushing_, written_ - flushing_, SYNC_FILE_RANGE_WRITE);
        flushing_ = written_;
    }
    return good_;
}

bool FileReplacement::commit() {
    good_ = good_ && ::fsync(file_.number()) == 0;
    good_ = file_.close() && good_;
    good_ = good_ && std::rename(unfinished_.constData(), target_.constData()) == 0;
    if (good_) {
        unfinished_.clear();
        flushFolder(folderOf(target_));
    }
    return good_;
}

void FileReplacement::removeUnfinished(const QByteArray& folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> opened(::opendir(folder.constData()), ::closedir);
    while (const dirent* entry = opened ? ::readdir(opened.get()) : nullptr) {
        if (QByteArrayView(entry->d_name).startsWith(kUnfinishedPrefix))
            ::unlinkat(::dirfd(opened.get()), entry->d_name, 0);
    }
}

QByteArray FileReplacement::resolved(QByteArray path) {
    constexpr int kMostLinks = 40; // what Linux itself follows
    for (int i = 0; i < kMostLinks; ++i) {
        QByteArray target(PATH_MAX, '\0');
        const ssize_t size =
            ::readlink(path.constData(), target.data(), static_cast<size_t>(target.size()));
        if (size <= 0)
            break;
        target.truncate(size);
        path = target.startsWith('/') ? target : folderOf(path) + '/' + target;
    }
    return path;
}

} // namespace quorel
