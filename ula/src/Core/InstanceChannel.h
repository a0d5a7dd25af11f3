// SPDX-License-Identifier: MIT
// How arguments go from a later instance to the first one: over a socket in the file system.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tav::ula {

/// These give a descriptor that the caller closes, or -1 with errno. The path may be as long as
/// any. In place of what a crashed instance has left there.
int listenAt(const std::string& path);
int connectTo(const std::string& path);

enum class Delivery {
    Taken,
    Broken,    ///< the other side has ended
    NoAnswer,  ///< in five seconds
    TooMuch    ///< more than eight megabytes
};

Delivery deliver(int connection, const std::vector<std::string>& arguments);
/// Waits for the whole of it, and says that it was taken. Fails: nothing, when that takes longer
/// than five seconds, when the other side ends, or when it is no such message.
std::optional<std::vector<std::string>> receive(int connection);

}  // namespace tav::ula
