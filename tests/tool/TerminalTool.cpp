// SPDX-License-Identifier: MIT
#include "tests/tool/TerminalTool.h"

#include "tests/support/Patience.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

namespace {

[[noreturn]] void become(const std::string& folder, const std::vector<std::string>& arguments,
                         int terminal) {
    std::vector<char*> words = {const_cast<char*>("ula")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(terminal, stream);
    if (chdir(folder.c_str()) == 0)
        execv(ULA_TOOL_PATH, words.data());
    _exit(127);
}

}  // namespace

TerminalTool::TerminalTool(const std::string& folder, const std::vector<std::string>& arguments) {
    _screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (_screen < 0 || grantpt(_screen) != 0 || unlockpt(_screen) != 0)
        throw std::runtime_error("no terminal");
    _terminal = open(ptsname(_screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    _process = fork();
    if (_process == 0)
        become(folder, arguments, _terminal);
}

TerminalTool::~TerminalTool() {
    if (_process > 0) {
        kill(_process, SIGKILL);
        waitpid(_process, nullptr, 0);
    }
    if (_terminal >= 0)
        close(_terminal);
    close(_screen);
}

bool TerminalTool::readMore() {
    pollfd screen{_screen, POLLIN, 0};
    std::array<char, 4096> piece;
    const ssize_t count =
        poll(&screen, 1, kPatienceMs) > 0 ? read(_screen, piece.data(), piece.size()) : 0;
    if (count > 0)
        _shown.append(piece.data(), static_cast<std::size_t>(count));
    return count > 0;
}

bool TerminalTool::waitFor(const std::string& text) {
    while (_shown.find(text) == std::string::npos) {
        if (!readMore())
            return false;
    }
    return true;
}

void TerminalTool::type(const std::string& text) {
    if (write(_screen, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the terminal takes no more");
}

void TerminalTool::signal(int number) const {
    kill(_process, number);
}

bool TerminalTool::showsTyping() const {
    termios settings = _settings;
    if (_terminal >= 0)
        tcgetattr(_terminal, &settings);
    return (settings.c_lflag & ECHO) != 0;
}

int TerminalTool::wait() {
    int status = 0;
    waitpid(std::exchange(_process, -1), &status, 0);
    // The kernel brings what it has written to the screen's end in its own time. With the last
    // terminal closed, reading ends behind that.
    tcgetattr(_terminal, &_settings);
    close(std::exchange(_terminal, -1));
    while (readMore())
        continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace tav::test
