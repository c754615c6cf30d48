#include "support/Spectrum.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <numbers>

namespace quorel::test {

namespace {

using std::numbers::pi;
using Complex = std::complex<double>;

/// Fast Fourier transform in place, radix 2.
void transform(std::vector<Complex>& x) {
    const std::size_t n = x.size();
    for (std::size_t i = 1, j = 0; i < n; ++i) {
        std::size_t bit = n >> 1;
        for (; j & bit; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(x[i], x[j]);
    }
    for (std::size_t length = 2; length <= n; length *= 2) {
        std::vector<Complex> turns(length / 2);
        for (std::size_t k = 0; k < turns.size(); ++k)
            turns[k] =
                std::polar(1.0, -2 * pi * static_cast<double>(k) / static_cast<double>(length));
        for (std::size_t i = 0; i < n; i += length) {
            for (std::size_t k = 0; k < length / 2; ++k) {
                const Complex odd = x[i + k + length / 2] * turns[k];
                x[i + k + length / 2] = x[i + k] - odd;
                x[i + k] += odd;
            }
        }
    }
}

/// 1 in the middle half, raised-cosine flanks outside; `position` is 0..1.
double flatTop(double position) {
    const double edge = 4 * std::min(position, 1 - position);
    return edge < 1 ? 0.5 - 0.5 * std::cos(pi * edge) : 1;
}

double db(double powerRatio) {
    return 10 * std::log10(powerRatio + 1e-30);
}

} // namespace

double splatterDb(std::span<const float> samples, double sampleRate, double toneHz,
                  double toneAmplitude, double guardHz) {
    const auto n = static_cast<double>(samples.size());
    std::vector<Complex> x(samples.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = static_cast<double>(samples[i]) * flatTop(static_cast<double>(i) / n);
    transform(x);
    double far = 0;
    for (std::size_t k = 0; k < x.size() / 2; ++k)
        if (const double hz = static_cast<double>(k) * sampleRate / n;
            hz > 20 && std::abs(hz - toneHz) > guardHz)
            far += std::norm(x[k]);
    const double energy = 2 * far / n / sampleRate;
    return db(energy / (0.5 * toneAmplitude * toneAmplitude));
}

double thdPlusNoiseDb(std::span<const float> samples, double sampleRate, double toneHz) {
    // Normal equations of {sine, cosine, 1}, solved by elimination.
    std::array<std::array<double, 4>, 3> m{};
    const auto basis = [&](std::size_t i) {
        const double angle = 2 * pi * toneHz * static_cast<double>(i) / sampleRate;
        return std::array<double, 3>{std::sin(angle), std::cos(angle), 1.0};
    };
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto b = basis(i);
        for (std::size_t r = 0; r < 3; ++r) {
            for (std::size_t c = 0; c < 3; ++c)
                m[r][c] += b[r] * b[c];
            m[r][3] += b[r] * static_cast<double>(samples[i]);
        }
    }
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t r = 0; r < 3; ++r)
            if (const double factor = m[r][i] / m[i][i]; r != i)
                for (std::size_t c = i; c < 4; ++c)
                    m[r][c] -= factor * m[i][c];
    double rest = 0;
    double all = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto b = basis(i);
        const auto x = static_cast<double>(samples[i]);
        double fitted = 0;
        for (std::size_t r = 0; r < 3; ++r)
            fitted += b[r] * m[r][3] / m[r][r];
        rest += (x - fitted) * (x - fitted);
        all += x * x;
    }
    return db(rest / all);
}

std::vector<float> sine(double amplitude, double toneHz, double sampleRate, int frames) {
    std::vector<float> samples(static_cast<std::size_t>(frames));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(
            amplitude * std::sin(2 * pi * toneHz * static_cast<double>(i) / sampleRate));
    return samples;
}

} // namespace quorel::test
