// SPDX-License-Identifier: MIT
#include "Security/Authorization.h"

#include "Security/Authorization/Privileges.h"
#include "Security/Authorization/WaitForTool.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

using security::Privileges;
using security::PrivilegesAnswer;

namespace {

constexpr char kPkexec[] = "/usr/bin/pkexec";
constexpr AuthorizationFlags kAsking =
    kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights;

// The program that this thread waits for next.
thread_local pid_t executed = -1;

// In the folder "ula" beside this library.
std::string serverProgram() {
    Dl_info library{};
    char path[PATH_MAX];
    if (dladdr(kPkexec, &library) == 0 || realpath(library.dli_fname, path) == nullptr)
        return {};
    const std::string file = path;
    return file.substr(0, file.rfind('/')) + "/ula/privileged";
}

OSStatus statusOf(PrivilegesAnswer answer) {
    switch (answer) {
    case PrivilegesAnswer::Granted:
        return errAuthorizationSuccess;
    case PrivilegesAnswer::Cancelled:
        return errAuthorizationCanceled;
    case PrivilegesAnswer::Denied:
        break;
    }
    return errAuthorizationDenied;
}

bool isForAdministration(const AuthorizationRights& rights) {
    for (UInt32 i = 0; i < rights.count; ++i)
        if (std::strcmp(rights.items[i].name, kAuthorizationRightExecute) != 0)
            return false;
    return true;
}

}  // namespace

struct AuthorizationOpaqueRef {
    Privileges privileges{kPkexec, serverProgram()};
};

namespace {

Privileges& privilegesOf(AuthorizationRef authorization) {
    return const_cast<AuthorizationOpaqueRef*>(authorization)->privileges;
}

pid_t execute(Privileges& privileges, const char* program, char* const* arguments) {
    std::vector<std::string> words = {program};
    while (arguments != nullptr && *arguments != nullptr)
        words.emplace_back(*arguments++);
    return privileges.run(words);
}

}  // namespace

OSStatus AuthorizationCreate(const AuthorizationRights* rights,
                             const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                             AuthorizationRef* authorization) {
    if (authorization == nullptr)
        return errAuthorizationInvalidPointer;
    *authorization = nullptr;
    if (rights != nullptr || environment != nullptr || flags != kAuthorizationFlagDefaults)
        return errAuthorizationDenied;
    try {
        *authorization = new AuthorizationOpaqueRef;
        return errAuthorizationSuccess;
    } catch (const std::exception&) {
        return errAuthorizationInternal;
    }
}

OSStatus AuthorizationFree(AuthorizationRef authorization, AuthorizationFlags) {
    if (authorization == nullptr)
        return errAuthorizationInvalidRef;
    delete authorization;
    return errAuthorizationSuccess;
}

OSStatus AuthorizationCopyRights(AuthorizationRef authorization, const AuthorizationRights* rights,
                                 const AuthorizationEnvironment*, AuthorizationFlags flags,
                                 AuthorizationRights** granted) {
    if (authorization == nullptr)
        return errAuthorizationInvalidRef;
    if (rights == nullptr || granted != nullptr)
        return errAuthorizationInvalidPointer;
    if (!isForAdministration(*rights))
        return errAuthorizationDenied;
    if ((flags & kAsking) != kAsking)
        return errAuthorizationInteractionNotAllowed;
    return statusOf(privilegesOf(authorization).obtain());
}

OSStatus AuthorizationExecuteWithPrivileges(AuthorizationRef authorization, const char* pathToTool,
                                            AuthorizationFlags, char* const* arguments,
                                            FILE** communicationsPipe) {
    if (authorization == nullptr)
        return errAuthorizationInvalidRef;
    if (pathToTool == nullptr || communicationsPipe != nullptr)
        return errAuthorizationInvalidPointer;
    Privileges& privileges = privilegesOf(authorization);
    const OSStatus status = statusOf(privileges.obtain());
    if (status != errAuthorizationSuccess)
        return status;
    try {
        executed = execute(privileges, pathToTool, arguments);
    } catch (const std::exception&) {
        return errAuthorizationInternal;
    }
    return executed > 0 ? errAuthorizationSuccess : errAuthorizationToolExecuteFailure;
}

pid_t security::waitForTool(int* status) {
    const pid_t child = std::exchange(executed, -1);
    if (child <= 0)
        return wait(status);
    pid_t ended;
    while ((ended = waitpid(child, status, 0)) < 0 && errno == EINTR) {
    }
    return ended;
}
