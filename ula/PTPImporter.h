// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <boost/signals2/last_value.hpp>
#include <boost/signals2/signal.hpp>
#include <string>
#include <vector>

namespace tav::ula {

/// The cameras and memory cards that are connected and have files to bring over. A device is named
/// by its number, "1003". Of several files of one name the first counts; `ImportSession` chooses
/// between them.
/// Thread: the one that first called `getInstance`, whose run loop brings the signals.
class ULA_API PTPImporter {
public:
    using DeviceAdded = boost::signals2::signal<void(const std::string& deviceId,
                                                     const std::vector<std::string>& fileNames),
                                                boost::signals2::last_value<void>>;
    using DeviceRemoved = boost::signals2::signal<void(const std::string& deviceId),
                                                  boost::signals2::last_value<void>>;

    /// Made at the first call, on the main thread; lives as long as the process.
    static PTPImporter* getInstance();
    PTPImporter(const PTPImporter&) = delete;
    PTPImporter& operator=(const PTPImporter&) = delete;

    /// Told again when more of a device can be read.
    DeviceAdded deviceAdded;
    /// Also of devices that were never told as added, since they had no files.
    DeviceRemoved deviceRemoved;

    virtual ~PTPImporter();
    /// Brings the files over into a folder, one after the other, and returns when that is done. A
    /// name that the device does not have is left out, and nothing is ever replaced.
    /// Fails: goes on with the next file; logged by the platform.
    virtual void downloadFiles(const std::string& deviceId,
                               const std::vector<std::string>& fileNames,
                               const std::string& location) = 0;
    /// In no particular order.
    virtual std::vector<std::string> getDevices() = 0;

protected:
    PTPImporter();
};

}  // namespace tav::ula
