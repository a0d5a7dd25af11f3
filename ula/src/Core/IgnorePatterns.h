// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tav::ula {

/// Shell patterns that leave items of a tree out.
class IgnorePatterns {
public:
    explicit IgnorePatterns(std::vector<std::string> patterns);

    /// Whether the item, or a folder above it, is left out. The path is the one below the root,
    /// without a slash at its beginning.
    bool match(std::string_view path) const;

private:
    bool matchItem(const std::string& path, const std::string& name) const;

    std::vector<std::string> _patterns;
};

}  // namespace tav::ula
