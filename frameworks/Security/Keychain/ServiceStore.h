// SPDX-License-Identifier: MIT
#pragma once

#include "Security/Keychain/SecretServiceConnection.h"
#include "Security/Keychain/Store.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace security {

// The desktop's Secret Service: items of the schema "ula.GenericPassword" with the attributes
// "service", "account" and "item", their digest, by which they are looked up; added to the user's
// default collection. Reading, adding and removing
// prompt the user where something is locked, and wait for the answer.
//
// Fails: errSecNotAvailable without a service, errSecUserCanceled for a prompt that was dismissed,
// errSecInteractionNotAllowed for what stays locked.
class ServiceStore : public Store {
public:
    OSStatus find(const ItemKey& name) override;
    OSStatus read(const ItemKey& name, SecretBytes& secret) override;
    // The service itself refuses no duplicates: to be called under a lock that every adder holds.
    OSStatus add(const ItemKey& name, std::string_view secret) override;
    OSStatus remove(const ItemKey& name) override;
    OSStatus list(std::vector<ItemName>& names) override;
    OSStatus examine(bool& isLocked) override;
    std::string path() const override;

private:
    struct Found {
        std::string path;
        bool isLocked = false;
    };

    // With the connection, and once more with a new one when the service has been restarted.
    OSStatus attempt(const std::function<OSStatus(SecretService*)>& work);
    static OSStatus search(SecretService* service, const ItemKey& name, Found& found);
    static OSStatus searchUnlocked(SecretService* service, const ItemKey& name, Found& found);
    static OSStatus readAt(SecretService* service, const std::string& path, SecretBytes& secret);
    OSStatus readFound(SecretService* service, const ItemKey& name, SecretBytes& secret);
    // Whoever looks for an item reads it next: the path that this thread has just found, once.
    std::string takeJustFound(const ItemKey& name);

    // As good as the one that each read looks for shortly before, and no longer.
    struct JustFound {
        std::string digest;
        std::string path;
        std::thread::id thread;
        std::chrono::steady_clock::time_point time;
    };

    std::mutex _mutex;
    JustFound _justFound;
    SecretServiceConnection _connection;
};

}  // namespace security
