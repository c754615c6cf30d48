// What crosses between the threads: the ring, latest values and the exchange of sources. The cases
// with threads are for ThreadSanitizer as much as for their own checks.
#include "audio/rt/LatestValue.h"
#include "audio/rt/Source.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <set>
#include <thread>
#include <vector>

namespace quorel::rt {
namespace {

std::vector<float> numbered(int64_t first, int64_t frames, int channels) {
    std::vector<float> samples(static_cast<std::size_t>(frames * channels));
    std::iota(samples.begin(), samples.end(), static_cast<float>(first * channels));
    return samples;
}

TEST(Ring, keepsOrderAcrossItsEndForOddSizes) {
    for (const int channels : {1, 2, 5, 8}) {
        Ring ring(channels, 101);
        int64_t written = 0;
        int64_t read = 0;
        for (int64_t step = 1; step < 60; ++step) {
            written += ring.write(numbered(written, step, channels).data(), step);
            std::vector<float> got(static_cast<std::size_t>(step * channels));
            const int64_t n = ring.read(got.data(), (step * 7) % 13 + 20);
            got.resize(static_cast<std::size_t>(n * channels));
            EXPECT_EQ(got, numbered(read, n, channels));
            read += n;
            EXPECT_EQ(ring.level(), written - read);
        }
    }
}

TEST(Ring, rewindTakesBackOnlyWhatIsUnread) {
    Ring ring(1, 100);
    float frames[100];
    ring.write(numbered(0, 80, 1).data(), 80);
    EXPECT_EQ(ring.read(frames, 30), 30);
    EXPECT_TRUE(ring.rewind(50));
    EXPECT_EQ(ring.level(), 20);
    ring.write(numbered(900, 5, 1).data(), 5);
    EXPECT_EQ(ring.read(frames, 100), 25);
    EXPECT_EQ(frames[19], 49.0F);
    EXPECT_EQ(frames[20], 900.0F);
    EXPECT_TRUE(ring.rewind(500)) << "beyond the end there is nothing to take back";
    EXPECT_FALSE(ring.rewind(20));
}

TEST(Ring, survivesRewindsWhileItIsRead) {
    Ring ring(2, 4096);
    std::atomic<bool> stop = false;
    std::thread reader([&] {
        float frames[2 * 64];
        int64_t last = -1;
        while (!stop) {
            const int64_t n = ring.read(frames, 64);
            for (int64_t i = 0; i < n; ++i) {
                // A rewind that came too late may repeat numbers, never mix two channels.
                ASSERT_EQ(frames[2 * i] + 1, frames[2 * i + 1]);
            }
            last += n;
        }
    });
    for (int64_t position = 0; position < 300000;) {
        const auto chunk = numbered(position % 100000, 97, 2);
        const int64_t n = ring.write(chunk.data(), 97);
        position += n;
        if (n > 50 && position % 5 == 0 && !ring.rewind(ring.writePosition() - 40))
            break;
    }
    stop = true;
    reader.join();
}

TEST(LatestValue, readerSeesTheNewestAndNeverAMixture) {
    struct Value {
        std::array<uint64_t, 16> all;
    };
    LatestValue<Value> slot;
    EXPECT_EQ(slot.read().all[0], 0U);
    constexpr uint64_t kLast = 200000;
    std::thread writer([&] {
        for (uint64_t i = 1; i <= kLast; ++i) {
            Value value;
            value.all.fill(i);
            slot.write(value);
        }
    });
    uint64_t seen = 0;
    while (seen < kLast) {
        const Value& value = slot.read();
        ASSERT_GE(value.all[0], seen);
        seen = value.all[0];
        for (const uint64_t part : value.all)
            ASSERT_EQ(part, seen);
    }
    writer.join();
}

TEST(SourceExchange, everySourceComesBackExactlyOnce) {
    constexpr uint64_t kSources = 20000;
    SourceExchange exchange;
    std::atomic<bool> stop = false;
    std::thread renderer([&] {
        Source* playing = nullptr;
        while (!stop) {
            if (Source* next = exchange.take()) {
                if (playing)
                    exchange.giveBack(playing);
                playing = next;
            }
        }
        if (playing)
            exchange.giveBack(playing);
    });
    std::set<uint64_t> back;
    const auto collect = [&] {
        while (Source* source = exchange.collect()) {
            EXPECT_TRUE(back.insert(source->epoch).second);
            delete source;
        }
    };
    for (uint64_t epoch = 0; epoch < kSources; ++epoch) {
        if (Source* untaken = exchange.offer(new Source(epoch, 2, 8, false))) {
            EXPECT_TRUE(back.insert(untaken->epoch).second);
            delete untaken;
        }
        collect();
    }
    while (Source* untaken = exchange.take()) {
        back.insert(untaken->epoch);
        delete untaken;
    }
    stop = true;
    renderer.join();
    collect();
    EXPECT_EQ(back.size(), kSources);
}

} // namespace
} // namespace quorel::rt
