// SPDX-License-Identifier: MIT
#pragma once

#include "bench/PeerStore.h"

#include <string>
#include <string_view>

/// Reading and writing settings files as plain C++ programs do.
namespace tav::bench {

/// The settings file of the data, with a tab per level.
std::string xmlText(const Data& data);
/// The same for a store: append to one string.
std::string xmlText(const StdStore& store);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, std::string_view text);

/// Fails: throws std::exception.
StdStore loadWithRapidXml(const std::string& path);
StdStore loadWithPugiXml(const std::string& path);

}  // namespace tav::bench
