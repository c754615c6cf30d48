#pragma once

#include <termios.h>

#include <optional>
#include <string>
#include <vector>

namespace quorel::cli {

enum class Key { Pause, Next, Previous, Forward, Back, Quit };

/// Lets standard input, where it is a terminal, deliver keys one by one and unechoed, and gives the
/// terminal its settings back when it goes. Main thread.
class Terminal {
  public:
    Terminal() = default;
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    static bool isPresent();    ///< standard input is a terminal
    static bool isForeground(); ///< and this program's: who reads or sets it otherwise is stopped

    /// Sets the terminal up; again after the shell has had it. In the foreground only.
    void enter();

    /// The keys that wait, or nothing when the terminal is gone. Call when there is input, in the
    /// foreground.
    std::optional<std::vector<Key>> takeKeys();

  private:
    std::optional<termios> original_;
    std::string pending_; // the beginning of an escape sequence
};

} // namespace quorel::cli
