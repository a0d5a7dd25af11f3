// SPDX-License-Identifier: MIT
// Where the parts of bundles lie that GNUstep does not know: those with a Contents folder, and
// programs that are no bundle at all.
#pragma once

#include <optional>
#include <string>

namespace foundation {

// Empty texts are for what is not there.
struct BundleLayout {
    std::string bundle;
    std::string executable;
    std::string resources;
    std::string frameworks;
    std::string information;  // the Info.plist
};

// Of a bundle with a Contents folder, its program left out. Nothing for any other.
std::optional<BundleLayout> contentsLayout(const std::string& bundle);

// Of a program by its path. In Contents/MacOS it belongs to the bundle above. Any other is a bundle
// of its own, its resources in share/NAME beside the bin folder that it lies in, or in Resources
// beside it, or else right beside it; its libraries in lib/NAME, or Frameworks beside it.
BundleLayout programLayout(const std::string& program);

// The program of this process, also when its file has been replaced since it was started.
const std::string& runningProgram();

}  // namespace foundation
