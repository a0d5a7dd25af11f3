// SPDX-License-Identifier: MIT
#include "ula/foundation/thread/ProcessorCount.h"

#include "ula/foundation/memory/ControlGroup.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <memory>
#include <sched.h>
#include <unistd.h>

namespace tav::thread {

namespace {

/// Of the processors that the process is bound to, however many there are.
int allowedProcessors() {
    for (int capacity = 1024; capacity <= 1 << 20; capacity *= 2) {
        const std::unique_ptr<cpu_set_t, void (*)(cpu_set_t*)> set(
            CPU_ALLOC(capacity), [](cpu_set_t* pointer) { CPU_FREE(pointer); });
        const std::size_t size = CPU_ALLOC_SIZE(capacity);
        if (sched_getaffinity(0, size, set.get()) == 0)
            return CPU_COUNT_S(size, set.get());
        if (errno != EINVAL)
            break;
    }
    return static_cast<int>(sysconf(_SC_NPROCESSORS_ONLN));
}

}  // namespace

int effectiveProcessorCount(int processors, std::optional<double> share) {
    const double most = std::ceil(std::max(share.value_or(processors), 0.0));
    return std::max(1, static_cast<int>(std::min<double>(processors, most)));
}

int effectiveProcessorCount() {
    return effectiveProcessorCount(allowedProcessors(),
                                   memory::readControlGroupLimits().processors);
}

}  // namespace tav::thread
