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
    Terminal() { enter(); }
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Takes the settings again, after the shell has had the terminal. Nothing in the background.
    void enter();

    static bool isPresent(); ///< standard input is a terminal

    /// The keys that wait, or nothing when the terminal is gone. Call when there is input.
    std::optional<std::vector<Key>> takeKeys();

  private:
    std::optional<termios> original_;
    std::string pending_; // the beginning of an escape sequence
};

} // namespace quorel::cli
