#pragma once

#include <span>
#include <vector>

namespace quorel::test {

/// Energy in dB of everything more than `guardHz` away from a tone (and above 20 Hz), relative to
/// one second of that tone at `toneAmplitude`. Looks at the middle half of the samples, whose
/// number is a power of two; the outer quarters are faded out.
double splatterDb(std::span<const float> samples, double sampleRate, double toneHz,
                  double toneAmplitude, double guardHz);

/// Total harmonic distortion and noise in dB: what remains of the samples without the sine at
/// `toneHz` and a constant, both fitted by least squares.
double thdPlusNoiseDb(std::span<const float> samples, double sampleRate, double toneHz);

/// One channel of a sine of that amplitude.
std::vector<float> sine(double amplitude, double toneHz, double sampleRate, int frames);

} // namespace quorel::test
