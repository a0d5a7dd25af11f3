// SPDX-License-Identifier: MIT
#include "SystemProfiler/GraphicsDevices.h"

#include "SystemProfiler/KernelFile.h"
#include "SystemProfiler/PciNames.h"

#include <algorithm>
#include <sstream>

namespace systemprofiler {

namespace {

constexpr const char* kSharedMemory = "spdisplays_integrated_vram";
constexpr uint64_t kVendorIntel = 0x8086;
constexpr uint64_t kVendorVirtio = 0x1AF4;

/// What the kernel tells of a device when it appears.
struct Identity {
    std::string driver;
    std::string compatible;  ///< "brcm,bcm2711-vc5", of what is no PCI device
    std::string slot;        ///< "0000:01:00.0", of what is one
};

Identity readIdentity(const std::string& folder) {
    Identity identity;
    forEachPair(readKernelFile(folder + "/uevent"), '=',
                [&identity](std::string_view key, std::string_view value) {
                    if (key == "DRIVER")
                        identity.driver = value;
                    else if (key == "OF_COMPATIBLE_0")
                        identity.compatible = value;
                    else if (key == "PCI_SLOT_NAME")
                        identity.slot = value;
                });
    return identity;
}

/// The driver of this maker names the model itself.
std::string nvidiaModel(const std::string& root, const std::string& slot) {
    std::string model;
    if (!slot.empty())
        forEachPair(readKernelFile(root + "/proc/driver/nvidia/gpus/" + slot + "/information"), ':',
                    [&model](std::string_view key, std::string_view value) {
                        if (key == "Model")
                            model = value;
                    });
    return model;
}

/// The size of a region of a PCI device, of which the file has a line with first and last address.
uint64_t regionSize(const std::string& folder, int region) {
    std::istringstream lines(readKernelFile(folder + "/resource"));
    std::string line;
    for (int i = 0; i <= region; ++i)
        if (!std::getline(lines, line))
            return 0;
    const auto first = numberOf(std::string_view(line).substr(0, line.find(' ')));
    const size_t second = line.find(' ') + 1;
    const auto last =
        numberOf(std::string_view(line).substr(second, line.find(' ', second) - second));
    return first && last && *last > *first ? *last - *first + 1 : 0;
}

/// Devices whose memory is a region of the bus, as a whole.
int memoryRegion(const std::string& driver) {
    for (const char* name :
         {"ast", "bochs-drm", "cirrus", "cirrus-qemu", "mgag200", "qxl", "vboxvideo"})
        if (driver == name)
            return 0;
    return driver == "vmwgfx" ? 1 : -1;
}

uint64_t ownMemory(const std::string& folder, const std::string& cardFolder,
                   const std::string& driver) {
    for (const std::string& path :
         {folder + "/mem_info_vram_total", folder + "/tile0/physical_vram_size_bytes",
          cardFolder + "/lmem_total_bytes"})
        if (const auto size = readKernelNumber(path); size && *size > 0)
            return *size;
    const int region = memoryRegion(driver);
    return region < 0 ? 0 : regionSize(folder, region);
}

/// `folder` is the device's, `cardFolder` the one of the kernel's graphics, or empty.
GraphicsDevice readDevice(const std::string& root, const std::string& folder,
                          const std::string& cardFolder) {
    const Identity identity = readIdentity(folder);
    const auto vendor = readKernelNumber(folder + "/vendor");
    const auto code = readKernelNumber(folder + "/device");
    const bool isPci = vendor && code;
    GraphicsDevice device;
    device.driver = identity.driver;
    device.model = nvidiaModel(root, identity.slot);
    if (device.model.empty())
        device.model = isPci                          ? pciName({*vendor, *code}, root)
                       : !identity.compatible.empty() ? identity.compatible
                                                      : identity.driver;
    device.memorySize = ownMemory(folder, cardFolder, identity.driver);
    if (device.memorySize > 0)
        device.memory = VideoMemory::Own;
    else if (!isPci || *vendor == kVendorIntel || *vendor == kVendorVirtio)
        device.memory = VideoMemory::Shared;
    return device;
}

/// Best is 0.
int rank(const std::string& folder, bool hasDisplay) {
    if (readKernelFile(folder + "/boot_vga") == "1")
        return 0;
    return hasDisplay ? 1 : 2;
}

bool isCard(const std::string& name) {
    return name.starts_with("card") && name.find('-') == name.npos;
}

bool hasDisplay(const std::string& drm, const std::string& card,
                const std::vector<std::string>& names) {
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return name.starts_with(card + '-') &&
               readKernelFile(drm + name + "/status") == "connected";
    });
}

using Ranked = std::vector<std::pair<int, GraphicsDevice>>;

Ranked readCards(const std::string& root) {
    const std::string drm = root + "/sys/class/drm/";
    const std::vector<std::string> names = namesIn(drm);
    Ranked cards;
    for (const std::string& name : names) {
        const std::string folder = drm + name + "/device";
        // A card without a device behind it is a program's.
        if (!isCard(name) || readKernelFile(folder + "/uevent").empty())
            continue;
        cards.emplace_back(rank(folder, hasDisplay(drm, name, names)),
                           readDevice(root, folder, drm + name));
    }
    return cards;
}

Ranked readDisplayControllers(const std::string& root) {
    const std::string bus = root + "/sys/bus/pci/devices/";
    Ranked devices;
    for (const std::string& name : namesIn(bus)) {
        const uint64_t kind = readKernelNumber(bus + name + "/class").value_or(0);
        if (kind >> 16 == 0x03)
            devices.emplace_back(rank(bus + name, false), readDevice(root, bus + name, ""));
    }
    return devices;
}

}  // namespace

std::vector<GraphicsDevice> readGraphicsDevices(const std::string& root) {
    Ranked ranked = readCards(root);
    if (ranked.empty())
        ranked = readDisplayControllers(root);
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<GraphicsDevice> devices;
    for (auto& [place, device] : ranked)
        devices.push_back(std::move(device));
    return devices;
}

std::string videoMemoryText(const GraphicsDevice& device) {
    if (device.memory == VideoMemory::Shared)
        return kSharedMemory;
    const uint64_t megabytes = device.memorySize >> 20;
    if (device.memory == VideoMemory::Unknown || megabytes == 0)
        return {};
    return megabytes % 1024 == 0 ? std::to_string(megabytes / 1024) + " GB"
                                 : std::to_string(megabytes) + " MB";
}

}  // namespace systemprofiler
