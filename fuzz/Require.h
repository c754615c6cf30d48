#pragma once

#include <cstdio>
#include <cstdlib>

namespace quorel::fuzz {

/// Ends the program where a promise, named in a few words, is broken.
inline void require(bool kept, const char* promise) {
    if (!kept) {
        std::fprintf(stderr, "broken: %s\n", promise);
        std::abort();
    }
}

} // namespace quorel::fuzz
