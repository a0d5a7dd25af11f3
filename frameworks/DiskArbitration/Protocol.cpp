// SPDX-License-Identifier: MIT
#include "DiskArbitration/Protocol.h"

#include "DiskArbitration/Sysfs.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

namespace diskarbitration {

namespace {

// "usb2" for "usb": the word and a number.
bool isNumbered(std::string_view component, std::string_view word) {
    return component.size() > word.size() && component.substr(0, word.size()) == word &&
           std::all_of(component.begin() + static_cast<std::ptrdiff_t>(word.size()),
                       component.end(), [](unsigned char c) { return std::isdigit(c); });
}

std::vector<std::string_view> components(std::string_view path) {
    std::vector<std::string_view> parts;
    while (!path.empty()) {
        size_t end = std::min(path.find('/'), path.size());
        if (end > 0)
            parts.push_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}

// The folder of the component that begins at `part`, which is a piece of `path`.
std::string pathUpTo(const std::string& path, std::string_view part) {
    return path.substr(0, static_cast<size_t>(part.data() + part.size() - path.data()));
}

// A card, or memory that is soldered in, which the kernel drives alike.
std::string cardProtocol(const std::string& card) {
    std::string type = attribute(card + "/type");
    return type.empty() || type == "SD" ? "Secure Digital" : "MMC";
}

// The driver's name tells the old parallel ones, behind the same layer, apart.
std::string ataProtocol(const std::string& path, const std::vector<std::string_view>& parts) {
    for (std::string_view part : parts) {
        if (!isNumbered(part, "host"))
            continue;
        std::string driver =
            attribute(pathUpTo(path, part) + "/scsi_host/" + std::string(part) + "/proc_name");
        return driver == "ata_piix" || driver.substr(0, 4) == "pata" ? "ATA" : "SATA";
    }
    return "SATA";
}

std::string scsiProtocol(const std::vector<std::string_view>& parts) {
    for (std::string_view part : parts) {
        if (isNumbered(part, "session"))
            return "iSCSI";
        if (part.substr(0, 5) == "rport")
            return "Fibre Channel Interface";
        if (part.substr(0, 11) == "end_device-")
            return "SAS";
    }
    return "SCSI";
}

}  // namespace

std::string protocolOf(const std::string& path, const std::string& sysfs) {
    std::string_view below = std::string_view(path).substr(std::min(path.size(), sysfs.size()));
    std::vector<std::string_view> parts = components(below);
    bool isScsi = false;
    bool isPci = false;
    for (size_t i = 0; i < parts.size(); ++i) {
        std::string_view part = parts[i];
        // What the kernel makes up: loop devices, memory disks, disks of the network.
        if (part == "block" && i > 0 && parts[i - 1] == "virtual")
            return "Virtual Interface";
        if (isNumbered(part, "usb"))
            return "USB";
        if (isNumbered(part, "fw"))
            return "FireWire";
        if (part == "nvme" || part == "nvme-subsystem")
            return "PCI-Express";
        if (part == "mmc_host" && i + 2 < parts.size())
            return cardProtocol(pathUpTo(path, parts[i + 2]));
        if (isNumbered(part, "ata"))
            return ataProtocol(path, parts);
        isScsi = isScsi || isNumbered(part, "host");
        isPci = isPci || isNumbered(part, "virtio");
    }
    if (isScsi)
        return scsiProtocol(parts);
    return isPci ? "PCI" : "";
}

bool isHotPlugged(const std::string& protocol) {
    return protocol == "USB" || protocol == "FireWire" || protocol == "Secure Digital" ||
           protocol == "Virtual Interface";
}

}  // namespace diskarbitration
