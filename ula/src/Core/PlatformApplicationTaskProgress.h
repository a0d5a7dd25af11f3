// SPDX-License-Identifier: MIT
#pragma once

namespace tav::ula {

class ApplicationTaskProgress;

/// The platform's. Owner: the caller.
ApplicationTaskProgress* createPlatformApplicationTaskProgress();

}  // namespace tav::ula
