// SPDX-License-Identifier: MIT
#include <cstdlib>
#include <initializer_list>
#include <pwd.h>
#include <unistd.h>

#import "UserName.h"

namespace {

/// Nil for no name, and for bytes that are no text.
NSString* nameOf(const char* text) {
    return text != nullptr && text[0] != '\0' ? [NSString stringWithUTF8String:text] : nil;
}

/// Nil for a user whom the database does not know.
NSString* nameOfDatabase() {
    passwd entry{};
    passwd* found = nullptr;
    char buffer[16384];
    getpwuid_r(getuid(), &entry, buffer, sizeof buffer, &found);
    return found == nullptr ? nil : nameOf(found->pw_name);
}

}  // namespace

NSString* ULAUserName() {
    if (NSString* const name = nameOfDatabase())
        return name;
    for (const char* variable : {"LOGNAME", "USER"})
        if (NSString* const name = nameOf(std::getenv(variable)))
            return name;
    return [NSString stringWithFormat:@"%u", static_cast<unsigned int>(getuid())];
}
