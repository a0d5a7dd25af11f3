// SPDX-License-Identifier: MIT
#include "tools/ula/StandardOutput.h"

#include "tools/ula/CommandError.h"
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

}  // namespace tav::tool
