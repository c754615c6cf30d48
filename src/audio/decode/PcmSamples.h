#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace quorel {

/// How one uncompressed sample is stored: U (offset binary), S (two's complement) or F (IEEE 754)
/// and its bits. Samples of fewer bits stand at the upper end, so they need no kind of their own.
/// MuLaw and ALaw are the logarithmic codes of ITU-T G.711.
enum class PcmSample : unsigned char { U8, S8, S16, S24, S32, F32, F64, MuLaw, ALaw };

int bytesOf(PcmSample sample);

/// The two's complement or floating-point kind of that many bytes, if there is one.
std::optional<PcmSample> pcmSample(bool floatingPoint, int bytes);

/// Turns `count` stored samples into float. Integers are scaled by 1/2^(bits-1), so full scale is
/// -1..+1; what is no finite float becomes 0, because it would never leave a filter again.
void toFloat(const std::byte* stored, std::size_t count, PcmSample sample, std::endian order,
             float* out);

} // namespace quorel
