#pragma once

#include <QByteArray>
#include <cstdint>

namespace quorel {

// Of open files, by their descriptors. 0, or the errno of what failed.

/// Writes `bytes` bytes of a file, from `offset` on, to where another one stands. The system moves
/// them where it can; else they pass through a small buffer. Fewer bytes than that are a failure.
int copyBytes(int from, int64_t offset, int64_t bytes, int to);

int writeBytes(int to, QByteArrayView bytes);

} // namespace quorel
