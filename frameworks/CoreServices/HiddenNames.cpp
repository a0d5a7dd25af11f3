// SPDX-License-Identifier: MIT
#include "CoreServices/HiddenNames.h"

#include "CoreFoundation/WholeContent.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace coreservices {

namespace {

constexpr off_t kLargestList = 1 << 20;

std::string contentOf(int file) {
    struct stat item;
    if (fstat(file, &item) != 0 || !S_ISREG(item.st_mode) || item.st_size > kLargestList)
        return {};
    return cf::readUpTo(file, kLargestList);
}

}  // namespace

HiddenNames::HiddenNames(int folder) {
    // What pretends to be the list must not make anyone wait.
    const cf::Descriptor file(
        openat(folder, ".hidden", O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file)
        return;
    const std::string content = contentOf(file.get());
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
