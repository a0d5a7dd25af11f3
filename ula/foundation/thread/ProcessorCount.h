// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"

#include <optional>

namespace tav::thread {

/// How many threads of this process can run at the same time: the processors that it may run on,
/// or fewer where its control groups give it less of their time. At least 1.
/// Thread: any.
TAV_FOUNDATION_API int effectiveProcessorCount();

/// The same for a process that may run on `processors` and has `share` of their time, if limited;
/// a part of a processor counts as one.
TAV_FOUNDATION_API int effectiveProcessorCount(int processors, std::optional<double> share);

}  // namespace tav::thread
