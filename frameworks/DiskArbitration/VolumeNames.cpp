// SPDX-License-Identifier: MIT
#include "DiskArbitration/VolumeNames.h"

#include "CoreFoundation/PercentEscapes.h"
#include "DiskArbitration/Sysfs.h"

#include <string_view>

namespace diskarbitration {

namespace {

// udev writes what could harm a name as "\x20".
std::string unescape(std::string_view escaped) {
    std::string text;
    for (size_t i = 0; i < escaped.size(); ++i) {
        int high = -1, low = -1;
        if (escaped[i] == '\\' && i + 3 < escaped.size() && escaped[i + 1] == 'x') {
            high = cf::hexadecimalDigit(escaped[i + 2]);
            low = cf::hexadecimalDigit(escaped[i + 3]);
        }
        if (high < 0 || low < 0) {
            text += escaped[i];
            continue;
        }
        text += static_cast<char>(high * 16 + low);
        i += 3;
    }
    return text;
}

std::string valueOf(const Properties& properties, const char* name) {
    auto found = properties.find(name);
    return found == properties.end() ? std::string() : unescape(found->second);
}

// The name of the link in `folder` that leads to the device.
std::string linkTo(const std::string& device, const std::string& folder) {
    for (const std::string& name : namesIn(folder)) {
        std::string node = realPath(folder + "/" + name);
        if (node.substr(node.rfind('/') + 1) == device)
            return unescape(name);
    }
    return {};
}

}  // namespace

VolumeLabel labelOf(const BlockDevice& device, const Machine& machine) {
    Properties properties = machine.properties(device.number);
    if (!properties.empty())
        return {valueOf(properties, "ID_FS_LABEL_ENC"), valueOf(properties, "ID_FS_UUID_ENC")};
    std::string links = machine.devices + "/disk";
    VolumeLabel label{linkTo(device.name, links + "/by-label"),
                      linkTo(device.name, links + "/by-uuid")};
    if (label.empty())
        label = machine.askedLabel(device.name);
    return label.empty() ? machine.readLabel(device.name) : label;
}

}  // namespace diskarbitration
