// SPDX-License-Identifier: MIT
#include "OpenFolder.h"

#include <climits>
#include <fcntl.h>
#include <utility>

namespace fsevents {

cf::Descriptor openFolderAt(const std::string& path, bool followsLast) {
    const int flags = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
    cf::Descriptor above;
    std::string rest = path;
    auto open = [&](const std::string& part, int more) {
        return cf::Descriptor(openat(above ? above.get() : AT_FDCWD, part.c_str(), flags | more));
    };
    while (rest.size() >= PATH_MAX) {
        const std::size_t cut = rest.rfind('/', PATH_MAX - 2);
        cf::Descriptor next = open(rest.substr(0, cut), 0);
        if (!next)
            return next;
        above = std::move(next);
        rest.erase(0, cut + 1);
    }
    return open(rest, followsLast ? 0 : O_NOFOLLOW);
}

}  // namespace fsevents
