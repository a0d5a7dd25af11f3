// SPDX-License-Identifier: MIT
#include "DiskArbitration/Machine.h"

#include "DiskArbitration/Sources.h"

namespace diskarbitration {

namespace {

constexpr std::chrono::milliseconds kPatience{300};

VolumeLabel askRunningUDisks(const std::string& name) {
    return askUDisks(name, kPatience);
}

VolumeLabel readNode(const std::string& name) {
    return readFromDisk("/dev/" + name, kPatience);
}

}  // namespace

const Machine& Machine::ofProcess() {
    // Never destroyed: threads of the program may ask until its very end.
    static const auto* machine = new Machine{
        "/sys", "/dev", coreservices::currentMounts, udevProperties, askRunningUDisks, readNode};
    return *machine;
}

}  // namespace diskarbitration
