// SPDX-License-Identifier: MIT
#pragma once

namespace coreservices {

// Of symbolic links on the way of one path, as in the kernel.
inline constexpr int kMostLinks = 40;

}  // namespace coreservices
