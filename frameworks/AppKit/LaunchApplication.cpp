// SPDX-License-Identifier: MIT
#include "AppKit/LaunchApplication.h"

#include "AppKit/ActivateWindows.h"
#include "AppKit/RunningApplications.h"
#include "AppKit/SessionBus.h"
#include "CoreFoundation/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <gio/gio.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace appkit {

namespace {

// An application that listens has its identifier as its name on the bus, and as its path there.
bool activateOverBus(const std::string& identifier) {
    if (!g_dbus_is_name(identifier.c_str()))
        return false;
    const coreservices::BusConnection bus = connectToSessionBus();
    if (!bus)
        return false;
    std::string path = "/" + identifier;
    std::replace(path.begin(), path.end(), '.', '/');
    std::replace(path.begin(), path.end(), '-', '_');
    GVariant* answer = g_dbus_connection_call_sync(
        bus.get(), identifier.c_str(), path.c_str(), "org.freedesktop.Application", "Activate",
        g_variant_new("(a{sv})", nullptr), nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START,
        static_cast<int>(kBusPatience.count()), nullptr, nullptr);
    const bool isDone = answer != nullptr;
    if (isDone)
        g_variant_unref(answer);
    return isDone;
}

// Between fork and exec: only what is safe there.
void becomeNewborn() {
    setsid();
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (chdir("/") != 0)
        return;
}

// Says over the pipe, which an exec closes, why there was none.
[[noreturn]] void runAsGrandchild(char* const* words, int report) {
    const pid_t grandchild = fork();
    if (grandchild > 0)
        _exit(0);
    if (grandchild == 0) {
        becomeNewborn();
        close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
        execv(words[0], words);
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t told = write(report, &error, sizeof error);
    _exit(1);
}

std::string resolved(const std::string& path) {
    char target[PATH_MAX];
    return realpath(path.c_str(), target) != nullptr ? target : path;
}

bool isProgram(const std::string& path) {
    struct stat item {};
    return stat(path.c_str(), &item) == 0 && S_ISREG(item.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

}  // namespace

bool activate(const RunningApplication& application) {
    const bool isAsked =
        application.identity.isActivatable && activateOverBus(application.identity.identifier);
    return activateWindows(application.process) || isAsked;
}

bool startProgram(const std::vector<std::string>& words) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return false;
    const cf::Descriptor reader(ends[0]);
    cf::Descriptor report(ends[1]);
    std::vector<char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0)
        runAsGrandchild(pointers.data(), report.get());
    report = cf::Descriptor();
    while (child > 0 && waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t size;
    while ((size = read(reader.get(), &error, sizeof error)) < 0 && errno == EINTR) {
    }
    return child > 0 && size == 0;
}

bool openApplication(const std::string& path, pid_t except) {
    const std::string wanted = resolved(path);
    for (const RunningApplication& application : runningApplications()) {
        if (resolved(application.identity.path) == wanted && application.process != getpid() &&
            application.process != except) {
            activate(application);
            return true;
        }
    }
    const std::string program = isProgram(wanted) ? wanted : programOfBundle(wanted);
    return !program.empty() && startProgram({program});
}

}  // namespace appkit
