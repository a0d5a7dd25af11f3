// SPDX-License-Identifier: MIT
// Opens an application: brings it to the front where it runs, else starts it.
//
//   open BUNDLE [--program PROGRAM --after PROCESS]
//
// The process of that number, if it runs that program, is waited for first. Where there is no such
// bundle, the program itself is what is opened.
#include "AppKit/ApplicationIdentity.h"
#include "AppKit/LaunchApplication.h"
#include "AppKit/ProcessTable.h"
#include "CoreFoundation/Descriptor.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

struct Wish {
    std::string bundle;
    std::string program;
    pid_t after = 0;
};

bool parse(int count, char** words, Wish& wish) {
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        const bool hasValue = i + 1 < count;
        if (word == "--program" && hasValue)
            wish.program = appkit::pathOfProgram(words[++i]);
        else if (word == "--after" && hasValue)
            wish.after = atoi(words[++i]);
        else if (wish.bundle.empty())
            wish.bundle = word;
        else
            return false;
    }
    return !wish.bundle.empty() || !wish.program.empty();
}

// Nothing of the program that ends is kept: its locks and connections, its terminal, its group.
void leaveParent() {
    close_range(STDERR_FILENO + 1, UINT_MAX, 0);
    setsid();
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// The number is looked at after it is held: it can no longer be given to another process unseen.
void waitForEnd(pid_t process, const std::string& program) {
    if (process <= 0)
        return;
    const cf::Descriptor held(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
    if (!held || appkit::ProcessTable().program(process) != program)
        return;
    pollfd end = {held.get(), POLLIN, 0};
    while (poll(&end, 1, -1) < 0 && errno == EINTR) {
    }
}

}  // namespace

int main(int count, char** words) {
    Wish wish;
    if (!parse(count, words, wish)) {
        fprintf(stderr, "open: use: open BUNDLE\n");
        return 2;
    }
    leaveParent();
    waitForEnd(wish.after, wish.program);
    const bool isBundle = !appkit::programOfBundle(wish.bundle).empty();
    const std::string& path = isBundle || wish.program.empty() ? wish.bundle : wish.program;
    if (appkit::openApplication(path))
        return 0;
    fprintf(stderr, "open: %s cannot be opened as an application\n", path.c_str());
    return 1;
}
