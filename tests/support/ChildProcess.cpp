// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

ChildProcess::ChildProcess(const std::function<void()>& function) {
    std::fflush(nullptr);
    _id = fork();
    if (_id < 0)
        throw std::runtime_error("cannot fork");
    if (_id > 0)
        return;
    // A test that is stopped takes its children along.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    function();
    _exit(0);
}

void ChildProcess::kill() {
    if (_id <= 0)
        return;
    ::kill(_id, SIGKILL);
    wait();
}

int ChildProcess::wait() {
    int status = 0;
    const pid_t id = std::exchange(_id, -1);
    while (waitpid(id, &status, 0) < 0)
        if (errno != EINTR)
            throw std::runtime_error("there is no such child");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string runInChild(const std::function<std::string()>& function) {
    int ends[2];
    if (pipe(ends) != 0)
        throw std::runtime_error("cannot make a pipe");
    ChildProcess child([&] {
        const std::string text = function();
        if (write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            _exit(1);
    });
    close(ends[1]);
    std::string text;
    char piece[4096];
    ssize_t length = 0;
    while ((length = read(ends[0], piece, sizeof piece)) > 0)
        text.append(piece, static_cast<std::size_t>(length));
    close(ends[0]);
    const int code = child.wait();
    if (code != 0)
        text += " (the process ended with " + std::to_string(code) + ")";
    return text;
}

}  // namespace tav::test
