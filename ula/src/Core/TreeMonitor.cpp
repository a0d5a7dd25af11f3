// SPDX-License-Identifier: MIT
#include "ula/TreeMonitor.h"

namespace tav::ula {

TreeMonitor::TreeMonitor() = default;
TreeMonitor::~TreeMonitor() = default;

}  // namespace tav::ula
