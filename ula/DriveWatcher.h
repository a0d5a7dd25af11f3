// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Drive.h"
#include "ula/Export.h"

#include <boost/signals2/last_value.hpp>
#include <boost/signals2/signal.hpp>

namespace tav::ula {

/// Tells which volumes come and go.
/// Thread: the signals come on the main thread, while its run loop runs. Made and deleted there,
/// too; also within a slot.
class ULA_API DriveWatcher {
public:
    using Signal = boost::signals2::signal<void(const Drive&), boost::signals2::last_value<void>>;

    /// Watches from here on. Owner: the caller.
    static DriveWatcher* create();
    DriveWatcher(const DriveWatcher&) = delete;
    DriveWatcher& operator=(const DriveWatcher&) = delete;
    virtual ~DriveWatcher();

    /// A volume has appeared.
    Signal driveMounted;
    /// A volume has gone: its record as it was known.
    Signal driveUnmounted;

protected:
    DriveWatcher();
};

}  // namespace tav::ula
