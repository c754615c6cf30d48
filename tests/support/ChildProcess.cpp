#include "support/ChildProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <utility>

namespace quorel::test {

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& log,
                           int output) {
    std::vector<std::string> words{"setpriv", "--pdeathsig", "KILL"};
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(),
                                     O_WRONLY | O_CREAT | O_APPEND, 0600);
    posix_spawn_file_actions_adddup2(&actions, output >= 0 ? output : STDERR_FILENO, STDOUT_FILENO);
    const int error =
        posix_spawnp(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " + command[0]);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, 0)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(pid_, other.pid_);
    return *this;
}

void ChildProcess::signal(int number) const {
    if (pid_ > 0)
        kill(pid_, number);
}

int ChildProcess::wait() {
    int status = -1;
    if (pid_ > 0)
        waitpid(std::exchange(pid_, 0), &status, 0);
    return status >= 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::end() {
    signal(SIGKILL);
    wait();
}

} // namespace quorel::test
