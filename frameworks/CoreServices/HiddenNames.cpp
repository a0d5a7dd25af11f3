// SPDX-License-Identifier: MIT
#include "CoreServices/HiddenNames.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace coreservices {

namespace {

constexpr off_t kLargestList = 1 << 20;

std::string contentOf(int file) {
    struct stat item;
    if (fstat(file, &item) != 0 || !S_ISREG(item.st_mode) || item.st_size > kLargestList)
        return {};
    std::string content(static_cast<std::size_t>(item.st_size), '\0');
    const ssize_t length = read(file, content.data(), content.size());
    content.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return content;
}

}  // namespace

HiddenNames::HiddenNames(int folder) {
    // What pretends to be the list must not make anyone wait.
    const int file = openat(folder, ".hidden", O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (file < 0)
        return;
    const std::string content = contentOf(file);
    close(file);
    if (!content.empty())
        _lines = "\n" + content + "\n";
}

bool HiddenNames::contains(std::string_view name) const {
    if (name.substr(0, 1) == ".")
        return true;
    if (_lines.empty() || name.find('\n') != std::string_view::npos)
        return false;
    std::string line = "\n";
    line.append(name).push_back('\n');
    return _lines.find(line) != std::string::npos;
}

}  // namespace coreservices
