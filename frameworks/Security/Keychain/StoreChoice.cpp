// SPDX-License-Identifier: MIT
#include "Security/Keychain/StoreChoice.h"

#include "Security/Keychain/Files.h"
#include "Security/SecBase.h"

namespace security {

namespace {

constexpr const char* kName = "/store";
constexpr const char* kNewInService = "new items: secret service\n";
constexpr const char* kNewInFile = "new items: encrypted file\n";
constexpr const char* kUsed = "secret service has items\n";

}  // namespace

OSStatus readChoice(const std::string& folder, StoreChoice& choice) {
    std::string text;
    choice = {};
    const OSStatus status = readFile(folder + kName, text);
    if (status != errSecSuccess)
        return status == errSecItemNotFound ? OSStatus(errSecSuccess) : status;
    const bool isFile = text.find(kNewInFile) != std::string::npos;
    choice.isDecided = isFile || text.find(kNewInService) != std::string::npos;
    choice.newItems = isFile ? StoreKind::EncryptedFile : StoreKind::SecretService;
    choice.isServiceUsed = !choice.isDecided || text.find(kUsed) != std::string::npos;
    return errSecSuccess;
}

OSStatus writeChoice(const std::string& folder, const StoreChoice& choice) {
    std::string text;
    if (choice.isDecided)
        text += choice.newItems == StoreKind::EncryptedFile ? kNewInFile : kNewInService;
    if (choice.isServiceUsed)
        text += kUsed;
    return replaceFile(folder + kName, text);
}

}  // namespace security
