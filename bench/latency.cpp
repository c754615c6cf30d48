// From an action to its sound: the time between a call of the engine and the first captured sample
// that shows its effect, on private sound servers with a null sink. The capture's own delay (about
// a block of the sink) is part of the figures, so they are upper bounds.
#include "support/LivePlayer.h"
#include "support/MadeFile.h"
#include "support/SoundServer.h"

#include <algorithm>
#include <cstdio>
#include <random>
#include <string>

using namespace quorel;
using namespace quorel::test;
using namespace std::chrono_literals;

namespace {

constexpr int kRate = 48000;
constexpr int kRepeats = 15;
constexpr float kLevel = 0.1F;

/// Quiet for its first minute, twice as loud after it; constant, so that one sample tells the gain.
TrackToPlay track() {
    static const auto file = [] {
        Samples samples(2 * 60 * kRate, kLevel);
        samples.resize(2 * 120 * kRate, 2 * kLevel);
        return std::make_shared<MadeFile>(kRate, 2, std::move(samples));
    }();
    return {file, QUuid::createUuid(), 0, {}, 1};
}

class Bench {
  public:
    Bench() {
        player_.runUntil([&] { return player_.engine.isOutputOpen(); });
    }

    void run() {
        AudioEngine& engine = player_.engine;
        std::printf("%-28s %8s %8s %8s ms\n", "", "least", "median", "most");
        measure(
            "play (from stopped)", [&] { engine.stop(0); }, [&] { engine.load(track(), 0); },
            [](float now) { return now > 0; });
        measure(
            "pause", [&] { engine.load(track(), 0); }, [&] { engine.pause(0); },
            [](float now) { return now == 0; });
        measure(
            "resume", [&] { engine.pause(0); }, [&] { engine.resume(0); },
            [](float now) { return now > 0; });
        measure(
            "seek", [&] { engine.load(track(), 0); }, [&] { engine.seek(90); },
            [](float now) { return now > 1.5F * kLevel; });
        measure(
            "track change",
            [&] {
                engine.load(track(), 0);
                engine.seek(90);
            },
            [&] { engine.load(track(), 0); },
            [](float now) { return now > 0 && now < 1.2F * kLevel; });
        measure(
            "volume",
            [&] {
                engine.load(track(), 0);
                engine.setVolume(1);
            },
            [&] { engine.setVolume(0.25); }, [](float now) { return now < 0.5F * kLevel; });
        engine.setVolume(1);
        engine.setEqEnabled(true);
        measure(
            "equaliser band", [&] { engine.setEQGain(0, 0); }, [&] { engine.setEQGain(0, 6); },
            [](float now) { return now > 1.12F * kLevel; });
        std::printf("%-28s %26.1f ms\n\n", "longest turn of the main loop",
                    std::chrono::duration<double, std::milli>(player_.longestTurn).count());
    }

  private:
    template <typename Prepare, typename Act, typename Heard>
    void measure(const char* what, Prepare prepare, Act act, Heard heard) {
        std::vector<double> times;
        std::uniform_int_distribution<int> jitter(700, 760);
        for (int i = 0; i < kRepeats; ++i) {
            prepare();
            player_.run(std::chrono::milliseconds(jitter(random_)));
            const auto begin = std::chrono::steady_clock::now();
            act();
            if (!player_.runUntil([&] { return heard(recorder_.latest()); }, 3s)) {
                std::printf("%-28s never heard\n", what);
                return;
            }
            times.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
                    .count());
        }
        std::ranges::sort(times);
        std::printf("%-28s %8.1f %8.1f %8.1f\n", what, times.front(), times[times.size() / 2],
                    times.back());
    }

    Recorder recorder_{"sink_a"};
    LivePlayer player_;
    std::mt19937 random_{11};
};

} // namespace

int main() {
    for (const auto kind : {SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire}) {
        std::printf("%s\n", kind == SoundServer::Kind::PulseAudio ? "PulseAudio" : "PipeWire");
        if (const std::string missing = SoundServer::missingProgram(kind); !missing.empty()) {
            std::printf("skipped: %s is not installed\n", missing.c_str());
            continue;
        }
        SoundServer server(kind);
        server.addSink("sink_a");
        server.start();
        server.setDefault("sink_a");
        Bench().run();
    }
}
