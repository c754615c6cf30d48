#pragma once

#include <initializer_list>
#include <optional>
#include <vector>

namespace quorel::cli {

/// Catches signals while it lives, so that they can be answered outside a signal handler. Of those
/// that end a program the second one does so at once. One at a time in a program; main thread.
class Signals {
  public:
    Signals(std::initializer_list<int> numbers);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    /// The next signal that has come, if any. Never waits.
    std::optional<int> take();
    /// Readable while take() has something to give.
    int descriptor() const;

  private:
    std::vector<int> numbers_;
};

} // namespace quorel::cli
