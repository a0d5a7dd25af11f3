// SPDX-License-Identifier: MIT
#include "CoreServices/RunProgram.h"

#include "CoreServices/SignalsBlocked.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

namespace coreservices {

namespace {

pid_t start(const std::vector<std::string>& arguments) {
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    // Its own path only: what the caller's PATH says must not decide what is run.
    char path[] = "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
    char* environment[] = {path, nullptr};
    std::string program = "/usr/bin/" + arguments.front();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    pid_t child = -1;
    int error = posix_spawn(&child, program.c_str(), &actions, nullptr, words.data(), environment);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? child : -1;
}

bool endsWithin(int process, std::chrono::milliseconds patience) {
    auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ended = {process, POLLIN, 0};
        int result = poll(&ended, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
        if (result > 0)
            return true;
        if (result == 0 || errno != EINTR)
            return false;
    }
}

bool reap(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// It may hang in the kernel, where it cannot be ended now.
void endLater(pid_t child) {
    kill(child, SIGKILL);
    try {
        const SignalsBlocked blocked;
        std::thread([child] { reap(child); }).detach();
    } catch (const std::system_error&) {
        // Without another thread it is reaped here if it has ended, or stays until this process
        // ends.
        waitpid(child, nullptr, WNOHANG);
    }
}

}  // namespace

bool runProgram(const std::vector<std::string>& arguments, std::chrono::milliseconds patience) {
    pid_t child = start(arguments);
    if (child < 0)
        return false;
    int process = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    bool ended = process >= 0 && endsWithin(process, patience);
    if (process >= 0)
        close(process);
    if (ended)
        return reap(child);
    endLater(child);
    return false;
}

}  // namespace coreservices
