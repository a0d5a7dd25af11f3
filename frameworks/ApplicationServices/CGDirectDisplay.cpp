// SPDX-License-Identifier: MIT
#include "ApplicationServices/CGDirectDisplay.h"

#include "DisplayList.h"

struct CGDisplayMode {
    double refreshRate;
};

CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display) {
    const auto displays = displays::DisplayList::ofProcess().current();
    for (const displays::Display& candidate : *displays)
        if (candidate.id == display)
            return new CGDisplayMode{candidate.refreshRate};
    return nullptr;
}

double CGDisplayModeGetRefreshRate(CGDisplayModeRef mode) {
    return mode->refreshRate;
}

void CGDisplayModeRelease(CGDisplayModeRef mode) {
    delete mode;
}
