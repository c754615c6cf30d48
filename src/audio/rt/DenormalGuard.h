#pragma once

#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <xmmintrin.h>
#endif

namespace quorel::rt {

/// While it lives, the thread flushes denormal numbers to zero, where the processor can: decaying
/// filters would otherwise slow down a hundredfold in silence. Make one around each rendering.
class DenormalGuard {
  public:
    DenormalGuard() noexcept
        : saved_(read()) {
        write(saved_ | kFlush);
    }
    ~DenormalGuard() { write(saved_); }
    DenormalGuard(const DenormalGuard&) = delete;
    DenormalGuard& operator=(const DenormalGuard&) = delete;

  private:
#if defined(__x86_64__) || (defined(__i386__) && defined(__SSE__))
    static constexpr std::uint64_t kFlush = 0x8040; // MXCSR: flush to zero, denormals are zero
    static std::uint64_t read() noexcept {
        return _mm_getcsr();
    }
    static void write(std::uint64_t value) noexcept {
        _mm_setcsr(static_cast<unsigned>(value));
    }
#elif defined(__aarch64__)
    static constexpr std::uint64_t kFlush = std::uint64_t{1} << 24; // FPCR.FZ
    static std::uint64_t read() noexcept {
        std::uint64_t value = 0;
        asm volatile("mrs %0, fpcr" : "=r"(value));
        return value;
    }
    static void write(std::uint64_t value) noexcept {
        asm volatile("msr fpcr, %0" ::"r"(value));
    }
#else
    static constexpr std::uint64_t kFlush = 0;
    static std::uint64_t read() noexcept {
        return 0;
    }
    static void write(std::uint64_t) noexcept {}
#endif

    std::uint64_t saved_;
};

} // namespace quorel::rt
