// SPDX-License-Identifier: MIT
#include "tools/ula/StandardOutput.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/Translation.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tav::tool {

namespace {

[[noreturn]] void fail() {
    throw CommandError{ExitCannotWrite, translated("cannot write standard output: %1",
                                                   std::string(std::strerror(errno)))};
}

}  // namespace

void print(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        fail();
}

void finishOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        fail();
}

void printError(std::string_view message, std::string_view hint) {
    std::fflush(stdout);
    std::fprintf(stderr, "ula: %s\n", displayText(message).c_str());
    if (!hint.empty())
        std::fprintf(stderr, "     %s\n", displayText(hint).c_str());
}

}  // namespace tav::tool
