// SPDX-License-Identifier: MIT
#pragma once

#include "ula/DriveWatcher.h"
#include "ula/src/Mac/DriveWatcherNotificationObserver.h"

#include <memory>
#include <string>
#include <vector>

namespace tav::ula {

/// Compares the list of drives with the one before, whenever the workspace tells of a volume.
class DriveWatcherMac : public DriveWatcher {
public:
    DriveWatcherMac();
    ~DriveWatcherMac() override;

    /// For the observer. The path does not say which volumes are new: the list does.
    void deviceMounted(const std::string& path);
    void deviceUnMounted(const std::string& path);

private:
    /// Emits the signal for each of the drives that changed and takes the current ones over. Throws
    /// the last exception of a slot, once all have been told.
    void tell(const Signal& signal, const std::vector<Drive>& changed, std::vector<Drive> current);

    DriveWatcherNotificationObserver* _observer = nil;
    std::vector<Drive> _knownDrives;
    /// Expires with this object.
    std::shared_ptr<const bool> _life = std::make_shared<const bool>(true);
};

}  // namespace tav::ula
