#pragma once

#include "audio/rt/EqDesign.h"
#include "audio/rt/Node.h"

#include <array>

namespace quorel::rt {

/// A serial chain of second-order sections over all channels: transposed direct form II, in double
/// because a 31 Hz filter at 192 kHz has no accuracy left in float. Sections that are not switched
/// on cost nothing. Belongs to the rendering thread.
class BiquadCascade {
  public:
    static constexpr int kMaxSections = 10;

    /// Sets the coefficients at once and ends a glide of that section.
    void set(int section, const Biquad& filter) noexcept;

    /// Moves the coefficients linearly, frame by frame, towards `target` for as long as process()
    /// is called; the caller calls set(target) after `frames` frames. Every filter on the way is
    /// stable, because the set of stable (a1, a2) is a convex triangle.
    void glide(int section, const Biquad& target, int frames) noexcept;

    /// Switches a section on with an empty memory, or off.
    void switchOn(int section, bool on) noexcept;
    bool isOn(int section) const noexcept { return on_[static_cast<std::size_t>(section)]; }

    /// Empties the memory of all sections.
    void clear() noexcept;

    /// Filters a block in place. A pair whose memory overflowed comes out as silence, and starts
    /// anew with the next block.
    void process(const Block& block) noexcept;

    /// Chooses between code for the instruction set found at run time (the default) and the code
    /// that runs everywhere. Both give the same bits.
    void useWideVectors(bool use) noexcept;

    using Coefficients = std::array<double, 5>; ///< b0, b1, b2, a1, a2
    using Memory = std::array<double, 4>;       ///< two cells by (left, right)

    /// What the kernels work on.
    struct Sections {
        std::array<Coefficients, kMaxSections> coefficients{};
        std::array<Coefficients, kMaxSections> perFrame{};
        std::array<Coefficients, kMaxSections> reached{}; ///< after the block, when gliding
        std::array<std::array<Memory, kMaxSections>, kMaxPairs> memory{};
        std::array<int, kMaxSections> order{}; ///< the sections that are on
        int count = 0;
    };

  private:
    bool takeOverflow(std::size_t pair) noexcept;

    Sections sections_;
    std::array<bool, kMaxSections> on_{};
    std::array<bool, kMaxSections> gliding_{};
    bool wide_ = true;
};

} // namespace quorel::rt
