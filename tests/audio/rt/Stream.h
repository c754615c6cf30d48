#pragma once

#include "audio/rt/Node.h"

#include <functional>
#include <random>
#include <span>
#include <utility>
#include <vector>

namespace quorel::rt::test {

/// A finite stream of frames in pairs, as it goes through a node.
struct Stream {
    std::vector<std::vector<float>> pairs;

    explicit Stream(int pairCount, int frames)
        : pairs(static_cast<std::size_t>(pairCount),
                std::vector<float>(2 * static_cast<std::size_t>(frames))) {}

    /// One pair with the same samples on both sides.
    static Stream ofMono(std::span<const float> samples) {
        Stream stream(1, static_cast<int>(samples.size()));
        for (std::size_t i = 0; i < samples.size(); ++i)
            stream.pairs[0][2 * i] = stream.pairs[0][2 * i + 1] = samples[i];
        return stream;
    }

    /// White noise in every channel.
    static Stream noise(int pairCount, int frames, float rms, unsigned seed = 1) {
        std::mt19937 random(seed);
        std::normal_distribution<float> normal(0.0f, rms);
        Stream stream(pairCount, frames);
        for (auto& pair : stream.pairs)
            for (float& x : pair)
                x = normal(random);
        return stream;
    }

    int frames() const { return static_cast<int>(pairs[0].size() / 2); }

    std::vector<float> left(std::size_t from = 0, std::size_t pair = 0) const {
        std::vector<float> out;
        for (std::size_t i = 2 * from; i < pairs[pair].size(); i += 2)
            out.push_back(pairs[pair][i]);
        return out;
    }
};

/// What happens to a node before a certain frame.
using Events = std::vector<std::pair<int, std::function<void()>>>;

/// Runs a stream through a node in blocks of `nextSize()` frames, split also at the events, which
/// are in the order of their frames.
inline void run(
    Node& node, Stream& stream, const Events& events = {},
    const std::function<int()>& nextSize = [] { return kMaxBlockFrames; }) {
    auto event = events.begin();
    for (int done = 0; done < stream.frames();) {
        for (; event != events.end() && event->first <= done; ++event)
            event->second();
        int frames = std::min({nextSize(), kMaxBlockFrames, stream.frames() - done});
        if (event != events.end())
            frames = std::min(frames, event->first - done);
        Block block;
        block.pairs = static_cast<int>(stream.pairs.size());
        block.frames = frames;
        for (std::size_t p = 0; p < stream.pairs.size(); ++p)
            block.pair[p] = stream.pairs[p].data() + 2 * done;
        node.process(block);
        done += frames;
    }
}

inline Format format(int sampleRate, int channels = 2) {
    return {sampleRate, ChannelLayout::usual(channels)};
}

} // namespace quorel::rt::test
