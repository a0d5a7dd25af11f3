// SPDX-License-Identifier: MIT
#include "ula/foundation/memory/SystemMem.h"

#include "ula/foundation/memory/ControlGroup.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/resource.h>

namespace tav::memory {

namespace {

/// A figure of a "Name:  123 kB" table of the kernel, in bytes; 0 when it is not there.
std::uint64_t readKernelFigure(const char* table, const char* name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(table, "re"),
                                                               &std::fclose);
    char line[256];
    while (file && std::fgets(line, sizeof line, file.get())) {
        unsigned long long kilobytes = 0;
        const std::size_t length = std::strlen(name);
        if (std::strncmp(line, name, length) == 0 && line[length] == ':' &&
            std::sscanf(line + length + 1, "%llu", &kilobytes) == 1)
            return std::uint64_t{kilobytes} * 1024;
    }
    return 0;
}

std::uint64_t addressSpaceLeft() {
    rlimit limit{};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return UINT64_MAX;
    const std::uint64_t used = readKernelFigure("/proc/self/status", "VmSize");
    return limit.rlim_cur > used ? limit.rlim_cur - used : 0;
}

}  // namespace

std::uint64_t SystemMem::MemGetPhysicalMemSize() {
    return readKernelFigure("/proc/meminfo", "MemTotal");
}

std::uint64_t SystemMem::MemGetAvailVirtualMemSize() {
    const std::uint64_t machine = readKernelFigure("/proc/meminfo", "MemAvailable") +
                                  readKernelFigure("/proc/meminfo", "SwapFree");
    return std::min(machine, addressSpaceLeft());
}

std::uint64_t SystemMem::MemGetEffectiveMemSize() {
    const std::uint64_t machine = MemGetPhysicalMemSize();
    return std::min(machine, readControlGroupLimits().memory.value_or(machine));
}

std::uint64_t SystemMem::MemGetEffectiveAvailMemSize() {
    const std::uint64_t process = MemGetAvailVirtualMemSize();
    return std::min(process, readControlGroupLimits().memoryLeft.value_or(process));
}

}  // namespace tav::memory
