#include "audio/rt/EqDesign.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorel::rt {

namespace {

using std::numbers::pi;

/// H(s) = (n2 s^2 + n1 s + n0) / (d2 s^2 + d1 s + d0), s in units of the band's frequency.
struct Prototype {
    double n0, n1, n2;
    double d0, d1, d2;

    /// |H|^2 at w times the band's frequency.
    double power(double w) const {
        const double w2 = w * w;
        const double top = (n0 - n2 * w2) * (n0 - n2 * w2) + n1 * n1 * w2;
        const double bottom = (d0 - d2 * w2) * (d0 - d2 * w2) + d1 * d1 * w2;
        return top / bottom;
    }
};

Prototype prototype(const EqBand& band, double gainDb) {
    constexpr double kFlat = std::numbers::sqrt2; // 1/Q of Butterworth filters and slope-1 shelves
    const double a = std::pow(10.0, gainDb / 40.0);
    const double root = std::sqrt(a) * kFlat;
    switch (band.type) {
    case FilterType::Parametric: {
        const double octaves = std::clamp(band.bandwidthOctaves, 0.05, 5.0);
        const double inverseQ = 2 * std::sinh(0.5 * std::numbers::ln2 * octaves);
        return {1, a * inverseQ, 1, 1, inverseQ / a, 1};
    }
    case FilterType::LowShelf:
        return {a * a, a * root, a, 1, root, a};
    case FilterType::HighShelf:
        return {a, a * root, a * a, a, root, 1};
    case FilterType::LowPass:
        return {1, 0, 0, 1, kFlat, 1};
    case FilterType::HighPass:
        return {0, 0, 1, 1, kFlat, 1};
    }
    return {1, 0, 0, 1, 0, 0};
}

/// Maps the poles by z = exp(sT) and chooses the zeros such that the magnitude equals the analog
/// one at 0 Hz, at half the rate and at a third frequency in between. With phi1 = sin^2(w/2),
/// phi0 = 1 - phi1 and phi2 = 4 phi0 phi1, |B|^2 = B0 phi0 + B1 phi1 + B2 phi2, and likewise |A|^2.
Biquad match(const EqBand& band, double gainDb, double sampleRate) {
    const Prototype analog = prototype(band, gainDb);
    const double w0 = 2 * pi * band.frequencyHz / sampleRate;
    const double pole = w0 * std::sqrt(analog.d0 / analog.d2);
    const double damping = analog.d1 / (2 * std::sqrt(analog.d0 * analog.d2));

    Biquad filter;
    filter.a2 = std::exp(-2 * damping * pole);
    // Written as a sum of two decays beyond critical damping, where cosh could overflow.
    if (damping <= 1) {
        filter.a1 =
            -2 * std::exp(-damping * pole) * std::cos(std::sqrt(1 - damping * damping) * pole);
    } else {
        const double spread = std::sqrt(damping * damping - 1);
        filter.a1 = -std::exp(-(damping - spread) * pole) - std::exp(-(damping + spread) * pole);
    }
    if (gainDb == 0 && band.type != FilterType::LowPass && band.type != FilterType::HighPass) {
        filter.b1 = filter.a1;
        filter.b2 = filter.a2;
        return filter;
    }

    const double a0 = (1 + filter.a1 + filter.a2) * (1 + filter.a1 + filter.a2);
    const double a1 = (1 - filter.a1 + filter.a2) * (1 - filter.a1 + filter.a2);
    const double a2 = -4 * filter.a2;
    const double wm = band.type == FilterType::Parametric ? w0 : std::min(w0, 0.5 * pi);
    const double phi1 = std::sin(wm / 2) * std::sin(wm / 2);
    const double phi0 = 1 - phi1;
    const double phi2 = 4 * phi0 * phi1;
    const double power = analog.power(wm / w0) * (a0 * phi0 + a1 * phi1 + a2 * phi2);
    if (band.type == FilterType::HighPass) {
        // Both zeros stay at 0 Hz; three points cannot ask for that.
        filter.b0 = std::sqrt(power) / (4 * phi1);
        filter.b1 = -2 * filter.b0;
        filter.b2 = filter.b0;
        return filter;
    }
    const double b0 = analog.power(0) * a0;
    const double b1 = analog.power(pi / w0) * a1;
    const double mean = 0.5 * (std::sqrt(b0) + std::sqrt(b1));
    // A high shelf of more than 20 dB may ask for less at the third point than zeros inside the
    // unit circle can give. They keep a quarter of the distance that the analog zeros would have.
    const double decay = analog.n2 > 0 ? 0.25 * analog.n1 / analog.n2 * w0 : 0;
    const double least = -mean * mean / (std::cosh(decay / 2) * std::cosh(decay / 2));
    const double b2 = std::max((power - b0 * phi0 - b1 * phi1) / phi2, least);
    filter.b0 = 0.5 * (mean + std::sqrt(mean * mean + b2));
    filter.b1 = 0.5 * (std::sqrt(b0) - std::sqrt(b1));
    filter.b2 = -b2 / (4 * filter.b0);
    return filter;
}

Biquad inverse(const Biquad& f) {
    return {1 / f.b0, f.a1 / f.b0, f.a2 / f.b0, f.b1 / f.b0, f.b2 / f.b0};
}

} // namespace

Biquad designBiquad(const EqBand& band, double gainDb, double sampleRate) noexcept {
    if (!(band.frequencyHz > 0) || band.frequencyHz >= 0.49 * sampleRate)
        return {};
    const double limit = static_cast<double>(kMaxBandGainDb);
    const double gain = std::clamp(gainDb, -limit, limit);
    const bool hasGain = band.type != FilterType::LowPass && band.type != FilterType::HighPass;
    return hasGain && gain < 0 ? inverse(match(band, -gain, sampleRate))
                               : match(band, gain, sampleRate);
}

int ringFrames(const Biquad& filter, int sampleRate) noexcept {
    const double square = 0.25 * filter.a1 * filter.a1 - filter.a2;
    const double radius = square > 0 ? 0.5 * std::abs(filter.a1) + std::sqrt(square)
                                     : std::sqrt(std::max(0.0, filter.a2));
    if (radius < 1e-8)
        return 2;
    const double frames = radius < 1 ? std::log(1e-8) / std::log(radius) : sampleRate;
    return static_cast<int>(std::min(std::ceil(frames), static_cast<double>(sampleRate)));
}

} // namespace quorel::rt
