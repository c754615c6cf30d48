#include "support/Mutation.h"

#include "support/AudioFixtures.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <random>

namespace quorel::test {

namespace {

namespace fs = std::filesystem;

/// One to seven changes, most of them where the headers are, or the end cut off.
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

} // namespace

double processorSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

int64_t peakMemory() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return int64_t{usage.ru_maxrss} * 1024;
}

void readMutations(const std::vector<std::string>& seeds, double longest,
                   const std::function<bool(const std::string& path)>& read) {
    const char* const wanted = std::getenv("QUOREL_MUTATIONS");
    const int count = wanted != nullptr ? std::atoi(wanted) : 300;
    ASSERT_GT(count, 0);
    const TemporaryFolder folder;
    std::minstd_rand random(23);
    const int64_t before = peakMemory();
    int readable = 0;
    for (int i = 0; i < count && !testing::Test::HasFatalFailure(); ++i) {
        const std::string& seed = seeds[random() % seeds.size()];
        const std::string path = folder.write("mutated", mutated(readFile(seed), random));
        const double start = processorSeconds();
        readable += read(path) ? 1 : 0;
        if (const double taken = processorSeconds() - start; taken > longest) {
            const std::string kept = fs::temp_directory_path() / "quorel-slow-mutation";
            fs::copy_file(path, kept, fs::copy_options::overwrite_existing);
            FAIL() << "mutation " << i << " of " << seed << " took " << taken << " s: " << kept;
        }
    }
    EXPECT_GT(readable, count / 4);
#ifndef QUOREL_SANITIZED
    EXPECT_LT(peakMemory() - before, 64 << 20);
#else
    static_cast<void>(before);
#endif
}

std::vector<std::string> corpusFiles() {
    std::vector<std::string> files;
    const fs::path corpus = fs::path(QUOREL_SOURCE_DIR) / ".." / "shared" / "corpus";
    if (fs::exists(corpus)) {
        for (const auto& entry : fs::recursive_directory_iterator(corpus))
            if (entry.is_regular_file())
                files.push_back(entry.path().string());
    }
    return files;
}

} // namespace quorel::test
