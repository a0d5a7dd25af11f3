// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FileProperties.h"

#include <string>

namespace tav::ula {

class ItemFacts;

/// The record of a path, made from what `facts` answers. Questions are asked in a fixed order, and
/// none beyond the first that tells that the item cannot be looked at.
FileProperties examineItem(std::string path, ItemFacts& facts);

}  // namespace tav::ula
