#include "desktop/LocalSocket.h"

#include "storage/Files.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace quorel::local_socket {

namespace {

constexpr int kBacklog = 64; // launches that may wait while the first one is still starting

/// The address of a path, which holds as long as its folder is open here: an address has room for
/// 107 bytes, so it leads through the folder's descriptor.
struct Address {
    explicit Address(const QByteArray& path)
        : folder(::open(folderOf(path).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
        const QByteArray shortPath = "/proc/self/fd/" + QByteArray::number(folder.number()) +
                                     path.sliced(path.lastIndexOf('/'));
        isValid = folder.isOpen() && shortPath.size() < qsizetype(sizeof name.sun_path);
        name.sun_family = AF_UNIX;
        if (isValid)
            std::memcpy(name.sun_path, shortPath.constData(), size_t(shortPath.size()));
    }

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&name); }

    Descriptor folder;
    sockaddr_un name{};
    bool isValid = false;
};

bool isOurs(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
           peer.uid == ::geteuid();
}

} // namespace

Descriptor listenAt(const QByteArray& path) {
    const Address address(path);
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    // Linux makes the file with the permissions that the socket has.
    if (!address.isValid || !socket.isOpen() || ::fchmod(socket.number(), 0600) != 0)
        return Descriptor();
    ::unlink(path.constData());
    if (::bind(socket.number(), address.get(), sizeof address.name) != 0 ||
        ::listen(socket.number(), kBacklog) != 0)
        return Descriptor();
    return socket;
}

Descriptor connectTo(const QByteArray& path, std::chrono::milliseconds patience) {
    const Address address(path);
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!address.isValid || !socket.isOpen())
        return Descriptor();
    const timeval limit{patience.count() / 1000, patience.count() % 1000 * 1000};
    ::setsockopt(socket.number(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    ::setsockopt(socket.number(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (::connect(socket.number(), address.get(), sizeof address.name) != 0 ||
        !isOurs(socket.number()))
        return Descriptor();
    return socket;
}

Descriptor acceptAt(int listener) {
    for (;;) {
        Descriptor socket(::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket.isOpen() || isOurs(socket.number()))
            return socket;
    }
}

} // namespace quorel::local_socket
