// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace coreservices {

// Which items of a folder the desktop does not show: those whose names begin with a dot, and those
// that the folder's file ".hidden" lists, a name a line.
class __attribute__((visibility("default"))) HiddenNames {
public:
    // `folder` is a descriptor, borrowed for the call. No file, or one that cannot be read or that
    // is larger than a list of names would be, hides nothing.
    explicit HiddenNames(int folder);

    bool contains(std::string_view name) const;

private:
    std::string _lines;  // each with a line feed before and behind it; empty without a list
};

}  // namespace coreservices
