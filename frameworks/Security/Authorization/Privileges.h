// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace security {

enum class PrivilegesAnswer { Granted, Cancelled, Denied };

// The rights of root as polkit gives them: a program that runs as root, waits for commands, and
// ends when this object does. One answer of the user's is enough for all of them.
class Privileges {
public:
    // The programs are pkexec and the one that waits for commands.
    Privileges(std::string pkexec, std::string server);
    ~Privileges();
    Privileges(const Privileges&) = delete;
    Privileges& operator=(const Privileges&) = delete;

    // Asks unless they have been granted, and waits until the user has decided.
    PrivilegesAnswer obtain();

    // Has a command run, its program first, and gives the number of a child of this process that
    // ends as the program does. Fails: -1.
    pid_t run(const std::vector<std::string>& words) const;

private:
    PrivilegesAnswer start();
    void end();
    int reap();

    const std::string _pkexec;
    const std::string _server;
    pid_t _process = -1;
    int _requests = -1;
    int _answers = -1;
};

}  // namespace security
