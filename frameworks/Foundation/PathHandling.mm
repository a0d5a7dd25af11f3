// SPDX-License-Identifier: MIT
// GNUstep also takes backslashes for separators, "a:" for a disk and "//a/b/" for a share, whatever
// system it runs on. Here as on the platform they are parts of names, and names may hold them.
#import <Foundation/Foundation.h>

// Exported by GNUstep, and documented, but declared in none of its headers.
extern "C" const char* GSPathHandling(const char* mode);

namespace {

__attribute__((constructor)) void takePathsAsTheyAre() {
    GSPathHandling("unix");
}

}  // namespace
