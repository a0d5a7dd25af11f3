// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>

namespace tav::test {

/// A session bus for this process and its children, at its end gone with all that it started.
class SessionBus {
public:
    /// `configuration` is a file; empty for the system's own session.
    explicit SessionBus(const std::string& configuration = {});
    ~SessionBus();
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    /// At once, in the middle of whatever it does.
    void kill();

private:
    void end(int signal);

    pid_t _process = -1;
};

/// One with an unlocked Secret Service, whose keyrings are in $XDG_DATA_HOME or the home folder.
/// $XDG_RUNTIME_DIR must be a folder of the test's own. Fails: throws.
class SecretSession {
public:
    SecretSession() { startKeyring("--unlock"); }
    ~SecretSession();
    SecretSession(const SecretSession&) = delete;
    SecretSession& operator=(const SecretSession&) = delete;

    /// Ends the one that runs, and starts another.
    void restartKeyring() { startKeyring("--replace --unlock"); }
    /// It runs on and answers nothing.
    void silence() const;
    /// Locks the collection that new items go to.
    void lock() const;
    /// Ends the one that runs, and starts another for a user who has no keyring yet.
    void beginWithoutKeyring();
    /// The session's bus, at once.
    void killBus() { _bus.kill(); }
    /// How many connections to the bus a process has.
    static int connectionsOf(pid_t process);

private:
    void startKeyring(const std::string& options);

    SessionBus _bus;
    pid_t _keyring = -1;
};

}  // namespace tav::test
