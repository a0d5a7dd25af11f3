// SPDX-License-Identifier: MIT
// Takes an extended attribute away.
//
//   xattr -d [-r] NAME FILE...
//
// On this system a program's attributes are those of the class "user". With -r, what lies in
// folders is meant, too, and it is no error where there is no such attribute.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ftw.h>
#include <string>
#include <string_view>
#include <sys/xattr.h>

namespace {

constexpr int kMostDescriptors = 16;

std::string attribute;
bool isRecursive = false;
int failures = 0;

// Links have none of the class "user", which the system says in its own way.
void remove(const char* path, bool isLink) {
    if (lremovexattr(path, attribute.c_str()) == 0 || (isLink && errno == EPERM) ||
        (isRecursive && errno == ENODATA))
        return;
    std::fprintf(stderr, "xattr: %s: %s\n", path,
                 errno == ENODATA ? "No such xattr" : std::strerror(errno));
    ++failures;
}

int visit(const char* path, const struct stat*, int kind, FTW*) {
    remove(path, kind == FTW_SL || kind == FTW_SLN);
    return 0;
}

void removeFrom(const char* path) {
    if (!isRecursive)
        remove(path, false);
    else if (nftw(path, visit, kMostDescriptors, FTW_PHYS) != 0) {
        std::fprintf(stderr, "xattr: %s: %s\n", path, std::strerror(errno));
        ++failures;
    }
}

}  // namespace

int main(int count, char** words) {
    bool isRemoval = false;
    int next = 1;
    for (; next < count && words[next][0] == '-'; ++next) {
        const std::string_view option = words[next];
        if (option.find_first_not_of("-dr") != std::string_view::npos)
            break;
        isRemoval = isRemoval || option.find('d') != std::string_view::npos;
        isRecursive = isRecursive || option.find('r') != std::string_view::npos;
    }
    if (!isRemoval || count - next < 2) {
        std::fprintf(stderr, "xattr: use: xattr -d [-r] NAME FILE...\n");
        return 2;
    }
    attribute = std::string("user.") + words[next];
    for (++next; next < count; ++next)
        removeFrom(words[next]);
    return failures == 0 ? 0 : 1;
}
