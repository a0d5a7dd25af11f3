// SPDX-License-Identifier: MIT
#pragma once

#include "Display.h"

namespace displays {

struct Change {
    std::uint32_t id;
    std::uint32_t flags;  // of CGDisplayChangeSummaryFlags

    friend bool operator==(const Change&, const Change&) = default;
};

// What has become of each display, those that went first. Working areas and the user's scale are no
// matter of the configuration: where only they differ, nothing has changed.
std::vector<Change> changesBetween(const Displays& before, const Displays& after);

}  // namespace displays
