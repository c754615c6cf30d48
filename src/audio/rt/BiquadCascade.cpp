#include "audio/rt/BiquadCascade.h"

#include "audio/rt/BlockOps.h"
#include "audio/rt/Lanes.h"

#include <algorithm>
#include <utility>

namespace quorel::rt {

namespace {

using Sections = BiquadCascade::Sections;
constexpr int kMaxVectors = BiquadCascade::kMaxSections / 2;

/// Far beyond any sense, and far below where float overflows.
constexpr double kMaxOutput = 1e9;

/// Two sections times two channels fill a vector, and `V` vectors work at the same time. For that
/// the sections are skewed: at step t, section k works on frame t - k, on what section k - 1 put
/// out at step t - 1. The first and the last steps of a block concern only some of the sections,
/// so the block leaves nothing in flight and the cascade has no latency.
template <class Lanes, int V, bool Gliding>
class SkewedCascade {
  public:
    QUOREL_INLINE SkewedCascade(Sections& sections, std::size_t pair) {
        for (int v = 0; v < V; ++v) {
            const int a = slot(sections, 2 * v);
            const int b = slot(sections, 2 * v + 1);
            for (std::size_t j = 0; j < 5; ++j) {
                spread(sections.coefficients, a, b, j, j == 0 ? 1.0 : 0.0, c_[j][v]);
                if constexpr (Gliding)
                    spread(sections.perFrame, a, b, j, 0.0, d_[j][v]);
            }
            const auto& memory = sections.memory[pair];
            const auto cell = [&](int s, std::size_t i) QUOREL_LAMBDA_INLINE {
                return s < 0 ? 0.0 : memory[static_cast<std::size_t>(s)][i];
            };
            Lanes::load(cell(a, 0), cell(a, 1), cell(b, 0), cell(b, 1), z1_[v]);
            Lanes::load(cell(a, 2), cell(a, 3), cell(b, 2), cell(b, 3), z2_[v]);
            Lanes::load(0, 0, 0, 0, out_[v]);
        }
    }

    QUOREL_INLINE void run(float* x, int frames) {
        constexpr int kLag = 2 * V - 1;
        const int steps = frames + kLag;
        int t = 0;
        for (; t < kLag; ++t)
            step<true>(t < frames ? frameAt(x, t) : Double2{}, t, frames);
        for (; t < frames; ++t) {
            step<false>(frameAt(x, t), t, frames);
            putFrame(x, t - kLag);
        }
        for (; t < steps; ++t) {
            step<true>(Double2{}, t, frames);
            putFrame(x, t - kLag);
        }
    }

    QUOREL_INLINE void store(Sections& sections, std::size_t pair) const {
        for (int v = 0; v < V; ++v) {
            for (int half = 0; half < 2; ++half) {
                const int s = slot(sections, 2 * v + half);
                if (s < 0)
                    continue;
                const auto index = static_cast<std::size_t>(s);
                const int lane = 2 * half;
                sections.memory[pair][index] = {z1_[v].lane(lane), z1_[v].lane(lane + 1),
                                                z2_[v].lane(lane), z2_[v].lane(lane + 1)};
                if constexpr (Gliding)
                    for (std::size_t j = 0; j < 5; ++j)
                        sections.reached[index][j] = c_[j][v].lane(lane);
            }
        }
    }

  private:
    /// The section at a place of the chain; -1 for the filler behind an odd last one.
    static QUOREL_INLINE int slot(const Sections& sections, int place) {
        return place < sections.count ? sections.order[static_cast<std::size_t>(place)] : -1;
    }

    static QUOREL_INLINE void
    spread(const std::array<BiquadCascade::Coefficients, BiquadCascade::kMaxSections>& values,
           int a, int b, std::size_t j, double filler, Lanes& lanes) {
        const double first = a < 0 ? filler : values[static_cast<std::size_t>(a)][j];
        const double second = b < 0 ? filler : values[static_cast<std::size_t>(b)][j];
        Lanes::load(first, first, second, second, lanes);
    }

    static QUOREL_INLINE Double2 frameAt(const float* x, int t) {
        return Double2{static_cast<double>(x[2 * t]), static_cast<double>(x[2 * t + 1])};
    }

    QUOREL_INLINE void putFrame(float* x, int t) const {
        const Double2 limit{kMaxOutput, kMaxOutput};
        Double2 frame = out_[V - 1].second();
        frame = frame < limit ? frame : limit;
        frame = frame > -limit ? frame : -limit;
        x[2 * t] = static_cast<float>(frame[0]);
        x[2 * t + 1] = static_cast<float>(frame[1]);
    }

    /// One step of all sections; a partial one leaves alone the sections whose frame does not
    /// exist.
    template <bool Partial>
    QUOREL_INLINE void step(const Double2& input, int t, int frames) {
        Lanes in[V];
#pragma GCC unroll 8
        for (int v = V - 1; v > 0; --v)
            Lanes::shift(out_[v - 1], out_[v], in[v]);
        Lanes::shiftIn(input, out_[0], in[0]);
#pragma GCC unroll 8
        for (int v = 0; v < V; ++v) {
            const auto exists = [&](int k)
                                    QUOREL_LAMBDA_INLINE { return t >= k && t - k < frames; };
            const bool first = !Partial || exists(2 * v);
            const bool second = !Partial || exists(2 * v + 1);
            if constexpr (Gliding) {
#pragma GCC unroll 8
                for (std::size_t j = 0; j < 5; ++j) {
                    Lanes moved = c_[j][v];
                    Lanes::add(d_[j][v], moved);
                    take<Partial>(first, second, moved, c_[j][v]);
                }
            }
            Lanes z1;
            Lanes z2;
            Lanes::multiplyAdd(c_[0][v], in[v], z1_[v], out_[v]);
            // The next frame waits for this cell, so the newest value comes in last.
            Lanes::multiplyAdd(c_[1][v], in[v], z2_[v], z1);
            Lanes::subtractProduct(c_[3][v], out_[v], z1);
            Lanes::crossDifference(c_[2][v], in[v], c_[4][v], out_[v], z2);
            take<Partial>(first, second, z1, z1_[v]);
            take<Partial>(first, second, z2, z2_[v]);
        }
    }

    template <bool Partial>
    static QUOREL_INLINE void take(bool first, bool second, const Lanes& value, Lanes& cell) {
        if constexpr (Partial)
            Lanes::choose(first, second, value, cell);
        else
            cell = value;
    }

    Lanes c_[5][V];
    Lanes d_[5][V];
    Lanes z1_[V];
    Lanes z2_[V];
    Lanes out_[V];
};

using Kernel = void (*)(Sections&, std::size_t pair, float* x, int frames);
/// By the number of vectors, less one, and by whether coefficients glide.
using Kernels = std::array<std::array<Kernel, 2>, kMaxVectors>;

template <class Lanes, int V, bool Gliding>
QUOREL_INLINE void runCascade(Sections& sections, std::size_t pair, float* x, int frames) {
    SkewedCascade<Lanes, V, Gliding> cascade(sections, pair);
    cascade.run(x, frames);
    cascade.store(sections, pair);
}

struct Portable {
    template <int V, bool Gliding>
    static void kernel(Sections& sections, std::size_t pair, float* x, int frames) {
        runCascade<SplitLanes, V, Gliding>(sections, pair, x, frames);
    }
};

#if defined(__x86_64__)
struct Wide {
    template <int V, bool Gliding>
    __attribute__((target("avx2"))) static void kernel(Sections& sections, std::size_t pair,
                                                       float* x, int frames) {
        runCascade<WideLanes, V, Gliding>(sections, pair, x, frames);
    }
};
#endif

template <class Code, int... Less>
constexpr Kernels kernelsOf(std::integer_sequence<int, Less...>) {
    return {{{Code::template kernel<Less + 1, false>, Code::template kernel<Less + 1, true>}...}};
}

using VectorCounts = std::make_integer_sequence<int, kMaxVectors>;
constexpr Kernels kPortableKernels = kernelsOf<Portable>(VectorCounts{});

#if defined(__x86_64__)
constexpr Kernels kWideKernels = kernelsOf<Wide>(VectorCounts{});

const Kernels& kernels(bool wide) {
    static const bool hasWide = __builtin_cpu_supports("avx2");
    return wide && hasWide ? kWideKernels : kPortableKernels;
}
#else
const Kernels& kernels(bool) {
    return kPortableKernels;
}
#endif

BiquadCascade::Coefficients coefficientsOf(const Biquad& f) {
    return {f.b0, f.b1, f.b2, f.a1, f.a2};
}

} // namespace

void BiquadCascade::set(int section, const Biquad& filter) noexcept {
    const auto s = static_cast<std::size_t>(section);
    sections_.coefficients[s] = coefficientsOf(filter);
    sections_.perFrame[s] = {};
    gliding_[s] = false;
}

void BiquadCascade::glide(int section, const Biquad& target, int frames) noexcept {
    const auto s = static_cast<std::size_t>(section);
    const Coefficients to = coefficientsOf(target);
    for (std::size_t j = 0; j < to.size(); ++j)
        sections_.perFrame[s][j] = (to[j] - sections_.coefficients[s][j]) / frames;
    gliding_[s] = true;
}

void BiquadCascade::switchOn(int section, bool on) noexcept {
    const auto s = static_cast<std::size_t>(section);
    if (on_[s] == on)
        return;
    on_[s] = on;
    for (auto& memory : sections_.memory)
        memory[s] = {};
    sections_.count = 0;
    for (int k = 0; k < kMaxSections; ++k)
        if (on_[static_cast<std::size_t>(k)])
            sections_.order[static_cast<std::size_t>(sections_.count++)] = k;
}

void BiquadCascade::clear() noexcept {
    sections_.memory = {};
}

void BiquadCascade::process(const Block& block) noexcept {
    if (sections_.count == 0 || block.frames == 0)
        return;
    const bool gliding = std::find(gliding_.begin(), gliding_.end(), true) != gliding_.end();
    const auto vectors = static_cast<std::size_t>((sections_.count + 1) / 2);
    const Kernel kernel = kernels(wide_)[vectors - 1][gliding ? 1 : 0];
    for (int p = 0; p < block.pairs; ++p) {
        const auto pair = static_cast<std::size_t>(p);
        kernel(sections_, pair, block.pair[pair], block.frames);
        if (takeOverflow(pair))
            std::fill_n(block.pair[pair], 2 * block.frames, 0.0f);
    }
    if (gliding)
        for (int k = 0; k < sections_.count; ++k) {
            const auto s = static_cast<std::size_t>(sections_.order[static_cast<std::size_t>(k)]);
            sections_.coefficients[s] = sections_.reached[s];
        }
}

/// Whether a section of the pair holds a NaN or an infinity; if so, empties the pair's memory.
bool BiquadCascade::takeOverflow(std::size_t pair) noexcept {
    double sum = 0;
    for (const Memory& memory : sections_.memory[pair])
        for (const double cell : memory)
            sum += cell * 0.0;
    if (sum == 0.0)
        return false;
    sections_.memory[pair] = {};
    return true;
}

void BiquadCascade::useWideVectors(bool use) noexcept {
    wide_ = use;
}

} // namespace quorel::rt
