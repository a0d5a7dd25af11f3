// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Patience.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

/// A program while it runs, in a group of its own. Ended with this object.
class RunningProgram {
public:
    RunningProgram(const std::string& program, const std::string& argument) {
        int input[2], output[2];
        if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
            return;
        _process = fork();
        if (_process == 0) {
            setpgid(0, 0);
            dup2(input[0], 0);
            dup2(output[1], 1);
            execl(program.c_str(), program.c_str(), argument.c_str(), nullptr);
            _exit(127);
        }
        close(input[0]);
        close(output[1]);
        _input = input[1];
        _output = output[0];
    }
    ~RunningProgram() {
        finish();
        close(_output);
    }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    pid_t process() const { return _process; }
    /// Empty when none comes, or at the end.
    std::string readLine() const {
        std::string line;
        pollfd ready = {_output, POLLIN, 0};
        char byte = 0;
        while (poll(&ready, 1, kPatienceMs) > 0 && read(_output, &byte, 1) == 1 && byte != '\n')
            line += byte;
        return line;
    }
    /// Ends its input, and waits for its end.
    void finish() {
        if (_input >= 0)
            close(std::exchange(_input, -1));
        reap();
    }
    /// Waits for its end with its input still open. Fails: false, and it runs on.
    bool waitForEnd() {
        const bool isOver = comesTrue([this] { return waitpid(_process, nullptr, WNOHANG) > 0; });
        if (isOver)
            _process = -1;
        return isOver;
    }
    void kill() {
        ::kill(_process, SIGKILL);
        reap();
    }

private:
    void reap() {
        while (_process > 0 && waitpid(_process, nullptr, 0) < 0 && errno == EINTR) {
        }
        _process = -1;
    }

    pid_t _process = -1;
    int _input = -1;
    int _output = -1;
};

}  // namespace tav::test
