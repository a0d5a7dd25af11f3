// SPDX-License-Identifier: MIT
#include <CoreServices/Gestalt.h>

#include "CoreServices/SystemVersion.h"

namespace {

using coreservices::SystemVersion;

std::optional<int32_t> answer(OSType selector, const SystemVersion& version) {
    switch (selector) {
    case gestaltSystemVersion:
        return packedForm(version);
    case gestaltSystemVersionMajor:
        return version.major;
    case gestaltSystemVersionMinor:
        return version.minor;
    case gestaltSystemVersionBugFix:
        return version.bugFix;
    default:
        return std::nullopt;
    }
}

}  // namespace

OSErr Gestalt(OSType selector, SInt32* response) {
    if (response == nullptr)
        return paramErr;
    const bool isKnown = answer(selector, {}).has_value();
    if (!isKnown)
        return gestaltUndefSelectorErr;
    const std::optional<SystemVersion> version = coreservices::readSystemVersion();
    if (!version)
        return gestaltUnknownErr;
    *response = *answer(selector, *version);
    return noErr;
}
