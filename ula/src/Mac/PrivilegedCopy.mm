// SPDX-License-Identifier: MIT
#include "ula/src/Mac/PrivilegedCopy.h"

#include <Security/Security.h>

#include <cerrno>
#include <dlfcn.h>
#include <initializer_list>
#include <sys/wait.h>
#include <vector>

namespace tav::ula {

namespace {

using Execute = OSStatus (*)(AuthorizationRef, const char*, AuthorizationFlags, char* const*,
                             FILE**);

/// Freed with the object.
class Authorization {
public:
    Authorization() {
        if (AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment, kAuthorizationFlagDefaults,
                                &_reference) != errAuthorizationSuccess)
            _reference = nullptr;
    }
    ~Authorization() {
        if (_reference != nullptr)
            AuthorizationFree(_reference, kAuthorizationFlagDefaults);
    }
    Authorization(const Authorization&) = delete;
    Authorization& operator=(const Authorization&) = delete;

    bool isMade() const { return _reference != nullptr; }
    AuthorizationRef get() const { return _reference; }

private:
    AuthorizationRef _reference = nullptr;
};

/// Deprecated by the system, and perhaps gone one day: asked for by name. Null when it is.
Execute executeEntry() {
    static Execute entry = nullptr;
    if (entry == nullptr)
        entry =
            reinterpret_cast<Execute>(dlsym(RTLD_DEFAULT, "AuthorizationExecuteWithPrivileges"));
    return entry;
}

OSStatus askForRights(const Authorization& authorization) {
    AuthorizationItem item = {kAuthorizationRightExecute, 0, nullptr, 0};
    const AuthorizationRights rights = {1, &item};
    return AuthorizationCopyRights(authorization.get(), &rights, kAuthorizationEmptyEnvironment,
                                   kAuthorizationFlagInteractionAllowed |
                                       kAuthorizationFlagExtendRights |
                                       kAuthorizationFlagPreAuthorize,
                                   nullptr);
}

/// Runs a program to its end. Fails: false when it was not run, or ended by a signal.
bool execute(const Authorization& authorization, const char* program,
             std::initializer_list<const char*> words, int& status) {
    const Execute entry = executeEntry();
    std::vector<char*> arguments;
    for (const char* word : words)
        arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    if (entry == nullptr || entry(authorization.get(), program, kAuthorizationFlagDefaults,
                                  arguments.data(), nullptr) != errAuthorizationSuccess)
        return false;
    pid_t child;
    while ((child = wait(&status)) < 0 && errno == EINTR) {
    }
    return child >= 0 && WIFEXITED(status);
}

/// What the removal says does not matter: there may be nothing to remove, and what is left is in
/// the way of the copy.
bool replace(const Authorization& authorization, NSString* source, NSString* destination) {
    const char* const from = [source fileSystemRepresentation];
    const char* const to = [destination fileSystemRepresentation];
    int status = 0;
    return execute(authorization, "/bin/rm", {"-rf", to}, status) &&
           execute(authorization, "/bin/cp", {"-pR", from, to}, status) && WEXITSTATUS(status) == 0;
}

bool isBlank(NSString* path) {
    NSCharacterSet* const blanks = [NSCharacterSet whitespaceCharacterSet];
    return [[path stringByTrimmingCharactersInSet:blanks] length] == 0;
}

}  // namespace

PrivilegedCopy copyWithPrivileges(NSString* source, NSString* destination) {
    // What is removed is an application and never a folder full of them.
    if (![destination hasSuffix:@".app"] || isBlank(destination) || isBlank(source))
        return PrivilegedCopy::Failed;
    const Authorization authorization;
    if (!authorization.isMade())
        return PrivilegedCopy::Failed;
    const OSStatus status = askForRights(authorization);
    if (status == errAuthorizationCanceled)
        return PrivilegedCopy::Cancelled;
    const bool done =
        status == errAuthorizationSuccess && replace(authorization, source, destination);
    return done ? PrivilegedCopy::Done : PrivilegedCopy::Failed;
}

}  // namespace tav::ula
