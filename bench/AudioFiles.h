#pragma once

#include "support/AudioFixtures.h"

#include <string>
#include <vector>

namespace quorel::bench {

/// A kind of audio file, and how the ten-minute and the very short one are encoded from a WAV.
struct Kind {
    std::string name; ///< of the file, with the right extension
    std::string encoder;
    std::vector<std::string> options;
    int channels = 2;
    double minSpeed = 100; ///< times real time
};

inline const std::vector<Kind>& kinds() {
    static const std::vector<Kind> all{
        {"pcm.wav", "ffmpeg", {"-c:a", "pcm_s16le"}},
        {"pcm.aiff", "ffmpeg", {"-c:a", "pcm_s24be"}},
        {"pcm.caf", "ffmpeg", {"-c:a", "pcm_f32le"}},
        {"best.flac", "flac", {"-5"}},
        {"vbr.mp3", "lame", {"-V2"}},
        {"untagged.mp3", "lame", {"-b", "192", "--cbr", "-t"}},
        {"plain.aac", "ffmpeg", {"-c:a", "aac", "-b:a", "160k"}},
        {"aac.m4a", "ffmpeg", {"-c:a", "aac", "-b:a", "160k"}},
        {"alac.m4a", "ffmpeg", {"-c:a", "alac"}},
        {"alac51.m4a", "ffmpeg", {"-c:a", "alac", "-ac", "6"}, 6, 40},
    };
    return all;
}

/// The files measured, made on first use: each kind of ten minutes and of a tenth of a second,
/// and some of two hours.
class AudioFiles {
  public:
    static constexpr int kRate = 44100;
    static constexpr int64_t kFrames = int64_t{600} * kRate;

    AudioFiles() {
        for (const auto& [length, frames] : {std::pair{"long-", kFrames}, {"short-", kRate / 10}}) {
            const std::string wav =
                folder_.write(std::string(length) + "source.wav", test::wavBytes(music(frames)));
            for (const Kind& kind : kinds()) {
                encode(kind, wav, path(length + kind.name));
            }
        }
        folder_.write("noise.mp3", test::readFile(path("long-source.wav")).substr(100000, 300000));
        for (const std::string name : {"untagged.mp3", "plain.aac"}) { // such files just go on
            const std::string once = test::readFile(path("long-" + name));
            std::string all;
            for (int i = 0; i < 12; ++i) {
                all += once;
            }
            folder_.write("twohours-" + name, all);
        }
        test::runTool(ffmpeg({"-stream_loop", "11", "-i", path("long-aac.m4a"), "-c", "copy",
                              path("twohours-aac.m4a")}));
    }

    std::string path(const std::string& name) const { return folder_.path(name); }

  private:
    static std::vector<std::string> ffmpeg(const std::vector<std::string>& rest) {
        std::vector<std::string> words{"ffmpeg", "-v", "quiet", "-nostdin", "-y"};
        words.insert(words.end(), rest.begin(), rest.end());
        return words;
    }

    // Noise with the treble of music: codecs would not bear all of white noise, and give up on it.
    static test::TestSound music(int64_t frames) {
        test::TestSound sound(frames, 2, 16);
        double held[2] = {};
        for (std::size_t i = 0; i < sound.samples.size(); ++i) {
            held[i % 2] += 0.1 * (sound.samples[i] - held[i % 2]);
            sound.samples[i] = static_cast<int32_t>(held[i % 2]);
        }
        return sound;
    }

    // Where the encoder is missing there is no file, which the measuring then says.
    static void encode(const Kind& kind, const std::string& wav, const std::string& to) {
        std::vector<std::string> words = kind.options;
        if (kind.encoder == "ffmpeg") {
            words.insert(words.begin(), {"-i", wav});
            words.push_back(to);
            words = ffmpeg(words);
        } else if (kind.encoder == "lame") {
            words.insert(words.begin(), {"lame", "--quiet"});
            words.insert(words.end(), {wav, to});
        } else {
            words.insert(words.begin(), {"flac", "-s", "-f"});
            words.insert(words.end(), {"-o", to, wav});
        }
        test::runTool(words);
    }

    test::TemporaryFolder folder_;
};

} // namespace quorel::bench
