// SPDX-License-Identifier: MIT
#pragma once

#include <gphoto2/gphoto2-abilities-list.h>
#include <gphoto2/gphoto2-port-info-list.h>
#include <gphoto2/gphoto2-port-result.h>
#include <memory>
#include <mutex>
#include <string>

namespace imagecapture {

// The drivers, read once (which takes a while) and kept: the library reads them from many files.
// Thread: under its lock.
class GphotoLibrary {
public:
    static GphotoLibrary& instance();

    std::mutex& lock() { return _lock; }
    // Null where there is none.
    CameraAbilitiesList* drivers();
    // Fails: false for a model without a driver.
    bool findDriver(const std::string& model, CameraAbilities& abilities);

private:
    GphotoLibrary() = default;

    std::mutex _lock;
    CameraAbilitiesList* _drivers = nullptr;
};

// The ports as they are now. Reading them asks every mounted file system: one that does not answer
// is not waited for. Null where that takes too long.
using PortList = std::shared_ptr<GPPortInfoList>;
PortList currentPorts();

}  // namespace imagecapture
