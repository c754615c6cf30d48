#pragma once

namespace quorel::rt {

enum class FilterType : unsigned char { Parametric, LowShelf, HighShelf, LowPass, HighPass };

/// What one band of an equaliser does.
struct EqBand {
    FilterType type = FilterType::Parametric;
    double frequencyHz = 1000;   ///< centre, shelf midpoint or -3 dB corner
    double bandwidthOctaves = 1; ///< Parametric: between the points of half the gain in dB
    float gainDb = 0;            ///< Parametric and shelves
    bool bypass = false;
};

/// H(z) = (b0 + b1/z + b2/z^2) / (1 + a1/z + a2/z^2).
struct Biquad {
    double b0 = 1;
    double b1 = 0;
    double b2 = 0;
    double a1 = 0;
    double a2 = 0;

    bool operator==(const Biquad&) const = default;

    /// Whether every signal passes unchanged (once the memory is empty).
    bool isIdentity() const noexcept { return b0 == 1 && b1 == a1 && b2 == a2; }
};

/// Band gains are limited to +-this.
inline constexpr float kMaxBandGainDb = 96.0f;

/// The filter of a band at a gain in dB (the band's own gain and bypass are not looked at).
///
/// Follows the analog prototypes of R. Bristow-Johnson's Audio EQ Cookbook without their bilinear
/// cramping near half the rate. A cut is the exact inverse of its boost; 0 dB gives an identity
/// with the poles that small gains have, so that coefficients move little around it; a frequency
/// from 0.49 x the rate up gives the plain identity.
Biquad designBiquad(const EqBand& band, double gainDb, double sampleRate) noexcept;

/// Frames after which the memory of a filter has decayed by 160 dB; at most one second's worth.
int ringFrames(const Biquad& filter, int sampleRate) noexcept;

} // namespace quorel::rt
