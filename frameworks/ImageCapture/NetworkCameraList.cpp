// SPDX-License-Identifier: MIT
#include "ImageCapture/NetworkCameraList.h"

#include "ImageCapture/Gphoto.h"

#include <algorithm>
#include <cctype>

namespace imagecapture {

namespace {

constexpr const char* kUsualPort = "15740";
constexpr const char* kModel = "PTP/IP Camera";

bool isHost(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char character) {
        return std::isalnum(character) || character == '.' || character == '-' || character == '_';
    });
}

bool isPort(const std::string& text) {
    bool isNumber = !text.empty() && text.size() <= 5 &&
                    text.find_first_not_of("0123456789") == std::string::npos;
    return isNumber && std::stoi(text) > 0 && std::stoi(text) <= 65535;
}

// Its events come through the same port as its answers, which has to be said twice.
std::string portOf(const std::string& address) {
    return "ptpip:" + address + address.substr(address.rfind(':'));
}

}  // namespace

std::string networkAddress(const std::string& text) {
    size_t colon = text.find(':');
    std::string host = text.substr(0, colon);
    std::string port = colon == std::string::npos ? kUsualPort : text.substr(colon + 1);
    return isHost(host) && isPort(port) ? host + ":" + port : "";
}

bool NetworkCameraList::add(const std::string& address) {
    std::lock_guard lock(_mutex);
    if (std::find(_addresses.begin(), _addresses.end(), address) != _addresses.end())
        return false;
    _addresses.push_back(address);
    return true;
}

bool NetworkCameraList::remove(const std::string& address) {
    std::lock_guard lock(_mutex);
    return std::erase(_addresses, address) > 0;
}

std::vector<FoundDevice> NetworkCameraList::look() {
    std::lock_guard lock(_mutex);
    std::vector<FoundDevice> found;
    for (const std::string& address : _addresses)
        found.push_back(
            {"network " + address, "Camera at " + address, Kind::CameraDevice,
             [address] { return std::make_unique<GphotoCamera>(kModel, portOf(address)); }});
    return found;
}

}  // namespace imagecapture
