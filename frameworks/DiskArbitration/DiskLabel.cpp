// SPDX-License-Identifier: MIT
#include "DiskArbitration/Sources.h"

#include "CoreServices/Patience.h"

#include <blkid/blkid.h>
#include <memory>
#include <type_traits>

namespace diskarbitration {

namespace {

struct FreeProbe {
    void operator()(blkid_probe probe) const { blkid_free_probe(probe); }
};
using Probe = std::unique_ptr<std::remove_pointer_t<blkid_probe>, FreeProbe>;

std::string valueOf(const Probe& probe, const char* name) {
    const char* value = nullptr;
    bool found = blkid_probe_lookup_value(probe.get(), name, &value, nullptr) == 0;
    return found && value != nullptr ? value : "";
}

VolumeLabel probeDisk(const std::string& node) {
    Probe probe(blkid_new_probe_from_filename(node.c_str()));
    if (!probe)
        return {};
    blkid_probe_enable_superblocks(probe.get(), 1);
    blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_LABEL | BLKID_SUBLKS_UUID);
    // Signatures of two file systems at once are nobody's to choose from.
    if (blkid_do_safeprobe(probe.get()) != 0)
        return {};
    return {valueOf(probe, "LABEL"), valueOf(probe, "UUID")};
}

}  // namespace

VolumeLabel readFromDisk(const std::string& node, std::chrono::milliseconds patience) {
    return coreservices::askPatiently<VolumeLabel>(node, patience,
                                                   [node] { return probeDisk(node); })
        .value_or(VolumeLabel());
}

}  // namespace diskarbitration
