#include "media/tags/ID3Writer.h"

#include "media/tags/FileCopy.h"
#include "media/tags/Id3Header.h"
#include "media/tags/Id3Reader.h"
#include "model/Path.h"
#include "storage/Descriptor.h"
#include "storage/FileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QUuid>
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <set>
#include <string_view>
#include <system_error>
#include <tuple>

namespace quorel {

namespace {

Error systemError(int code) {
    return {code, QString::fromStdString(std::generic_category().message(code)),
            QStringLiteral("POSIX")};
}

bool isMp3(const QString& path) {
    const QStringView name = QStringView(path).sliced(path.lastIndexOf(u'/') + 1);
    return name.lastIndexOf(u'.') > 0 && name.endsWith(u".mp3", Qt::CaseInsensitive);
}

// As replacing a file asks for no permission but the folder's, the file's own are looked at first;
// one that nobody may write is left alone by the superuser too.
int writeProtection(const QByteArray& path, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    }
    if ((status.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0) {
        return EACCES;
    }
    return ::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) != 0 ? errno : 0;
}

void copyOwnerAndPermissions(const struct stat& from, int to) {
    // Only the superuser may give a file away; a group of one's own may always be kept. What a file
    // system cannot keep is no reason to refuse the tags.
    const bool kept = ::fchown(to, from.st_uid, from.st_gid) == 0;
    std::ignore = kept || ::fchown(to, static_cast<uid_t>(-1), from.st_gid) == 0;
    ::fchmod(to, from.st_mode & 07777);
}

QByteArray temporaryBeside(const QByteArray& path) {
    const QByteArray name = QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toUpper();
    return path.first(path.lastIndexOf('/') + 1) + ".quorel-tmp-" + name + ".mp3";
}

/// What a new file is to hold: some bytes, then a part of an open file. It becomes like that one.
struct NewFile {
    QByteArrayView head;
    int from;
    const struct stat& like;
    int64_t offset;

    int writeInto(int to) const {
        int error = writeBytes(to, head);
        error = error != 0 ? error : copyBytes(from, offset, like.st_size - offset, to);
        if (error != 0) {
            return error;
        }
        copyOwnerAndPermissions(like, to);
        return ::fsync(to) != 0 ? errno : 0;
    }
};

// 0, or the errno of what failed; nothing is left then.
int create(const QByteArray& path, const NewFile& content) {
    Descriptor file(::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen()) {
        return errno;
    }
    int error = content.writeInto(file.number());
    if (!file.close() && error == 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(path.constData());
    }
    return error;
}

// Gives the file a second name, `to`; copies it where the file system knows no such names.
int keep(const QByteArray& path, const NewFile& whole, QByteArray& to) {
    constexpr int kMostKept = 1000;
    int error = EEXIST;
    for (int i = 1; i <= kMostKept && error == EEXIST; ++i) {
        to = path + (i == 1 ? QByteArray(".orig") : ".orig." + QByteArray::number(i));
        error = ::link(path.constData(), to.constData()) == 0 ? 0 : errno;
        if (error != 0 && error != EEXIST) {
            error = create(to, whole);
        }
    }
    return error;
}

// Bytes of the old tag, as it says itself. A file of only a header is one without a tag.
int64_t statedTagBytes(int file, int64_t fileBytes) {
    std::array<std::byte, Id3Header::kBytes> bytes{};
    if (fileBytes <= static_cast<int64_t>(bytes.size()) ||
        ::pread(file, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        return 0;
    }
    const auto header = Id3Header::parse(bytes);
    return header ? header->tagBytes() : 0;
}

// 0, or the errno of what failed.
int rewrite(const QByteArray& path, const QByteArray& tag) {
    const Descriptor old(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!old.isOpen() || ::fstat(old.number(), &status) != 0) {
        return errno;
    }
    if (const int error = writeProtection(path, status)) {
        return error;
    }
    const int64_t oldBytes = statedTagBytes(old.number(), status.st_size);
    const QByteArray temporary = temporaryBeside(path);
    if (const int error = create(
            temporary, {tag, old.number(), status, std::min<int64_t>(oldBytes, status.st_size)})) {
        return error;
    }
    QByteArray kept;
    if (oldBytes > status.st_size) {
        if (const int error = keep(path, {{}, old.number(), status, 0}, kept)) {
            ::unlink(temporary.constData());
            return error;
        }
    }
    if (std::rename(temporary.constData(), path.constData()) == 0) {
        return 0;
    }
    // The temporary file stays: it is whole, and what the user has typed is in it.
    const int error = errno;
    if (!kept.isEmpty()) {
        ::unlink(kept.constData());
    }
    return error;
}

// What two frames have in common of which the later one takes the other's place on reading.
std::string_view fieldOf(const Id3Item& item) {
    return item.id == "TDRC" ? std::string_view("TYER") : item.id;
}

} // namespace

int64_t ID3Writer::framesDropped(const QString& path) {
    std::string reason;
    const auto file = isMp3(path) ? InputFile::open(pathToBytes(path).toStdString(), reason)
                                  : std::optional<InputFile>();
    if (!file) {
        return 0;
    }
    const Id3Contents old = readId3Contents(*file, 0, file->size());
    std::set<std::string_view> fields;
    int64_t kept = 0;
    for (const Id3Item& item : old.items) {
        const bool isYear = fieldOf(item) == "TYER"; // stated twice it is one year still
        const bool isShown = !item.description.startsWith(QStringLiteral("iTun"));
        kept += isShown && (fields.insert(fieldOf(item)).second || isYear) ? 1 : 0;
    }
    return old.otherFrames + static_cast<int64_t>(old.items.size()) - kept;
}

std::optional<Error> ID3Writer::writeTags(const QString& path, const Tags& tags) {
    if (!isMp3(path)) {
        return Error{10, QStringLiteral("Tag writing is supported for MP3 files only")};
    }
    const int error = rewrite(FileReplacement::resolved(pathToBytes(path)), tagBytes(tags));
    return error != 0 ? std::optional(systemError(error)) : std::nullopt;
}

} // namespace quorel
