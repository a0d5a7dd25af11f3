// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/ImportTask.h"
#include "examples/lighttable/PictureFile.h"

#include <string>

namespace lighttable {

/// "48 pictures", or of the chosen one its name and size.
std::string statusText(const FolderContent& content, const PictureFile* selected);
/// What became of an import.
std::string importText(const ImportOutcome& outcome);
/// "Importing 12 of 48 pictures · IMG_1.JPG"
std::string importText(const ImportState& state);

}  // namespace lighttable
