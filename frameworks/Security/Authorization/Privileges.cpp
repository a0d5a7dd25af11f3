// SPDX-License-Identifier: MIT
#include "Security/Authorization/Privileges.h"

#include "Security/Authorization/Messages.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

extern char** environ;

namespace security {

namespace {

// What pkexec ends with when the dialog was dismissed; 127 is every other refusal.
constexpr int kDismissed = 126;
constexpr int kNotRun = 127;

struct Pipe {
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0)
            ends[0] = ends[1] = -1;
    }
    ~Pipe() {
        for (const int end : ends)
            if (end >= 0)
                close(end);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    bool isMade() const { return ends[0] >= 0; }
    int release(int index) { return std::exchange(ends[index], -1); }

    int ends[2];
};

// Without its own way to ask on a terminal: nobody looks there when a window is up.
pid_t spawn(const std::string& pkexec, const std::string& server, const Pipe& in, const Pipe& out) {
    const char* const words[] = {pkexec.c_str(), "--disable-internal-agent", server.c_str(),
                                 nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in.ends[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out.ends[1], 1);
    posix_spawn_file_actions_addclosefrom_np(&actions, 3);
    pid_t process = -1;
    const int error = posix_spawn(&process, pkexec.c_str(), &actions, nullptr,
                                  const_cast<char* const*>(words), environ);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? process : -1;
}

// Only what is safe after a fork beside other threads.
[[noreturn]] void standIn(int requests, int answers, const char* request, size_t size) {
    signal(SIGPIPE, SIG_IGN);
    int status = 0;
    if (!writeBytes(requests, request, size) || !readBytes(answers, &status, sizeof status))
        _exit(kNotRun);
    if (WIFSIGNALED(status)) {
        signal(WTERMSIG(status), SIG_DFL);
        kill(getpid(), WTERMSIG(status));
    }
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : kNotRun);
}

}  // namespace

Privileges::Privileges(std::string pkexec, std::string server)
    : _pkexec(std::move(pkexec)), _server(std::move(server)) {
}

Privileges::~Privileges() {
    end();
}

PrivilegesAnswer Privileges::obtain() {
    return _process > 0 ? PrivilegesAnswer::Granted : start();
}

PrivilegesAnswer Privileges::start() {
    Pipe in, out;
    if (!in.isMade() || !out.isMade())
        return PrivilegesAnswer::Denied;
    _process = spawn(_pkexec, _server, in, out);
    if (_process < 0)
        return PrivilegesAnswer::Denied;
    close(in.release(0));
    close(out.release(1));
    char ready = 0;
    const bool isGranted = readBytes(out.ends[0], &ready, 1) && ready == kReady;
    _requests = in.release(1);
    _answers = out.release(0);
    if (isGranted)
        return PrivilegesAnswer::Granted;
    close(std::exchange(_requests, -1));
    close(std::exchange(_answers, -1));
    return reap() == kDismissed ? PrivilegesAnswer::Cancelled : PrivilegesAnswer::Denied;
}

pid_t Privileges::run(const std::vector<std::string>& words) const {
    const std::string request = requestOf(words);
    const pid_t child = fork();
    if (child == 0)
        standIn(_requests, _answers, request.data(), request.size());
    return child;
}

// Its input ends, and so does it.
void Privileges::end() {
    if (_process < 0)
        return;
    close(std::exchange(_requests, -1));
    close(std::exchange(_answers, -1));
    reap();
}

int Privileges::reap() {
    int status = -1;
    while (waitpid(_process, &status, 0) < 0 && errno == EINTR) {
    }
    _process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace security
