// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <cstdint>

namespace tav::ula {

/// The colour of the bar. With any other value it has whatever drawing colour is current.
enum TaskProgressState : std::int32_t {
    TaskProgressGreen = 0,
    TaskProgressYellow = 1,
    TaskProgressYellowToo = 2,
    TaskProgressRed = 3
};

/// The progress of a long task, drawn as a bar over the application's icon.
/// Thread: main, in all. Does nothing as long as there is no application object of AppKit's.
class ULA_API ApplicationTaskProgress {
public:
    /// Made at the first call. Owner: the library, until `destroyInstance`.
    static ApplicationTaskProgress* instance();
    /// What is shown stays.
    static void destroyInstance();

    ApplicationTaskProgress(const ApplicationTaskProgress&) = delete;
    ApplicationTaskProgress& operator=(const ApplicationTaskProgress&) = delete;
    virtual ~ApplicationTaskProgress();

    /// In place of any bar before. A fraction of 1 fills the icon's width but for its margins; one
    /// outside of 0 to 1 is drawn as it is. The window has no meaning here and may be null.
    virtual void showProgress(void* window, const double& fraction,
                              const TaskProgressState& state) = 0;
    /// The plain icon again.
    virtual void clearProgress() = 0;

protected:
    ApplicationTaskProgress();
};

}  // namespace tav::ula
