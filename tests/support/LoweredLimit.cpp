// SPDX-License-Identifier: MIT
#include "tests/support/LoweredLimit.h"

#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::test {

namespace {

void waitForEnd(int pipeEnd) {
    char byte = 0;
    while (read(pipeEnd, &byte, 1) < 0 && errno == EINTR)
        continue;
}

/// Only what a process may do that was forked from one with threads.
[[noreturn]] void restoreAtTheEnd(const std::string& file, const std::string& value, int life) {
    setsid();
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        ::signal(signal, SIG_IGN);
    waitForEnd(life);
    const int limit = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    const bool isDone =
        write(limit, value.data(), value.size()) == static_cast<ssize_t>(value.size());
    _exit(isDone ? 0 : 1);
}

}  // namespace

LoweredLimit::LoweredLimit(const std::string& file, const std::string& value) {
    const std::string before = readFile(file);
    int life[2], restored[2];
    if (pipe2(life, O_CLOEXEC) != 0 || pipe2(restored, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    // A grandchild: whoever kills the test kills its children, too.
    const pid_t child = fork();
    if (child == 0) {
        close(life[1]);
        close(restored[0]);
        if (fork() == 0)
            restoreAtTheEnd(file, before, life[0]);
        _exit(0);
    }
    waitpid(child, nullptr, 0);
    close(life[0]);
    close(restored[1]);
    _life = life[1];
    _restored = restored[0];
    writeFile(file, value);
}

LoweredLimit::~LoweredLimit() {
    close(_life);
    waitForEnd(_restored);
    close(_restored);
}

}  // namespace tav::test
