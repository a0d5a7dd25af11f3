// SPDX-License-Identifier: MIT
#include "ula/PTPImporter.h"

namespace tav::ula {

PTPImporter::PTPImporter() = default;

PTPImporter::~PTPImporter() = default;

}  // namespace tav::ula
