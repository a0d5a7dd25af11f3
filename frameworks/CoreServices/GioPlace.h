// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace coreservices {

// Under which path GIO shows a place on the network that is mounted already, or empty.
// Waits for the session's services.
std::string gioPathOf(const std::string& url);

// Mounts a place on the network for the session, without asking for a password: with what the
// keyring knows, or as a guest. Fails: false; not logged.
bool gioMount(const std::string& url, std::chrono::milliseconds patience);

}  // namespace coreservices
