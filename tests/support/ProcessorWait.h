#pragma once

#include <chrono>
#include <cstdint>
#include <fstream>

namespace quorel::test {

/// How long this thread has waited, in all, for a processor that others kept busy: to be taken off
/// what is measured on a machine at work.
inline std::chrono::nanoseconds waitedForProcessor() {
    std::ifstream file("/proc/thread-self/schedstat");
    int64_t ran = 0;
    int64_t waited = 0;
    file >> ran >> waited;
    return std::chrono::nanoseconds(waited);
}

} // namespace quorel::test
