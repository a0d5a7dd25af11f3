// SPDX-License-Identifier: MIT
#include "ula/src/Mac/KeychainItem.h"

#include "ula/ScopedARPool.h"
#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/debug/Log.h"
#include "ula/src/Mac/Bridge.h"
#include "ula/src/Mac/CFOwner.h"

#include <cstring>

namespace tav::ula {

namespace {

constexpr const char* kSource = "src/Mac/SecureData";
constexpr std::size_t kBufferSize = 1024;

FastString serviceName(const FastString& name, const FastString& kind) {
    return FastString::borrow(kind == "Password" ? kPasswordPrefix : kNotePrefix) + name;
}

UInt32 lengthOf(const FastString& text) {
    return static_cast<UInt32>(text.length());
}

/// Volatile: what is never read again is written all the same.
void wipe(char* bytes, std::size_t count) {
    for (volatile char* byte = bytes; count > 0; --count)
        *byte++ = 0;
}

/// A secret as the platform gives it, and takes it back: it wipes it.
struct Content {
    Content() = default;
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;
    ~Content() {
        if (data != nullptr)
            SecKeychainItemFreeContent(nullptr, data);
    }

    void* data = nullptr;
};

/// The text at the beginning, as much of it as the buffer takes.
FastString textOf(const char* bytes, UInt32 length) {
    char buffer[kBufferSize];
    const std::size_t most = length < kBufferSize ? length : kBufferSize - 1;
    const std::size_t count = strnlen(bytes, most);
    std::memcpy(buffer, bytes, count);
    buffer[count] = '\0';
    const FastString text(buffer);
    wipe(buffer, count);
    return text;
}

}  // namespace

FastString keychainMessage(OSStatus status) {
    const CFOwner<CFStringRef> message(SecCopyErrorMessageString(status, nullptr));
    return fastTextOf(bridged(message.get()));
}

void reportKeychainStatus(OSStatus status) {
    const ScopedARPool pool;
    const std::string number = std::to_string(status);
    debug::logf(kSource, 13, debug::LogLevelError,
                "Error Occured while checking keychainItem existance %*")
        .add(FastString(number));
    debug::logf(kSource, 15, debug::LogLevelError, "Error message: %*")
        .add(keychainMessage(status));
    debug::assertionFailed(kSource, 17, "0");
}

KeychainItem::KeychainItem(const FastString& name, const FastString& kind,
                           const FastString& account)
    : _service(serviceName(name, kind)), _account(account) {
}

OSStatus KeychainItem::find(CFTypeRef keychain, SecKeychainItemRef* item) const {
    const ScopedARPool pool;
    return SecKeychainFindGenericPassword(keychain, lengthOf(_service), _service.data(),
                                          lengthOf(_account), _account.data(), nullptr, nullptr,
                                          item);
}

OSStatus KeychainItem::add(SecKeychainRef keychain, const FastString& secret) const {
    const ScopedARPool pool;
    return SecKeychainAddGenericPassword(keychain, lengthOf(_service), _service.data(),
                                         lengthOf(_account), _account.data(), lengthOf(secret),
                                         secret.data(), nullptr);
}

OSStatus KeychainItem::readFrom(CFTypeRef keychain,
                                const std::function<void(const char*, UInt32)>& take) const {
    const ScopedARPool pool;
    UInt32 length = 0;
    Content content;
    const OSStatus status = SecKeychainFindGenericPassword(
        keychain, lengthOf(_service), _service.data(), lengthOf(_account), _account.data(), &length,
        &content.data, nullptr);
    if (status == errSecSuccess && length != 0 && content.data != nullptr)
        take(static_cast<const char*>(content.data), length);
    return status;
}

OSStatus KeychainItem::removeFrom(CFTypeRef keychain) const {
    const ScopedARPool pool;
    CFOwner<SecKeychainItemRef> item;
    const OSStatus status = find(keychain, item.receive());
    return status == errSecSuccess ? SecKeychainItemDelete(item.get()) : status;
}

bool KeychainItem::exists() const {
    const OSStatus status = find(nullptr, nullptr);
    if (status != errSecSuccess && status != errSecItemNotFound)
        reportKeychainStatus(status);
    return status == errSecSuccess;
}

bool KeychainItem::remove() const {
    const OSStatus status = removeFrom(nullptr);
    if (status != errSecSuccess)
        reportKeychainStatus(status);
    return status == errSecSuccess;
}

bool KeychainItem::store(const FastString& secret) const {
    const OSStatus status = add(nullptr, secret);
    if (status != errSecSuccess)
        reportKeychainStatus(status);
    return status == errSecSuccess;
}

bool KeychainItem::readWith(const std::function<void(const char*, UInt32)>& take) const {
    bool isTaken = false;
    const OSStatus status = readFrom(nullptr, [&](const char* bytes, UInt32 length) {
        take(bytes, length);
        isTaken = true;
    });
    if (!isTaken)
        reportKeychainStatus(status);
    return isTaken;
}

bool KeychainItem::read(FastString& secret) const {
    return readWith([&](const char* bytes, UInt32 length) { secret = textOf(bytes, length); });
}

bool KeychainItem::readWhole(FastString& secret) const {
    return readWith([&](const char* bytes, UInt32 length) { secret = FastString(bytes, length); });
}

}  // namespace tav::ula
