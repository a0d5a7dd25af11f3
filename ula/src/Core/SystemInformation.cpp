// SPDX-License-Identifier: MIT
#include "ula/SystemInformation.h"

#include "ula/Screen.h"
#include "ula/foundation/memory/SystemMem.h"
#include "ula/foundation/thread/ProcessorCount.h"

namespace tav::ula {

using memory::SystemMem;

namespace {

DisplayInfo infoOf(const Screen& screen) {
    DisplayInfo info;
    info.width = screen.workingArea.right - screen.workingArea.left;
    info.height = screen.workingArea.bottom - screen.workingArea.top;
    info.bitsPerPixel = screen.bitsPerPixel;
    info.isPrimary = screen.displayID() == Screen::getPrimaryScreen().displayID();
    return info;
}

}  // namespace

std::vector<DisplayInfo> SystemInformation::getDisplayInfo() {
    std::vector<DisplayInfo> displays;
    for (const Screen& screen : Screen::getAllScreens())
        displays.push_back(infoOf(screen));
    return displays;
}

MemInfo SystemInformation::getMemInfo() {
    return {SystemMem::MemGetPhysicalMemSize(), SystemMem::MemGetAvailVirtualMemSize()};
}

HDDInfo SystemInformation::getHDDInfo() {
    return {};
}

std::int64_t SystemInformation::getEffectiveCPUCount() {
    return thread::effectiveProcessorCount();
}

MemInfo SystemInformation::getEffectiveMemInfo() {
    return {SystemMem::MemGetEffectiveMemSize(), SystemMem::MemGetEffectiveAvailMemSize()};
}

}  // namespace tav::ula
