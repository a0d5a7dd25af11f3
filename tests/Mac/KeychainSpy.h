// SPDX-License-Identifier: MIT
// Stands between the library and the keychain: what it calls is written down, and answered as the
// test says.
#pragma once

#include <Security/Security.h>
#include <string>
#include <utility>
#include <vector>

namespace tav::test {

struct KeychainSpy {
    static KeychainSpy& instance();

    /// The calls since the last time: "find SERVICE|ACCOUNT" with what is asked for, "delete",
    /// "add SERVICE|ACCOUNT=DATA", "free".
    std::vector<std::string> take() { return std::exchange(calls, {}); }
    /// References to the item that were handed out and not released.
    long itemsHeld() const;

    std::vector<std::string> calls;
    /// Answers to the finds, one after the other; the last one stays.
    std::vector<OSStatus> found{errSecItemNotFound};
    OSStatus deleted = errSecSuccess;
    OSStatus added = errSecSuccess;
    /// What a find that asks for data gets.
    std::string data;
    bool hasNoData = false;
};

}  // namespace tav::test
