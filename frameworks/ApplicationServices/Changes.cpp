// SPDX-License-Identifier: MIT
#include "Changes.h"

#include "ApplicationServices/CGDisplayConfiguration.h"

#include <algorithm>

namespace displays {

namespace {

const Display* find(const Displays& displays, std::uint32_t id) {
    const auto found = std::find_if(displays.begin(), displays.end(),
                                    [id](const Display& display) { return display.id == id; });
    return found == displays.end() ? nullptr : &*found;
}

bool isMain(const Displays& displays, std::uint32_t id) {
    return !displays.empty() && displays.front().id == id;
}

bool haveSameMode(const Display& first, const Display& second) {
    return first.frame.width == second.frame.width && first.frame.height == second.frame.height &&
           first.refreshRate == second.refreshRate && first.bitsPerPixel == second.bitsPerPixel;
}

bool isAtSamePlace(const Display& first, const Display& second) {
    return first.frame.x == second.frame.x && first.frame.y == second.frame.y;
}

std::uint32_t flagsOf(const Display* before, const Display& now) {
    if (before == nullptr)
        return kCGDisplayAddFlag | kCGDisplayEnabledFlag | kCGDisplayDesktopShapeChangedFlag;
    std::uint32_t flags = 0;
    if (!haveSameMode(*before, now))
        flags |= kCGDisplaySetModeFlag;
    if (!isAtSamePlace(*before, now))
        flags |= kCGDisplayMovedFlag;
    if (before->frame != now.frame)
        flags |= kCGDisplayDesktopShapeChangedFlag;
    return flags;
}

}  // namespace

std::vector<Change> changesBetween(const Displays& before, const Displays& after) {
    std::vector<Change> changes;
    for (const Display& display : before)
        if (find(after, display.id) == nullptr)
            changes.push_back({display.id, kCGDisplayRemoveFlag | kCGDisplayDisabledFlag |
                                               kCGDisplayDesktopShapeChangedFlag});
    for (const Display& display : after) {
        std::uint32_t flags = flagsOf(find(before, display.id), display);
        if (isMain(after, display.id) && !isMain(before, display.id))
            flags |= kCGDisplaySetMainFlag;
        if (flags != 0)
            changes.push_back({display.id, flags});
    }
    return changes;
}

}  // namespace displays
