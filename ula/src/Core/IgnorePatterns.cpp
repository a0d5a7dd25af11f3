// SPDX-License-Identifier: MIT
#include "ula/src/Core/IgnorePatterns.h"

#include <algorithm>
#include <fnmatch.h>

namespace tav::ula {

IgnorePatterns::IgnorePatterns(std::vector<std::string> patterns) : _patterns(std::move(patterns)) {
    for (std::string& pattern : _patterns)
        if (pattern.size() > 1 && pattern.back() == '/')
            pattern.pop_back();
}

bool IgnorePatterns::match(std::string_view path) const {
    if (_patterns.empty())
        return false;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        if (matchItem(std::string(path.substr(0, end)),
                      std::string(path.substr(begin, end - begin))))
            return true;
        begin = end + 1;
    }
    return false;
}

bool IgnorePatterns::matchItem(const std::string& path, const std::string& name) const {
    return std::any_of(_patterns.begin(), _patterns.end(), [&](const std::string& pattern) {
        const bool isOfPaths = pattern.find('/') != std::string::npos;
        return fnmatch(pattern.c_str(), (isOfPaths ? path : name).c_str(), FNM_PATHNAME) == 0;
    });
}

}  // namespace tav::ula
