// SPDX-License-Identifier: MIT
#pragma once

namespace tav::bench {

/// AppKit's, for the display that DISPLAY names. Stays to the end.
void makeApplicationObject();

}  // namespace tav::bench
