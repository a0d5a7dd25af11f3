// SPDX-License-Identifier: MIT
#include "CoreServices/MacAlias.h"

#include <algorithm>

namespace coreservices {

bool isPlainComponent(const std::string& name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

std::optional<std::vector<std::string>> plainComponents(std::string_view path) {
    std::vector<std::string> components;
    while (!path.empty()) {
        size_t end = std::min(path.find('/'), path.size());
        std::string name(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
        if (name.empty())
            continue;
        if (!isPlainComponent(name))
            return std::nullopt;
        components.push_back(std::move(name));
    }
    return components;
}

}  // namespace coreservices
