// SPDX-License-Identifier: MIT
#include "CoreServices/Files.h"

#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace coreservices {

const char* pathOf(const FSRef& reference) {
    return reinterpret_cast<const char*>(reference.hidden);
}

bool setPath(FSRef& reference, const std::string& path) {
    bool fits = !path.empty() && path[0] == '/' && path.size() < sizeof reference.hidden;
    if (!fits || path.find('\0') != std::string::npos)
        return false;
    std::memcpy(reference.hidden, path.c_str(), path.size() + 1);
    return true;
}

}  // namespace coreservices

namespace {

// Whatever a mounted file system knows by heart will do.
bool lookAt(const char* path, struct statx* info) {
    return statx(AT_FDCWD, path, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC,
                 STATX_TYPE, info) == 0;
}

}  // namespace

Boolean CFURLGetFSRef(CFURLRef url, FSRef* fsRef) {
    if (url == nullptr || fsRef == nullptr)
        return false;
    UInt8 path[sizeof fsRef->hidden];
    struct statx info;
    if (!CFURLGetFileSystemRepresentation(url, true, path, sizeof path) ||
        !lookAt(reinterpret_cast<const char*>(path), &info))
        return false;
    return coreservices::setPath(*fsRef, reinterpret_cast<const char*>(path));
}

CFURLRef CFURLCreateFromFSRef(CFAllocatorRef allocator, const FSRef* fsRef) {
    if (fsRef == nullptr)
        return nullptr;
    const char* path = coreservices::pathOf(*fsRef);
    struct statx info;
    bool isFolder = lookAt(path, &info) && S_ISDIR(info.stx_mode);
    return CFURLCreateFromFileSystemRepresentation(
        allocator, fsRef->hidden, static_cast<CFIndex>(std::strlen(path)), isFolder);
}

OSStatus FSPathMakeRef(const UInt8* path, FSRef* ref, Boolean* isDirectory) {
    if (path == nullptr || ref == nullptr)
        return paramErr;
    std::unique_ptr<char, decltype(&free)> real(
        realpath(reinterpret_cast<const char*>(path), nullptr), free);
    struct stat info;
    if (!real || stat(real.get(), &info) != 0 || !coreservices::setPath(*ref, real.get()))
        return fnfErr;
    if (isDirectory != nullptr)
        *isDirectory = S_ISDIR(info.st_mode);
    return noErr;
}
