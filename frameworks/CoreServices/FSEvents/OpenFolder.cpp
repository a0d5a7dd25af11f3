// SPDX-License-Identifier: MIT
#include "OpenFolder.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>

namespace fsevents {

int openFolderAt(const std::string& path, bool followsLast) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
    int at = AT_FDCWD;
    std::string rest = path;
    while (rest.size() >= PATH_MAX) {
        const std::size_t cut = rest.rfind('/', PATH_MAX - 2);
        const int next = openat(at, rest.substr(0, cut).c_str(), flags);
        const int error = errno;
        if (at >= 0)
            close(at);
        errno = error;
        if (next < 0)
            return -1;
        at = next;
        rest.erase(0, cut + 1);
    }
    const int result = openat(at, rest.c_str(), flags | (followsLast ? 0 : O_NOFOLLOW));
    const int error = errno;
    if (at >= 0)
        close(at);
    errno = error;
    return result;
}

}  // namespace fsevents
