// SPDX-License-Identifier: MIT
#include "Security/Keychain/SealedFile.h"

#include "Security/Keychain/Bytes.h"
#include "Security/Keychain/LittleEndian.h"

#include <cstring>
#include <sodium.h>

namespace security {

namespace {

constexpr std::size_t kMagicSize = 8;
constexpr char kSealedMagic[] = "keychain";
constexpr char kKeyMagic[] = "keychkey";
constexpr std::uint32_t kVersion = 1;

constexpr std::size_t kIdentityAt = 16;
constexpr std::size_t kIdentitySize = 16;
constexpr std::size_t kBodyAt = kIdentityAt + kIdentitySize;
constexpr std::size_t kCheckSize = 16;

constexpr std::size_t kKeySize = crypto_aead_xchacha20poly1305_ietf_KEYBYTES;
constexpr std::size_t kKeyFileSize = kBodyAt + kKeySize + kCheckSize;

constexpr std::size_t kNonceSize = crypto_aead_xchacha20poly1305_ietf_NPUBBYTES;
constexpr std::size_t kTagSize = crypto_aead_xchacha20poly1305_ietf_ABYTES;
constexpr std::size_t kHeaderSize = kBodyAt + kNonceSize + kCheckSize;

void writeCheck(std::uint8_t* bytes, std::size_t size) {
    crypto_generichash(bytes + size, kCheckSize, bytes, size, nullptr, 0);
}

bool hasCheck(const std::uint8_t* bytes, std::size_t size) {
    std::uint8_t check[kCheckSize];
    crypto_generichash(check, kCheckSize, bytes, size, nullptr, 0);
    return sodium_memcmp(check, bytes + size, kCheckSize) == 0;
}

void writeBeginning(std::uint8_t* bytes, const char* magic) {
    std::memcpy(bytes, magic, kMagicSize);
    writeNumber(bytes + kMagicSize, kVersion);
    writeNumber(bytes + kMagicSize + 4, 0);
}

// Of the `size` bytes that a check sum follows.
SealState examine(std::string_view file, const char* magic, std::size_t size) {
    if (file.size() < size + kCheckSize || file.substr(0, kMagicSize) != magic)
        return SealState::Damaged;
    if (!hasCheck(bytesOf(file), size))
        return SealState::Damaged;
    const bool isKnown = readNumber(bytesOf(file) + kMagicSize) == kVersion;
    return isKnown ? SealState::Intact : SealState::LaterVersion;
}

}  // namespace

SealState examineKey(std::string_view keyFile) {
    const SealState state = examine(keyFile, kKeyMagic, kKeyFileSize - kCheckSize);
    return state == SealState::Intact && keyFile.size() != kKeyFileSize ? SealState::Damaged
                                                                        : state;
}

SecretBytes makeKey() {
    SecretBytes file(kKeyFileSize);
    writeBeginning(file.data(), kKeyMagic);
    randombytes_buf(file.data() + kIdentityAt, kIdentitySize + kKeySize);
    writeCheck(file.data(), kKeyFileSize - kCheckSize);
    return file;
}

std::string seal(const SecretBytes& plain, const SecretBytes& keyFile) {
    std::string sealed(kHeaderSize + plain.size() + kTagSize, '\0');
    auto* const bytes = reinterpret_cast<std::uint8_t*>(sealed.data());
    writeBeginning(bytes, kSealedMagic);
    std::memcpy(bytes + kIdentityAt, keyFile.data() + kIdentityAt, kIdentitySize);
    randombytes_buf(bytes + kBodyAt, kNonceSize);
    writeCheck(bytes, kHeaderSize - kCheckSize);
    crypto_aead_xchacha20poly1305_ietf_encrypt(bytes + kHeaderSize, nullptr, plain.data(),
                                               plain.size(), bytes, kHeaderSize, nullptr,
                                               bytes + kBodyAt, keyFile.data() + kBodyAt);
    return sealed;
}

SealState unseal(std::string_view sealed, const SecretBytes& keyFile, SecretBytes& plain) {
    const SealState state = examine(sealed, kSealedMagic, kHeaderSize - kCheckSize);
    if (state != SealState::Intact)
        return state;
    const std::uint8_t* const bytes = bytesOf(sealed);
    if (std::memcmp(bytes + kIdentityAt, keyFile.data() + kIdentityAt, kIdentitySize) != 0)
        return SealState::OtherKey;
    if (sealed.size() < kHeaderSize + kTagSize)
        return SealState::Damaged;
    const std::size_t size = sealed.size() - kHeaderSize;
    SecretBytes opened(size - kTagSize);
    if (crypto_aead_xchacha20poly1305_ietf_decrypt(opened.data(), nullptr, nullptr,
                                                   bytes + kHeaderSize, size, bytes, kHeaderSize,
                                                   bytes + kBodyAt, keyFile.data() + kBodyAt) != 0)
        return SealState::Damaged;
    plain = std::move(opened);
    return SealState::Intact;
}

}  // namespace security
