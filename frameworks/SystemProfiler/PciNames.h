// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace systemprofiler {

struct PciDevice {
    uint64_t vendor = 0;
    uint64_t device = 0;
};

/// "Intel Corporation HD Graphics 530", by the list of PCI devices, else by udev's database, which
/// lies beside the kernel's and not under `root`. Fails: the codes, with the maker's name where it
/// is one of the few that make most of them.
std::string pciName(const PciDevice& device, const std::string& root = "");

/// The same, from the bytes of such a list. Fails: empty when it does not know the maker; the
/// maker's name and the code when it does not know the device.
std::string pciNameInList(const PciDevice& device, const std::string& list);

}  // namespace systemprofiler
