// SPDX-License-Identifier: MIT
#include "CoreServices/SystemMounter.h"

#include "CoreServices/GioPlace.h"
#include "CoreServices/NetworkPlace.h"
#include "CoreServices/Patience.h"
#include "CoreServices/RunProgram.h"
#include "CoreServices/UDisksMount.h"

namespace coreservices {

std::string SystemMounter::pathOf(const std::string& url) {
    auto path = askPatiently<std::string>("gio:" + serverOf(url), _askPatience,
                                          [url] { return gioPathOf(url); });
    return path.value_or(std::string());
}

bool SystemMounter::mountPlace(const std::string& url) {
    auto patience = _mountPatience;
    auto done = askPatiently<bool>("gio mount:" + serverOf(url), _mountPatience,
                                   [url, patience] { return gioMount(url, patience); });
    return done.value_or(false);
}

bool SystemMounter::mountPoint(const std::string& point) {
    return runProgram({"mount", point}, _mountPatience);
}

std::string SystemMounter::mountLabel(const std::string& label) {
    auto patience = _mountPatience;
    auto path = askPatiently<std::string>("udisks:" + label, _mountPatience, [label, patience] {
        return udisksMount(label, patience);
    });
    return path.value_or(std::string());
}

}  // namespace coreservices
