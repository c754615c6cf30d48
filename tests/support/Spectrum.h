#pragma once

#include <span>
#include <vector>

namespace quorel::test {

/// Power in dB of everything more than `guardHz` away from a tone (and above 20 Hz), relative to
/// what is nearer, by a Blackman-Harris window over all samples, whose number is a power of two.
double splatterDb(std::span<const float> samples, double sampleRate, double toneHz, double guardHz);

/// Total harmonic distortion and noise in dB: what remains of the samples without the sine at
/// `toneHz` and a constant, both fitted by least squares.
double thdPlusNoiseDb(std::span<const float> samples, double sampleRate, double toneHz);

/// One channel of a sine of that amplitude.
std::vector<float> sine(double amplitude, double toneHz, double sampleRate, int frames);

} // namespace quorel::test
