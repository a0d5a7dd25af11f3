// SPDX-License-Identifier: MIT
#include "tests/support/SecretSession.h"

#include "tests/support/Patience.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

namespace {

[[noreturn]] void becomeBus(const std::string& configuration, int output) {
    // The number of descriptors that it would like is not its to set.
    dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    dup2(output, STDOUT_FILENO);
    const std::string kind = configuration.empty() ? "--session" : "--config-file=" + configuration;
    execlp("dbus-daemon", "dbus-daemon", kind.c_str(), "--nofork", "--nopidfile",
           "--print-address=1", static_cast<char*>(nullptr));
    _exit(127);
}

std::string readLine(int descriptor) {
    std::string line;
    for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("this fails: " + command);
}

int numberFrom(const std::string& command) {
    std::FILE* const output = popen(command.c_str(), "r");
    int number = -1;
    if (output == nullptr || std::fscanf(output, "%d", &number) != 1)
        throw std::runtime_error("this fails: " + command);
    pclose(output);
    return number;
}

/// Less than 1 while there is none.
pid_t ownerOfSecrets() {
    return numberFrom("{ gdbus call --session --dest org.freedesktop.DBus --object-path / --method "
                      "org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.secrets "
                      "2>/dev/null || echo '(uint32 0,)'; } | tr -dc '0-9 ' | cut -d ' ' -f 2");
}

}  // namespace

SessionBus::SessionBus(const std::string& configuration) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    _process = fork();
    if (_process == 0)
        becomeBus(configuration, ends[1]);
    close(ends[1]);
    const std::string address = readLine(ends[0]);
    close(ends[0]);
    if (address.empty())
        throw std::runtime_error("dbus-daemon does not start");
    setenv("DBUS_SESSION_BUS_ADDRESS", address.c_str(), 1);
}

SessionBus::~SessionBus() {
    end(SIGTERM);
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void SessionBus::kill() {
    end(SIGKILL);
}

void SessionBus::end(int signal) {
    if (_process < 0)
        return;
    ::kill(_process, signal);
    waitpid(std::exchange(_process, -1), nullptr, 0);
}

void SecretSession::startKeyring(const std::string& options) {
    run("printf pw | gnome-keyring-daemon --components=secrets --daemonize " + options +
        " >/dev/null 2>&1");
    run("gdbus wait --session --timeout 60 org.freedesktop.secrets");
    // The one that is replaced has the name for a moment yet.
    const pid_t owner = askUntil(
        ownerOfSecrets, [this](pid_t process) { return process > 0 && process != _keyring; });
    if (owner <= 0 || owner == _keyring)
        throw std::runtime_error("no keyring starts");
    _keyring = owner;
}

// It does not always see that its bus has ended, and holds what it has inherited.
SecretSession::~SecretSession() {
    if (_keyring <= 0)
        return;
    ::kill(_keyring, SIGTERM);
    // It may have been silenced.
    ::kill(_keyring, SIGCONT);
}

void SecretSession::silence() const {
    ::kill(_keyring, SIGSTOP);
}

void SecretSession::beginWithoutKeyring() {
    std::filesystem::remove_all(std::string(std::getenv("XDG_DATA_HOME")) + "/keyrings");
    startKeyring("--replace");
}

void SecretSession::lock() const {
    run("gdbus call --session --dest org.freedesktop.secrets --object-path "
        "/org/freedesktop/secrets "
        "--method org.freedesktop.Secret.Service.Lock "
        "\"['/org/freedesktop/secrets/aliases/default']\" >/dev/null");
}

int SecretSession::connectionsOf(pid_t process) {
    const std::string call = "gdbus call --session --dest org.freedesktop.DBus --object-path / "
                             "--method org.freedesktop.DBus.";
    const std::string command = "for name in $(" + call + "ListNames | grep -o ':[0-9.]*'); do " +
                                call + "GetConnectionUnixProcessID $name 2>/dev/null; done | " +
                                "grep -c 'uint32 " + std::to_string(process) + ",'";
    return numberFrom(command);
}

}  // namespace tav::test
