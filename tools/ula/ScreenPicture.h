// SPDX-License-Identifier: MIT
#pragma once

#include <ula/Screen.h>

#include <string>
#include <vector>

namespace tav::tool {

/// A picture of how the displays stand to each other, as SVG: each with its name and size, what
/// panels cover hatched, the primary one marked. Not for an empty list.
std::string drawScreens(const std::vector<ula::Screen>& screens);

/// The bytes of a PNG file of an SVG picture. Fails: throws `CommandError`.
std::string pngOf(const std::string& svg);

}  // namespace tav::tool
