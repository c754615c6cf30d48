#include "support/Mutation.h"

#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>

namespace quorel::test {

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int64_t peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return int64_t{usage.ru_maxrss} * 1024;
}

std::string mutated(std::string bytes, std::minstd_rand& random) {
    const auto below = [&](std::size_t limit) {
        return random() % std::max<std::size_t>(1, limit);
    };
    for (std::size_t n = 1 + below(7); n > 0 && !bytes.empty(); --n) {
        const std::size_t reach = below(3) == 0   ? bytes.size()
                                  : below(2) == 0 ? std::min<std::size_t>(100, bytes.size())
                                                  : std::min<std::size_t>(1500, bytes.size());
        // An index such as MP4's may lie at the end.
        const std::size_t place = below(4) == 0 ? bytes.size() - 1 - below(reach) : below(reach);
        switch (below(5)) {
        case 0:
            bytes[place] = static_cast<char>(0xFF);
            break;
        case 1: // a size of four bytes that is far too large
            bytes.replace(place, 4, std::string("\x7F\xFF\xFF\xF0", 4));
            break;
        case 2:
            bytes.erase(place, below(20));
            break;
        case 3:
            bytes.insert(place, bytes.substr(below(bytes.size()), below(200)));
            break;
        default:
            bytes[place] = static_cast<char>(below(256));
        }
    }
    bytes.resize(below(5) == 0 ? below(bytes.size()) : bytes.size());
    return bytes;
}

int mutationCount() {
    const char* wanted = std::getenv("QUOREL_MUTATIONS");
    return wanted != nullptr ? std::atoi(wanted) : 300;
}

} // namespace quorel::test
