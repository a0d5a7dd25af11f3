// SPDX-License-Identifier: MIT
#pragma once

#include "ula/FastString.h"

#include <Security/Security.h>
#include <functional>
#include <string_view>

namespace tav::ula {

/// What the names of services begin with.
inline constexpr std::string_view kPasswordPrefix = "Password:";
inline constexpr std::string_view kNotePrefix = "Secure Note:";

/// Writes a status of the keychain to the log, always the same three lines.
void reportKeychainStatus(OSStatus status);
/// The sentence for a status.
FastString keychainMessage(OSStatus status);

/// A generic password and the steps of which everything is made.
/// Fails: false, logged.
class KeychainItem {
public:
    /// `name` is joined with its qualifier already; "Password" is one kind, all others are notes.
    KeychainItem(const FastString& name, const FastString& kind, const FastString& account);
    KeychainItem(const FastString& service, const FastString& account)
        : _service(service), _account(account) {}

    /// Quiet when there is none.
    bool exists() const;
    bool remove() const;
    bool store(const FastString& secret) const;
    /// The first 1023 bytes as a text. Fails: also when it is empty.
    bool read(FastString& secret) const;
    bool readWhole(FastString& secret) const;

    OSStatus find(CFTypeRef keychain, SecKeychainItemRef* item) const;
    OSStatus add(SecKeychainRef keychain, const FastString& secret) const;
    /// `take` gets the bytes, which are wiped thereafter; it is not called for none.
    OSStatus readFrom(CFTypeRef keychain,
                      const std::function<void(const char*, UInt32)>& take) const;
    OSStatus removeFrom(CFTypeRef keychain) const;

private:
    bool readWith(const std::function<void(const char*, UInt32)>& take) const;

    FastString _service;
    FastString _account;
};

}  // namespace tav::ula
