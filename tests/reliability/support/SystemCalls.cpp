// SPDX-License-Identifier: MIT
#include "tests/reliability/support/SystemCalls.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

namespace {

bool unnamedFilesAllowed = true;
/// Of the save under way; null when none is, or while a hook runs.
const FaultPlan* plan = nullptr;
std::vector<SystemCall> calls;

/// Counts a call. True: it has to fail, errno is set.
bool mustFail(const char* name, std::string path = {}) {
    if (!plan)
        return false;
    const FaultPlan* const current = std::exchange(plan, nullptr);
    calls.push_back({name, std::move(path)});
    const bool fails = static_cast<int>(calls.size()) == current->failAt;
    if (current->before)
        current->before(SystemCall(calls.back()));
    plan = current;
    if (fails)
        errno = plan->errorNumber;
    return fails;
}

std::string between(const char* from, const char* to) {
    return std::string(from) + " -> " + to;
}

template <class... Arguments>
int forward(long number, Arguments... arguments) {
    return static_cast<int>(syscall(number, arguments...));
}

int openAt(const char* name, int folder, const char* path, int flags, mode_t mode) {
    if (mustFail(name, path))
        return -1;
    if ((flags & O_TMPFILE) == O_TMPFILE && !unnamedFilesAllowed) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return forward(SYS_openat, folder, path, flags, mode);
}

}  // namespace

std::vector<SystemCall> runWithFaults(const FaultPlan& given, const std::function<void()>& save) {
    calls.clear();
    plan = &given;
    save();
    plan = nullptr;
    return std::exchange(calls, {});
}

void allowUnnamedFiles(bool allow) {
    unnamedFilesAllowed = allow;
}

}  // namespace tav::test

#define ULA_REPLACES extern "C" __attribute__((visibility("default")))

using tav::test::between;
using tav::test::forward;
using tav::test::mustFail;

ULA_REPLACES int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return tav::test::openAt("open", AT_FDCWD, path, flags, mode);
}

ULA_REPLACES int openat(int folder, const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = va_arg(rest, mode_t);
    va_end(rest);
    return tav::test::openAt("openat", folder, path, flags, mode);
}

ULA_REPLACES ssize_t write(int file, const void* bytes, size_t size) {
    if (mustFail("write"))
        return -1;
    if (tav::test::plan)
        size = std::min(size, tav::test::plan->longestWrite);
    return syscall(SYS_write, file, bytes, size);
}

ULA_REPLACES ssize_t read(int file, void* bytes, size_t size) {
    return mustFail("read") ? -1 : syscall(SYS_read, file, bytes, size);
}

ULA_REPLACES int close(int file) {
    // A close that fails has closed all the same.
    const bool fails = mustFail("close");
    const int error = errno;
    const int result = forward(SYS_close, file);
    if (fails)
        errno = error;
    return fails ? -1 : result;
}

ULA_REPLACES int fsync(int file) {
    return mustFail("fsync") ? -1 : forward(SYS_fsync, file);
}

ULA_REPLACES int fdatasync(int file) {
    return mustFail("fdatasync") ? -1 : forward(SYS_fdatasync, file);
}

ULA_REPLACES int ftruncate(int file, off_t size) noexcept {
    return mustFail("ftruncate") ? -1 : forward(SYS_ftruncate, file, size);
}

ULA_REPLACES int linkat(int fromFolder, const char* from, int toFolder, const char* to,
                        int flags) noexcept {
    return mustFail("linkat", between(from, to))
               ? -1
               : forward(SYS_linkat, fromFolder, from, toFolder, to, flags);
}

ULA_REPLACES int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    return mustFail("renameat", between(from, to))
               ? -1
               : forward(SYS_renameat2, fromFolder, from, toFolder, to, 0);
}

ULA_REPLACES int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                           unsigned flags) noexcept {
    return mustFail("renameat2", between(from, to))
               ? -1
               : forward(SYS_renameat2, fromFolder, from, toFolder, to, flags);
}

ULA_REPLACES int rename(const char* from, const char* to) noexcept {
    return mustFail("rename", between(from, to))
               ? -1
               : forward(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}

ULA_REPLACES int unlinkat(int folder, const char* path, int flags) noexcept {
    return mustFail("unlinkat", path) ? -1 : forward(SYS_unlinkat, folder, path, flags);
}

ULA_REPLACES int unlink(const char* path) noexcept {
    return mustFail("unlink", path) ? -1 : forward(SYS_unlinkat, AT_FDCWD, path, 0);
}

ULA_REPLACES int fchmod(int file, mode_t mode) noexcept {
    return mustFail("fchmod") ? -1 : forward(SYS_fchmod, file, mode);
}

ULA_REPLACES int fchown(int file, uid_t owner, gid_t group) noexcept {
    return mustFail("fchown") ? -1 : forward(SYS_fchown, file, owner, group);
}

ULA_REPLACES int fstat(int file, struct stat* facts) noexcept {
    return mustFail("fstat") ? -1 : forward(SYS_newfstatat, file, "", facts, AT_EMPTY_PATH);
}

ULA_REPLACES int fstatat(int folder, const char* path, struct stat* facts, int flags) noexcept {
    return mustFail("fstatat", path) ? -1 : forward(SYS_newfstatat, folder, path, facts, flags);
}

ULA_REPLACES ssize_t readlink(const char* path, char* target, size_t size) noexcept {
    return mustFail("readlink", path) ? -1 : syscall(SYS_readlinkat, AT_FDCWD, path, target, size);
}

ULA_REPLACES int access(const char* path, int mode) noexcept {
    return mustFail("access", path) ? -1 : forward(SYS_faccessat, AT_FDCWD, path, mode);
}

ULA_REPLACES int faccessat(int folder, const char* path, int mode, int flags) noexcept {
    return mustFail("faccessat", path) ? -1 : forward(SYS_faccessat2, folder, path, mode, flags);
}

ULA_REPLACES ssize_t lgetxattr(const char* path, const char* name, void* value,
                               size_t size) noexcept {
    return mustFail("lgetxattr", path) ? -1 : syscall(SYS_lgetxattr, path, name, value, size);
}

ULA_REPLACES int fsetxattr(int file, const char* name, const void* value, size_t size,
                           int flags) noexcept {
    return mustFail("fsetxattr", name) ? -1
                                       : forward(SYS_fsetxattr, file, name, value, size, flags);
}
