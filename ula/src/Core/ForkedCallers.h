// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/JobQueue.h"

namespace tav::ula {

/// Keeps the queues usable in a child process made by fork(2): no lock is left held by a thread
/// that the child does not have, and the pending jobs stay the parent's.
/// Thread: any.
namespace ForkedCallers {

void add(const util::SharedPtr<JobQueue>& queue);
void remove(const util::SharedPtr<JobQueue>& queue);

}  // namespace ForkedCallers

}  // namespace tav::ula
