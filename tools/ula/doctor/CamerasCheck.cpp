// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/CamerasCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"

#include <ImageCapture/UsbHolder.h>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <vector>

namespace tav::tool::doctor {

namespace {

namespace fs = std::filesystem;
using imagecapture::UsbObstacle;

struct Camera {
    std::string name;
    std::string place;  // "001,005"
};

std::string lineIn(const fs::path& path) {
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

/// Still image capture, picture transfer protocol.
bool speaksPtp(const fs::path& interface) {
    return lineIn(interface / "bInterfaceClass") == "06" &&
           lineIn(interface / "bInterfaceSubClass") == "01";
}

Camera cameraAt(const fs::path& device) {
    std::array<char, 32> place{};
    std::snprintf(place.data(), place.size(), "%03d,%03d",
                  std::atoi(lineIn(device / "busnum").c_str()),
                  std::atoi(lineIn(device / "devnum").c_str()));
    const std::string product = lineIn(device / "product");
    return {product.empty() ? translated("a camera") : product, place.data()};
}

/// "1-2:1.0" is an interface of the device "1-2".
std::vector<Camera> findCameras(const Host& host) {
    std::set<fs::path> devices;
    std::error_code error;
    for (fs::directory_iterator entry(host.usbDevices, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        const std::size_t colon = name.find(':');
        if (colon != std::string::npos && speaksPtp(entry->path()))
            devices.insert(fs::path(host.usbDevices) / name.substr(0, colon));
    }
    std::vector<Camera> cameras;
    for (const fs::path& device : devices)
        cameras.push_back(cameraAt(device));
    return cameras;
}

/// A program that has a camera may be just what its user wants.
Finding examineCamera(const Camera& camera, const Host& host) {
    const UsbObstacle obstacle =
        imagecapture::usbObstacle(camera.place, host.processes, host.usbNodes);
    switch (obstacle.kind) {
    case UsbObstacle::Kind::None:
        return {};
    case UsbObstacle::Kind::Gone:
        return {CheckState::Problem, translated("%1 has no file in %2", camera.name, host.usbNodes),
                translated("plug the camera in again, or give it to the container: %1",
                           std::string("--device=/dev/bus/usb"))};
    case UsbObstacle::Kind::Held:
        return {CheckState::Warning, camera.name + ": " + obstacle.what, obstacle.cure};
    default:
        return {CheckState::Problem, camera.name + ": " + obstacle.what, obstacle.cure};
    }
}

/// Each text once.
std::string joined(const std::vector<std::string>& texts) {
    std::string list;
    for (auto text = texts.begin(); text != texts.end(); ++text)
        if (std::find(texts.begin(), text, *text) == text)
            list += (list.empty() ? "" : "; ") + *text;
    return list;
}

Finding examine(const Host& host) {
    const std::vector<Camera> cameras = findCameras(host);
    if (cameras.empty())
        return {CheckState::Ok, translated("no camera is connected by USB")};
    CheckState state = CheckState::Ok;
    std::vector<std::string> names, messages, remedies;
    for (const Camera& camera : cameras) {
        names.push_back(camera.name);
        const Finding finding = examineCamera(camera, host);
        if (finding.state == CheckState::Ok)
            continue;
        state = std::max(state, finding.state);
        messages.push_back(finding.message);
        remedies.push_back(finding.remedy);
    }
    if (state == CheckState::Ok)
        return {state, translated("can be used: %1", joined(names))};
    return {state, joined(messages), joined(remedies)};
}

}  // namespace

Check camerasCheck() {
    return {"cameras",
            examine,
            {CheckState::Unknown, translated("the devices on USB do not answer"),
             translated("plug the camera in again")}};
}

}  // namespace tav::tool::doctor
