// SPDX-License-Identifier: MIT
#include "tools/ula/SecretInput.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/Translation.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/resource.h>
#include <termios.h>
#include <unistd.h>

namespace tav::tool {

namespace {

termios gShown;

/// Whoever gives up at the prompt finds the terminal as it was.
void showAndEnd(int signal) {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &gShown);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

/// While it lives, the terminal does not show what is typed.
class HiddenTyping {
public:
    HiddenTyping() {
        tcgetattr(STDIN_FILENO, &gShown);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            std::signal(signal, showAndEnd);
        termios hidden = gShown;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    ~HiddenTyping() {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &gShown);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP})
            std::signal(signal, SIG_DFL);
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;
};

/// Past the streams of the libraries, whose buffers nobody wipes.
std::string readInput(bool isLine) {
    std::string text;
    // What grows elsewhere leaves copies behind.
    text.reserve(1 << 16);
    char buffer[4096];
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, buffer, sizeof buffer);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        text.append(buffer, static_cast<std::size_t>(count));
        if (isLine && text.back() == '\n')
            break;
    }
    for (volatile char& byte : buffer)
        byte = 0;
    return text;
}

std::string readHidden() {
    // First: what is typed as soon as the prompt shows is neither shown nor lost.
    const HiddenTyping hidden;
    std::fputs(translated("Secret: ").c_str(), stderr);
    std::fflush(stderr);
    std::string text = readInput(true);
    std::fputs("\n", stderr);
    return text;
}

}  // namespace

void leaveNoCoreFile() {
    rlimit limit{};
    getrlimit(RLIMIT_CORE, &limit);
    limit.rlim_cur = 0;
    setrlimit(RLIMIT_CORE, &limit);
}

Secret::~Secret() {
    for (volatile char* byte = _text.data(); byte != _text.data() + _text.size(); ++byte)
        *byte = 0;
}

std::string readSecret() {
    std::string text = isatty(STDIN_FILENO) != 0 ? readHidden() : readInput(false);
    if (!text.empty() && text.back() == '\n')
        text.pop_back();
    if (text.empty())
        throw CommandError{
            ExitUsage, translated("there is no secret on standard input"),
            translated("'printf %s \"$SECRET\" | ula secret add NAME' gives it one")};
    return text;
}

}  // namespace tav::tool
