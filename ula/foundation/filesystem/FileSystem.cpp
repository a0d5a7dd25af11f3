// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/FileSystem.h"

#include "ula/foundation/thread/ScratchPad.h"

#include <string_view>
#include <sys/stat.h>

namespace tav::filesystem {

namespace {

/// The kind bits of the mode, 0 for what is not there.
mode_t kindOf(const char* path) {
    struct stat facts {};
    return path && stat(path, &facts) == 0 ? facts.st_mode & S_IFMT : 0;
}

mode_t kindOf(const String& path) {
    // A zero inside would cut the path short and ask about another one.
    if (path.find('\0') != String::npos)
        return 0;
    return kindOf(thread::globalScratchPad().zeroTerminated(path));
}

/// The length of the path without slashes at its end; a path of nothing else keeps one.
std::size_t trimmedLength(std::string_view path) {
    const std::size_t last = path.find_last_not_of('/');
    if (last == std::string_view::npos)
        return path.empty() ? 0 : 1;
    return last + 1;
}

}  // namespace

bool exists(const String& path) {
    return kindOf(path) != 0;
}

bool isDirectory(const String& path) {
    return kindOf(path) == S_IFDIR;
}

bool isRegularFile(const String& path) {
    return kindOf(path) == S_IFREG;
}

String leaf(const String& path) {
    const String trimmed = path.substr(0, trimmedLength(path.view()));
    const std::size_t slash = trimmed.view().rfind('/');
    if (slash == std::string_view::npos || trimmed.length() == 1)
        return trimmed;
    return trimmed.substr(slash + 1);
}

String parentPath(const String& path) {
    const std::size_t length = trimmedLength(path.view());
    const std::size_t slash = path.view().substr(0, length).rfind('/');
    if (slash == std::string_view::npos)
        return String();
    return path.substr(0, trimmedLength(path.view().substr(0, slash + 1)));
}

String folderName(const String& path) {
    return isDirectory(path) ? path.substr(0, trimmedLength(path.view())) : parentPath(path);
}

bool File::exists(const char* path) {
    return kindOf(path) != 0;
}

bool File::isDirectory(const char* path) {
    return kindOf(path) == S_IFDIR;
}

}  // namespace tav::filesystem
