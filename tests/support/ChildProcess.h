#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace quorel::test {

/// A program started by a test, ended with the object. It also ends if the test program dies.
class ChildProcess {
  public:
    ChildProcess() = default;
    /// Standard error goes to `log`, and standard output too unless `output` is a descriptor to
    /// write to.
    ChildProcess(const std::vector<std::string>& command, const std::string& log, int output = -1);
    ~ChildProcess() { end(); }
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    void signal(int number) const;
    int wait(); ///< the exit status; -1 if it did not end by itself
    void end(); ///< kills it

  private:
    pid_t pid_ = 0;
};

} // namespace quorel::test
