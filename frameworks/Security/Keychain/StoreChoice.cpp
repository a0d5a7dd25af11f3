// SPDX-License-Identifier: MIT
#include "Security/Keychain/StoreChoice.h"

#include "Security/Keychain/Files.h"
#include "Security/SecBase.h"

namespace security {

namespace {

constexpr const char* kName = "/store";
constexpr const char* kService = "new items: secret service\n";
constexpr const char* kFile = "new items: encrypted file\n";
constexpr const char* kUsed = "secret service has items\n";

}  // namespace

StoreChoice readChoice(const std::string& folder) {
    std::string text;
    StoreChoice choice;
    if (readFile(folder + kName, text) != errSecSuccess)
        return choice;
    const bool isFile = text.find(kFile) != std::string::npos;
    choice.isDecided = isFile || text.find(kService) != std::string::npos;
    choice.newItems = isFile ? StoreKind::EncryptedFile : StoreKind::SecretService;
    choice.isServiceUsed = text.find(kUsed) != std::string::npos;
    return choice;
}

OSStatus writeChoice(const std::string& folder, const StoreChoice& choice) {
    std::string text;
    if (choice.isDecided)
        text += choice.newItems == StoreKind::EncryptedFile ? kFile : kService;
    if (choice.isServiceUsed)
        text += kUsed;
    return replaceFile(folder + kName, text);
}

}  // namespace security
