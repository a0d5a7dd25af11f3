// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/AliasPlaces.h"

namespace coreservices {

// Mounts through GIO what lies on the network, through udisks what the desktop would, and through
// mount(8) what the system's table lets this user mount.
class SystemMounter : public Mounter {
public:
    SystemMounter(std::chrono::milliseconds askPatience, std::chrono::milliseconds mountPatience)
        : _askPatience(askPatience), _mountPatience(mountPatience) {}

    std::string pathOf(const std::string& url) override;
    bool mountPlace(const std::string& url) override;
    bool mountPoint(const std::string& point) override;
    std::string mountLabel(const std::string& label) override;

private:
    std::chrono::milliseconds _askPatience;
    std::chrono::milliseconds _mountPatience;
};

}  // namespace coreservices
