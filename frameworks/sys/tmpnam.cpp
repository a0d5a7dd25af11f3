// SPDX-License-Identifier: MIT
// The C library gives names that others can foresee in a folder that all can write, so that
// somebody else's link may already stand where the caller is about to write. These cannot be
// guessed.
#include <cstdio>
#include <cstring>
#include <string_view>
#include <sys/random.h>
#include <unistd.h>

namespace {

constexpr std::string_view kLetters =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-_";
constexpr std::string_view kFolder = "/tmp/";
// As long as the callers' buffers allow: 84 bits of chance.
constexpr std::size_t kLength = L_tmpnam - kFolder.size() - 1;

}  // namespace

/// Hidden: only the library that this is linked into has it in the C library's place.
/// Fails: null where the system has no random numbers.
extern "C" __attribute__((visibility("hidden"))) char* tmpnam(char* buffer) noexcept {
    static thread_local char own[L_tmpnam];
    char* const name = buffer != nullptr ? buffer : own;
    unsigned char random[kLength];
    if (getrandom(random, sizeof random, 0) != static_cast<ssize_t>(sizeof random))
        return nullptr;
    std::memcpy(name, kFolder.data(), kFolder.size());
    for (std::size_t i = 0; i < kLength; ++i)
        name[kFolder.size() + i] = kLetters[random[i] % kLetters.size()];
    name[kFolder.size() + kLength] = '\0';
    return name;
}
