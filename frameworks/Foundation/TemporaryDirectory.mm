// SPDX-License-Identifier: MIT
#import "TemporaryDirectory.h"

#undef NSTemporaryDirectory

#include <cstdlib>
#include <mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool isUsable(const std::string& path) {
    struct stat item {};
    return path[0] == '/' && stat(path.c_str(), &item) == 0 && S_ISDIR(item.st_mode) &&
           access(path.c_str(), W_OK | X_OK) == 0;
}

// No link, and nobody else's.
bool isPrivate(const std::string& path) {
    struct stat item {};
    return lstat(path.c_str(), &item) == 0 && S_ISDIR(item.st_mode) && item.st_uid == geteuid() &&
           (item.st_mode & 077) == 0;
}

// GNUstep looks for its folder, and secures it, at every question. That is done once here, as long
// as the folder stays what it is.
NSString* directoryOfGNUstep() {
    static std::mutex mutex;
    static auto* const known = new std::string;
    const std::lock_guard lock(mutex);
    if (known->empty() || !isPrivate(*known))
        *known = [NSTemporaryDirectory() UTF8String];
    return [NSString stringWithUTF8String:known->c_str()];
}

}  // namespace

NSString* ULATemporaryDirectory() {
    const char* const variable = std::getenv("TMPDIR");
    std::string path = variable == nullptr ? "" : variable;
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    NSString* const text = isUsable(path) ? [NSString stringWithUTF8String:path.c_str()] : nil;
    return text != nil ? text : directoryOfGNUstep();
}
