#pragma once

/// Four doubles side by side: lanes 0 and 1 are the left and right channel of one filter section,
/// lanes 2 and 3 those of the next. Two forms with the same operations, written so that the
/// compiler never passes a wide vector between functions of different instruction sets: all of it
/// is inlined, and results come back through references.
namespace quorel::rt {

#define QUOREL_INLINE inline __attribute__((always_inline))
#define QUOREL_LAMBDA_INLINE __attribute__((always_inline))

using Float2 = float __attribute__((vector_size(8)));
using Double2 = double __attribute__((vector_size(16)));
using Double4 = double __attribute__((vector_size(32)));
using Long2 = long long __attribute__((vector_size(16)));
using Long4 = long long __attribute__((vector_size(32)));

/// For processors with 32-byte vectors.
struct WideLanes {
    Double4 v;

    static QUOREL_INLINE void load(double a, double b, double c, double d, WideLanes& r) {
        r.v = Double4{a, b, c, d};
    }
    /// r = x * y + z
    static QUOREL_INLINE void multiplyAdd(const WideLanes& x, const WideLanes& y,
                                          const WideLanes& z, WideLanes& r) {
        r.v = x.v * y.v + z.v;
    }
    /// r = x * y - p * q
    static QUOREL_INLINE void crossDifference(const WideLanes& x, const WideLanes& y,
                                              const WideLanes& p, const WideLanes& q,
                                              WideLanes& r) {
        r.v = x.v * y.v - p.v * q.v;
    }
    /// r -= x * y
    static QUOREL_INLINE void subtractProduct(const WideLanes& x, const WideLanes& y,
                                              WideLanes& r) {
        r.v = r.v - x.v * y.v;
    }
    static QUOREL_INLINE void add(const WideLanes& x, WideLanes& r) { r.v = r.v + x.v; }
    /// r takes x in the lanes of a section whose flag is set.
    static QUOREL_INLINE void choose(bool first, bool second, const WideLanes& x, WideLanes& r) {
        const long long a = first ? -1 : 0;
        const long long b = second ? -1 : 0;
        const Long4 mask{a, a, b, b};
        r.v = mask ? x.v : r.v;
    }
    /// r = the second section of `before`, then the first section of `x`.
    static QUOREL_INLINE void shift(const WideLanes& before, const WideLanes& x, WideLanes& r) {
        r.v = __builtin_shufflevector(before.v, x.v, 2, 3, 4, 5);
    }
    static QUOREL_INLINE void shiftIn(const Double2& frame, const WideLanes& x, WideLanes& r) {
        const Double4 wide{frame[0], frame[1], 0.0, 0.0};
        r.v = __builtin_shufflevector(wide, x.v, 0, 1, 4, 5);
    }
    QUOREL_INLINE Double2 second() const { return Double2{v[2], v[3]}; }
    QUOREL_INLINE double lane(int i) const { return v[i]; }
};

/// For everything else: two 16-byte vectors, which every supported processor has.
struct SplitLanes {
    Double2 lo;
    Double2 hi;

    static QUOREL_INLINE void load(double a, double b, double c, double d, SplitLanes& r) {
        r.lo = Double2{a, b};
        r.hi = Double2{c, d};
    }
    static QUOREL_INLINE void multiplyAdd(const SplitLanes& x, const SplitLanes& y,
                                          const SplitLanes& z, SplitLanes& r) {
        r = {x.lo * y.lo + z.lo, x.hi * y.hi + z.hi};
    }
    static QUOREL_INLINE void crossDifference(const SplitLanes& x, const SplitLanes& y,
                                              const SplitLanes& p, const SplitLanes& q,
                                              SplitLanes& r) {
        r = {x.lo * y.lo - p.lo * q.lo, x.hi * y.hi - p.hi * q.hi};
    }
    static QUOREL_INLINE void subtractProduct(const SplitLanes& x, const SplitLanes& y,
                                              SplitLanes& r) {
        r = {r.lo - x.lo * y.lo, r.hi - x.hi * y.hi};
    }
    static QUOREL_INLINE void add(const SplitLanes& x, SplitLanes& r) {
        r = {r.lo + x.lo, r.hi + x.hi};
    }
    static QUOREL_INLINE void choose(bool first, bool second, const SplitLanes& x, SplitLanes& r) {
        r.lo = first ? x.lo : r.lo;
        r.hi = second ? x.hi : r.hi;
    }
    static QUOREL_INLINE void shift(const SplitLanes& before, const SplitLanes& x, SplitLanes& r) {
        r = {before.hi, x.lo};
    }
    static QUOREL_INLINE void shiftIn(const Double2& frame, const SplitLanes& x, SplitLanes& r) {
        r = {frame, x.lo};
    }
    QUOREL_INLINE Double2 second() const { return hi; }
    QUOREL_INLINE double lane(int i) const { return i < 2 ? lo[i] : hi[i - 2]; }
};

} // namespace quorel::rt
