// SPDX-License-Identifier: MIT
#include "tools/ula/Terminal.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tav::tool {

bool isTerminal(int descriptor) {
    const char* kind = std::getenv("TERM");
    return isatty(descriptor) && kind && std::string_view(kind) != "dumb";
}

bool wantsColours() {
    const char* refusal = std::getenv("NO_COLOR");
    return isTerminal(STDOUT_FILENO) && (!refusal || !*refusal);
}

std::size_t outputColumns() {
    winsize size{};
    if (!isTerminal(STDOUT_FILENO) || ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0)
        return 0;
    return size.ws_col;
}

Colours outputColours() {
    if (!wantsColours())
        return {};
    return {"\033[1m", "\033[2m", "\033[31m", "\033[32m", "\033[33m", "\033[0m"};
}

}  // namespace tav::tool
