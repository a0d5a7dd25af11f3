// SPDX-License-Identifier: MIT
// What has pictures on it, whatever it is. Tests put some of their own in its place.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace imagecapture {

struct Item {
    std::string name;  // as the device has it: no name to be trusted
    bool isFolder = false;
    uint64_t size = 0;
    int64_t modified = 0;  // seconds since 1970; 0 where the device does not tell
};

// Thread: one at a time. Results are 0 or one of the error codes of ICAApplication.h.
class Camera {
public:
    virtual ~Camera() = default;

    // Folders are named by the names on the way to them, "/" between; "" is the device itself.
    // What is listed is sorted by name.
    virtual int list(const std::string& folder, std::vector<Item>& items) = 0;
    // Fills `bytes` from `offset` on; at the end of the file it becomes shorter.
    virtual int read(const std::string& folder, const Item& file, uint64_t offset,
                     std::span<char>& bytes) = 0;
    // Appends the whole file to an open one.
    virtual int copy(const std::string& folder, const Item& file, int descriptor) = 0;
    // Why the last of these failed, and what to do about it; empty when it did not.
    virtual std::string problem() const = 0;
};

enum class Kind { CameraDevice, CardReader };

// A device as it is found, before anybody speaks to it.
struct FoundDevice {
    std::string identity;  // the same for as long as it is connected
    std::string name;
    Kind kind = Kind::CameraDevice;
    std::function<std::unique_ptr<Camera>()> connect;
};

// Where devices are looked for.
class DeviceSource {
public:
    virtual ~DeviceSource() = default;
    // Thread: one at a time.
    virtual std::vector<FoundDevice> look() = 0;
};

}  // namespace imagecapture
