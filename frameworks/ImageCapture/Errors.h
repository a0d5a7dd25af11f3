// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace imagecapture {

// The code of ICAApplication.h or of the platform's files for an errno that came while a device was
// read, and while a file was written here.
int readingError(int number);
int writingError(int number);

// "cannot read \"/Volumes/Card/DCIM\": Input/output error"
std::string describe(const std::string& what, const std::string& path, int number);

}  // namespace imagecapture
