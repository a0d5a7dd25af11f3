// SPDX-License-Identifier: MIT
// Runs the commands of a move as root for the process that the user has given the right to, one
// after the other, until its input ends. Started by pkexec; see ../Authorization/Messages.h.
#include "Security/Authorization/Messages.h"
#include "Security/privileged/MoveCommand.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// As a shell ends for a program that may not be run.
constexpr int kRefused = 126 << 8;

// The pipes to the process are not the command's.
void closeStreams() {
    const int nothing = open("/dev/null", O_RDWR);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDOUT_FILENO);
    if (nothing > STDERR_FILENO)
        close(nothing);
}

int run(const std::vector<std::string>& words) {
    std::vector<char*> pointers;
    for (const std::string& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        closeStreams();
        execv(pointers[0], pointers.data());
        _exit(127);
    }
    int status = 127 << 8;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

}  // namespace

int main() {
    if (chdir("/") != 0 || !security::writeBytes(STDOUT_FILENO, &security::kReady, 1))
        return 1;
    for (;;) {
        const std::vector<std::string> words = security::readRequest(STDIN_FILENO);
        if (words.empty())
            return 0;
        const int status = security::isMoveCommand(words) ? run(words) : kRefused;
        if (!security::writeBytes(STDOUT_FILENO, &status, sizeof status))
            return 1;
    }
}
