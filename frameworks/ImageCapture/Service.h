// SPDX-License-Identifier: MIT
#pragma once

#include "ImageCapture/Devices.h"
#include "ImageCapture/Listener.h"
#include "ImageCapture/NetworkCameraList.h"

namespace imagecapture {

// The devices of this process and those who listen to them. Thread: any.
class Service {
public:
    // Never destroyed: threads may use devices until the very end.
    static Service& instance();

    Devices& devices() { return *_devices; }
    NetworkCameraList& networkCameras() { return *_network; }

    // Looks, and notes what the caller then knows.
    void list();
    // The devices as they were last listed.
    std::vector<DeviceFacts> listed();
    // On the calling thread's run loop, from what was listed on. False where there is nothing to
    // listen to.
    bool listen(Listener::Tell tell);
    // Has all listeners look.
    void lookAgain();

private:
    Service();

    NetworkCameraList* _network;  // Owner: _devices
    std::unique_ptr<Devices> _devices;
    std::mutex _mutex;
    std::optional<std::vector<DeviceFacts>> _listed;
    std::vector<std::unique_ptr<Listener>> _listeners;
};

}  // namespace imagecapture
