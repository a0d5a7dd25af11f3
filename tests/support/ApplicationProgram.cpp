// SPDX-License-Identifier: MIT
// An application for tests, to be copied into bundles.
//
//   PROGRAM wait      until its input ends
//   PROGRAM restart   requires a restart, checks it, says "checked", waits until its input ends
//   PROGRAM update    puts another file in its program's place first, then as restart
//   PROGRAM           reports that it was started, and whether the one before it still runs
#include "ula/UniqueAppInstance.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace {

std::string linkAt(const std::string& path) {
    char target[PATH_MAX];
    const ssize_t length = readlink(path.c_str(), target, sizeof target);
    return {target, length > 0 ? static_cast<std::size_t>(length) : 0};
}

void say(const char* text) {
    std::printf("%s\n", text);
    std::fflush(stdout);
}

void waitForEnd() {
    while (std::getchar() != EOF) {
    }
}

int report() {
    const char* const place = std::getenv("ULA_TEST_REPORT");
    const char* const before = std::getenv("ULA_TEST_BEFORE");
    const int file = place == nullptr ? -1 : open(place, O_WRONLY);
    if (file < 0 || before == nullptr)
        return 1;
    std::string process(32, '\0');
    const int numbers = open(before, O_RDONLY);
    process.resize(static_cast<std::size_t>(
        std::max<ssize_t>(read(numbers, process.data(), process.size()), 0)));
    const std::string line = linkAt("/proc/self/exe") + " in " + linkAt("/proc/self/cwd") +
                             " after " +
                             (linkAt("/proc/" + process + "/exe").empty() ? "its end" : "nothing") +
                             (fcntl(9, F_GETFD) < 0 ? "" : ", with a descriptor") + "\n";
    return write(file, line.data(), line.size()) == static_cast<ssize_t>(line.size()) ? 0 : 1;
}

int restart() {
    const int numbers = open(std::getenv("ULA_TEST_BEFORE"), O_WRONLY | O_CREAT, 0600);
    const std::string process = std::to_string(getpid());
    if (write(numbers, process.data(), process.size()) < 0)
        return 1;
    // Not to be handed on, although it could be.
    dup2(numbers, 9);
    tav::ula::setRestartRequired(true);
    tav::ula::checkRestartApplicaiton();
    say("checked");
    waitForEnd();
    return 0;
}

int update() {
    const std::filesystem::path self = linkAt("/proc/self/exe");
    const std::filesystem::path next = self.string() + ".new";
    std::filesystem::copy_file(self, next);
    std::filesystem::rename(next, self);
    return restart();
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 2)
        return report();
    if (std::strcmp(arguments[1], "restart") == 0)
        return restart();
    if (std::strcmp(arguments[1], "update") == 0)
        return update();
    say("ready");
    waitForEnd();
    return 0;
}
