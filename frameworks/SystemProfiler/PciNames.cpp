// SPDX-License-Identifier: MIT
#include "SystemProfiler/PciNames.h"

#include "SystemProfiler/KernelFile.h"

#include <cctype>
#include <cstdio>
#include <libudev.h>
#include <memory>

namespace systemprofiler {

namespace {

std::string hexadecimal(const char* format, uint64_t first, uint64_t second = 0) {
    char text[64];
    std::snprintf(text, sizeof text, format, static_cast<unsigned>(first),
                  static_cast<unsigned>(second));
    return text;
}

std::string_view lineAt(std::string_view text, size_t begin) {
    return text.substr(begin, text.find('\n', begin) - begin);
}

/// From the line behind the maker's to the next maker's.
std::string_view devicesOf(std::string_view list, size_t maker) {
    const size_t begin = list.find('\n', maker);
    size_t end = begin;
    while (end != list.npos && end + 1 < list.size() &&
           (list[end + 1] == '\t' || list[end + 1] == '#' || list[end + 1] == '\n'))
        end = list.find('\n', end + 1);
    return begin == list.npos ? std::string_view() : list.substr(begin, end - begin);
}

/// From udev's database.
std::string nameInDatabase(const PciDevice& device) {
    const std::unique_ptr<udev, udev* (*)(udev*)> context(udev_new(), &udev_unref);
    const std::unique_ptr<udev_hwdb, udev_hwdb* (*)(udev_hwdb*)> database(
        context ? udev_hwdb_new(context.get()) : nullptr, &udev_hwdb_unref);
    if (!database)
        return {};
    const std::string alias = hexadecimal("pci:v%08Xd%08X", device.vendor, device.device);
    std::string maker;
    std::string name;
    for (udev_list_entry* entry =
             udev_hwdb_get_properties_list_entry(database.get(), alias.c_str(), 0);
         entry != nullptr; entry = udev_list_entry_get_next(entry)) {
        const std::string key = udev_list_entry_get_name(entry);
        const char* const value = udev_list_entry_get_value(entry);
        if (key == "ID_VENDOR_FROM_DATABASE")
            maker = value;
        else if (key == "ID_MODEL_FROM_DATABASE")
            name = value;
    }
    return maker.empty() || name.empty() ? std::string() : maker + ' ' + name;
}

std::string nameByCodes(const PciDevice& device) {
    constexpr struct {
        uint64_t vendor;
        const char* name;
    } kVendors[] = {
        {0x1002, "AMD "},    {0x10DE, "NVIDIA "},  {0x1234, "QEMU "},  {0x15AD, "VMware "},
        {0x1AF4, "Virtio "}, {0x1B36, "Red Hat "}, {0x8086, "Intel "},
    };
    std::string name = hexadecimal("graphics %04x:%04x", device.vendor, device.device);
    for (const auto& maker : kVendors)
        if (maker.vendor == device.vendor)
            name = maker.name + name;
    return name;
}

}  // namespace

std::string pciNameInList(const PciDevice& device, const std::string& list) {
    const size_t maker = list.find(hexadecimal("\n%04x  ", device.vendor));
    if (maker == list.npos)
        return {};
    const std::string makerName(lineAt(list, maker + 1).substr(6));
    const std::string_view devices = devicesOf(list, maker + 1);
    const size_t found = devices.find(hexadecimal("\n\t%04x  ", device.device));
    if (found == devices.npos)
        return makerName + hexadecimal(" %04x:%04x", device.vendor, device.device);
    return makerName + ' ' + std::string(lineAt(devices, found + 1).substr(7));
}

std::string pciName(const PciDevice& device, const std::string& root) {
    for (const char* path : {"/usr/share/misc/pci.ids", "/usr/share/hwdata/pci.ids"})
        if (std::string name = pciNameInList(device, '\n' + readKernelFile(root + path));
            !name.empty())
            return name;
    const std::string name = root.empty() ? nameInDatabase(device) : std::string();
    return name.empty() ? nameByCodes(device) : name;
}

}  // namespace systemprofiler
