// SPDX-License-Identifier: MIT
#include "ImageCapture/Service.h"

#include "ImageCapture/CardFolder.h"
#include "ImageCapture/UsbCameras.h"

namespace imagecapture {

Service& Service::instance() {
    static auto* service = new Service;
    return *service;
}

Service::Service() {
    auto network = std::make_unique<NetworkCameraList>();
    _network = network.get();
    std::vector<std::unique_ptr<DeviceSource>> sources;
    sources.push_back(std::make_unique<UsbCameras>());
    sources.push_back(std::move(network));
    sources.push_back(std::make_unique<MountedCards>());
    _devices = std::make_unique<Devices>(std::move(sources));
}

void Service::list() {
    std::vector<DeviceFacts> found = _devices->scan();
    std::lock_guard lock(_mutex);
    _listed = std::move(found);
}

// With what has become known of them since.
std::vector<DeviceFacts> Service::listed() {
    std::vector<DeviceFacts> facts;
    std::lock_guard lock(_mutex);
    for (const DeviceFacts& old : _listed.value_or(std::vector<DeviceFacts>()))
        facts.push_back(_devices->device(old.number).value_or(old));
    return facts;
}

bool Service::listen(Listener::Tell tell) {
    std::unique_lock lock(_mutex);
    std::optional<std::vector<DeviceFacts>> known = _listed;
    lock.unlock();
    auto listener = std::make_unique<Listener>(
        *_devices, known ? std::move(*known) : _devices->scan(), std::move(tell));
    if (!listener->isValid())
        return false;
    lock.lock();
    _listeners.push_back(std::move(listener));
    return true;
}

void Service::lookAgain() {
    std::lock_guard lock(_mutex);
    for (const auto& listener : _listeners)
        listener->lookAgain();
}

}  // namespace imagecapture
