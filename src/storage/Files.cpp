#include "storage/Files.h"

#include "storage/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QList>
#include <cerrno>
#include <climits>

namespace quorel {

namespace {

/// The components of an absolute path put together again.
QByteArray tidied(const QByteArray& path, bool resolveParents) {
    QByteArrayList names;
    for (const QByteArray& name : path.split('/')) {
        if (resolveParents && name == "..") {
            if (!names.isEmpty())
                names.removeLast();
        } else if (!name.isEmpty() && name != ".") {
            names += name;
        }
    }
    return '/' + names.join('/');
}

} // namespace

bool isRegularFile(const QByteArray& path) {
    struct stat status {};
    return ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode);
}

bool isFolder(const QByteArray& path) {
    struct stat status {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

qint64 fileSize(const QByteArray& path) {
    struct stat status {};
    return ::stat(path.constData(), &status) == 0 ? status.st_size : 0;
}

std::optional<QByteArray> readFile(const QByteArray& path) {
    if (!isRegularFile(path))
        return std::nullopt;
    const Descriptor file(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    QByteArray bytes(status.st_size, Qt::Uninitialized);
    qsizetype size = 0;
    while (size < bytes.size()) {
        const auto wanted = static_cast<size_t>(bytes.size() - size);
        const ssize_t got = ::read(file.number(), bytes.data() + size, wanted);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            break;
        size += got;
    }
    bytes.truncate(size);
    return bytes;
}

bool isSameFile(const QByteArray& path, const QByteArray& other) {
    struct stat a {};
    struct stat b {};
    return ::stat(path.constData(), &a) == 0 && ::stat(other.constData(), &b) == 0 &&
           a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

QByteArray absolutePath(const QByteArray& path, const QByteArray& folder) {
    const QByteArray whole = path.startsWith('/') ? path : folder + '/' + path;
    QByteArray plain = tidied(whole, false);
    if (!(plain + '/').contains("/../"))
        return plain;
    const QByteArray resolved = tidied(whole, true);
    return isSameFile(plain, resolved) ? resolved : plain;
}

QByteArray workingFolder() {
    QByteArray folder(PATH_MAX, '\0');
    const char* found = ::getcwd(folder.data(), static_cast<size_t>(folder.size()));
    return found ? QByteArray(found) : QByteArray("/");
}

QByteArray folderOf(const QByteArray& path) {
    return path.left(qMax(path.lastIndexOf('/'), qsizetype(1)));
}

void makeFolders(const QByteArray& path) {
    for (qsizetype end = path.indexOf('/', 1); end >= 0; end = path.indexOf('/', end + 1))
        ::mkdir(path.left(end).constData(), 0700);
    ::mkdir(path.constData(), 0700);
}

} // namespace quorel
