// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace imagecapture {

// The name that a file of the device gets here, and is shown by. What comes from a device is not to
// be trusted: it is made a plain component that leads nowhere, is not hidden, is UTF-8 and has at
// most 255 bytes. A name that is all this stays as it is. What is no name at all becomes "_".
std::string safeName(std::string_view name);

}  // namespace imagecapture
