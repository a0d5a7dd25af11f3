// SPDX-License-Identifier: MIT
#include "CoreServices/AliasLook.h"

#include "CoreServices/MountInfo.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

// Without doubled and trailing slashes and "."; tells whether a ".." is left.
std::string tidied(const std::string& path, bool* hasParents) {
    std::string result;
    std::string_view rest = path;
    *hasParents = false;
    while (!rest.empty()) {
        size_t end = std::min(rest.find('/'), rest.size());
        std::string_view name = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (name.empty() || name == ".")
            continue;
        *hasParents = *hasParents || name == "..";
        result += '/';
        result += name;
    }
    return result.empty() ? "/" : result;
}

std::string realPath(const std::string& path) {
    std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), &std::free);
    return real ? real.get() : std::string();
}

// What ".." means depends on the links before it, so only the file system can tell.
std::string withoutParents(const std::string& path) {
    bool hasParents = false;
    std::string tidy = tidied(path, &hasParents);
    if (!hasParents)
        return tidy;
    size_t leaf = tidy.rfind('/');
    if (tidy.substr(leaf) == "/..")
        return realPath(tidy);
    std::string folder = realPath(tidy.substr(0, leaf));
    return folder.empty() ? folder : (folder == "/" ? "" : folder) + tidy.substr(leaf);
}

std::string readLink(const std::string& path) {
    char target[PATH_MAX];
    ssize_t length = readlink(path.c_str(), target, sizeof target);
    if (length <= 0 || length == static_cast<ssize_t>(sizeof target))
        return {};
    std::string text(target, static_cast<size_t>(length));
    return text[0] == '/' ? text : path.substr(0, path.rfind('/') + 1) + text;
}

}  // namespace

AliasLook lookAt(const std::string& path) {
    AliasLook look;
    errno = ENOENT;
    look.path = withoutParents(path);
    struct statx info;
    if (look.path.empty() || statx(AT_FDCWD, look.path.c_str(), AT_SYMLINK_NOFOLLOW,
                                   STATX_TYPE | STATX_MNT_ID, &info) != 0) {
        look.error = errno;
        return look;
    }
    look.mode = info.stx_mode;
    look.mountId = info.stx_mnt_id;
    look.isMountRoot = coreservices::isMountRoot(info);
    if (S_ISLNK(look.mode))
        look.linkTarget = readLink(look.path);
    else if (S_ISREG(look.mode))
        look.alias = readAliasFile(look.path);
    return look;
}

}  // namespace coreservices
