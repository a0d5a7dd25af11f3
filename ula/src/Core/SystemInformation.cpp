// SPDX-License-Identifier: MIT
#include "ula/SystemInformation.h"

#include "ula/foundation/memory/SystemMem.h"
#include "ula/foundation/thread/ProcessorCount.h"

namespace tav::ula {

using memory::SystemMem;

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
