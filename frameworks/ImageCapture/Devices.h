// SPDX-License-Identifier: MIT
#pragma once

#include "ImageCapture/Camera.h"

#include <map>
#include <mutex>
#include <optional>

namespace imagecapture {

using ObjectNumber = uint32_t;
constexpr ObjectNumber kDeviceList = 1;

struct DeviceFacts {
    ObjectNumber number = 0;
    std::string name;
    Kind kind = Kind::CameraDevice;
    std::string problem;  // why it could not be read the last time
};

struct ObjectFacts {
    ObjectNumber number = 0;
    std::string name;  // a safe one
    Item item;
};

// All devices and what was listed on them, by number. A number is given once.
// Thread: any. Results of functions that read a device are 0 or error codes.
class Devices {
public:
    explicit Devices(std::vector<std::unique_ptr<DeviceSource>> sources);

    // Looks for devices.
    std::vector<DeviceFacts> scan();
    // As of the last scan.
    std::vector<DeviceFacts> known() const;
    std::optional<DeviceFacts> device(ObjectNumber number) const;
    // A file or folder that was listed.
    std::optional<ObjectFacts> object(ObjectNumber number) const;

    // What lies in a device or folder.
    int children(ObjectNumber parent, std::vector<ObjectFacts>& result);
    // Of what children() found the last time; counts from 1.
    int nthListed(ObjectNumber parent, size_t index, ObjectFacts& result) const;
    // The files of a device, those of a folder before those of the folders in it.
    int allFiles(ObjectNumber device, std::vector<ObjectFacts>& result);
    int read(ObjectNumber file, uint64_t offset, std::span<char>& bytes);
    // Brings it over; `keepDate` gives it the date that the device told. `path` gets where it is.
    int download(ObjectNumber file, const std::string& folder, bool keepDate, std::string& path);

private:
    struct Device {
        DeviceFacts facts;
        FoundDevice found;
        std::mutex inUse;
        std::unique_ptr<Camera> camera;                     // under inUse
        std::map<std::string, ObjectNumber> numbersByPath;  // under the registry's
    };
    struct Object {
        std::weak_ptr<Device> device;
        std::string folder;
        ObjectFacts facts;
    };
    struct Place {
        std::shared_ptr<Device> device;
        std::string folder;
        Item item;

        std::string path() const { return folder.empty() ? item.name : folder + "/" + item.name; }
    };

    void forgetMissing(const std::vector<FoundDevice>& found);
    void addNew(std::vector<FoundDevice> found);
    // Fails: no device.
    Place place(ObjectNumber number) const;
    int list(const Place& place, std::vector<ObjectFacts>& result);
    ObjectFacts note(const std::shared_ptr<Device>& device, const std::string& folder, Item item);
    // Runs `work` on the camera, alone, and keeps what it says of a failure.
    int use(const std::shared_ptr<Device>& device, const std::function<int(Camera&)>& work);
    int addFiles(const Place& place, int depth, std::vector<ObjectFacts>& result);

    std::vector<std::unique_ptr<DeviceSource>> _sources;
    std::mutex _scanning;
    mutable std::mutex _mutex;
    std::vector<std::shared_ptr<Device>> _devices;
    std::map<ObjectNumber, Object> _objects;
    std::map<ObjectNumber, std::vector<ObjectNumber>> _children;  // as counted last
    ObjectNumber _next = 1000;
};

}  // namespace imagecapture
