// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

#import "HomeDirectory.h"

namespace {

/// Nil for what is no absolute path, and for bytes that are no text.
NSString* pathOf(const char* text) {
    return text != nullptr && text[0] == '/' ? [NSString stringWithUTF8String:text] : nil;
}

/// Nil for a user whom the database does not know.
NSString* homeOfDatabase() {
    passwd entry{};
    passwd* found = nullptr;
    char buffer[16384];
    getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found);
    return found == nullptr ? nil : pathOf(found->pw_dir);
}

}  // namespace

NSString* ULAHomeDirectory() {
    if (NSString* const home = pathOf(std::getenv("HOME")))
        return home;
    NSString* const home = homeOfDatabase();
    return home != nil ? home : @"/";
}
