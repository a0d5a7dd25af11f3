// SPDX-License-Identifier: MIT
#pragma once

#include "ula/ApplicationTaskProgress.h"

namespace tav::ula {

/// Draws over the icon that the dock shows.
class ApplicationTaskProgressMac : public ApplicationTaskProgress {
public:
    void showProgress(void* window, const double& fraction,
                      const TaskProgressState& state) override;
    void clearProgress() override;
};

}  // namespace tav::ula
