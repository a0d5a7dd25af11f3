// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

/// Questions about paths. Symbolic links are followed; what cannot be looked at does not exist.
/// Thread: any.
namespace tav::filesystem {

TAV_FOUNDATION_API bool exists(const String& path);
TAV_FOUNDATION_API bool isDirectory(const String& path);
TAV_FOUNDATION_API bool isRegularFile(const String& path);

/// The last component: "c" for "/a/b/c" and "/a/b/c/", "/" for "/", "" for "".
TAV_FOUNDATION_API String leaf(const String& path);
/// The path without its last component: "/a/b" for "/a/b/c" and "/a/b/c/", "/" for "/a" and "/",
/// "" for "a" and "".
TAV_FOUNDATION_API String parentPath(const String& path);
/// The folder that a path speaks of: the path itself, without "/" at the end, when it names a
/// directory, else its `parentPath`.
TAV_FOUNDATION_API String folderName(const String& path);

/// The same questions on zero-terminated paths; null does not exist.
class TAV_FOUNDATION_API File {
public:
    static bool exists(const char* path);
    static bool isDirectory(const char* path);
};

}  // namespace tav::filesystem
