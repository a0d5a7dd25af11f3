// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <Security/Security.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace tav::test {

constexpr const char* kService = "Password:Mail_test";

inline UInt32 lengthOf(const std::string& text) {
    return static_cast<UInt32>(text.size());
}

inline OSStatus addPassword(const std::string& account, const std::string& secret) {
    return SecKeychainAddGenericPassword(nullptr, lengthOf(kService), kService, lengthOf(account),
                                         account.data(), lengthOf(secret), secret.data(), nullptr);
}

inline OSStatus findPassword(const std::string& account) {
    return SecKeychainFindGenericPassword(nullptr, lengthOf(kService), kService, lengthOf(account),
                                          account.data(), nullptr, nullptr, nullptr);
}

/// The secret, or "status N".
inline std::string readPassword(const std::string& account) {
    UInt32 length = 0;
    void* data = nullptr;
    const OSStatus status =
        SecKeychainFindGenericPassword(nullptr, lengthOf(kService), kService, lengthOf(account),
                                       account.data(), &length, &data, nullptr);
    if (status != errSecSuccess)
        return "status " + std::to_string(status);
    std::string secret(static_cast<const char*>(data), length);
    SecKeychainItemFreeContent(nullptr, data);
    return secret;
}

inline OSStatus removePassword(const std::string& account) {
    SecKeychainItemRef item = nullptr;
    const OSStatus status =
        SecKeychainFindGenericPassword(nullptr, lengthOf(kService), kService, lengthOf(account),
                                       account.data(), nullptr, nullptr, &item);
    if (status != errSecSuccess)
        return status;
    const OSStatus removed = SecKeychainItemDelete(item);
    CFRelease(item);
    return removed;
}

inline std::string pathOf(SecKeychainRef keychain) {
    char path[4096];
    UInt32 length = sizeof path;
    return SecKeychainGetPath(keychain, &length, path) == errSecSuccess ? path : "";
}

/// Of a user without any session: no bus, a home of its own.
class KeychainFixture : public testing::Test {
protected:
    explicit KeychainFixture(const std::filesystem::path& parent = {}) : home(parent) {
        setenv("HOME", home.path().c_str(), 1);
        setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
        setenv("XDG_RUNTIME_DIR", (home / "run").c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        unsetenv("DISPLAY");
        std::filesystem::create_directory(home / "run");
        std::filesystem::permissions(home / "run", std::filesystem::perms(0700));
    }

    std::string file(const std::string& name) const { return home / ("data/ula/keychain/" + name); }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(home / "data/ula/keychain"))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    TemporaryFolder home;
};

}  // namespace tav::test
