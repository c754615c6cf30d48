#pragma once

namespace quorel::test {

/// While one lives, everything that the audio callback may not do on this thread is counted:
/// allocating, freeing and locking. Inactive in sanitizer builds, which replace the allocator.
class RealtimeGuard {
  public:
    RealtimeGuard();
    ~RealtimeGuard();

    /// Offences on this thread so far.
    static int offences();
    /// Whether this build can count at all.
    static bool isActive();
};

} // namespace quorel::test
