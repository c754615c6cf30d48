#pragma once

#include "storage/Descriptor.h"

#include <QByteArray>
#include <chrono>

// Unix sockets by the bytes of their paths, which may be longer than a socket's address can say.
// What could not be had is a descriptor that is not open. Any thread.
namespace quorel::local_socket {

/// Listens there, open to the user alone; what a process that died left there is replaced.
Descriptor listenAt(const QByteArray& path);

/// Connects to whom listens there, this user's process only. Sending and receiving give up after
/// `patience`.
Descriptor connectTo(const QByteArray& path, std::chrono::milliseconds patience);

/// The next connection of this user's; waits for nothing. Others are closed.
Descriptor acceptAt(int listener);

} // namespace quorel::local_socket
