// SPDX-License-Identifier: MIT
#include "Security/Keychain/SecretBytes.h"

#include <cstring>
#include <new>
#include <sodium.h>

namespace security {

namespace {

void startSodium() {
    static const int started = sodium_init();
    if (started < 0)
        throw std::bad_alloc();
}

}  // namespace

SecretBytes::SecretBytes(std::size_t size) : _size(size) {
    startSodium();
    _data = static_cast<std::uint8_t*>(sodium_malloc(size));
    if (_data == nullptr)
        throw std::bad_alloc();
}

SecretBytes::SecretBytes(std::string_view bytes) : SecretBytes(bytes.size()) {
    if (!bytes.empty())
        std::memcpy(_data, bytes.data(), bytes.size());
}

void SecretBytes::free(void* data) {
    sodium_free(data);
}

}  // namespace security
