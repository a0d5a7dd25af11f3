// SPDX-License-Identifier: MIT
#include "ula/src/Core/FileChecksum.h"

#include "ula/foundation/filesystem/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <new>
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace tav::ula {

namespace {

constexpr std::size_t kPiece = 1 << 20;

}  // namespace

FileChecksum::FileChecksum() : _state(XXH3_createState()) {
    if (!_state)
        throw std::bad_alloc();
    XXH3_64bits_reset(_state.get());
}

void FileChecksum::Free::operator()(XXH3_state_s* state) const {
    XXH3_freeState(state);
}

void FileChecksum::add(std::string_view bytes) {
    XXH3_64bits_update(_state.get(), bytes.data(), bytes.size());
}

std::uint64_t FileChecksum::value() const {
    return XXH3_64bits_digest(_state.get());
}

std::optional<FileChecksum> checksumOfFile(const std::string& path, std::string& error) {
    using filesystem::retryInterrupted;
    const filesystem::Descriptor file(
        retryInterrupted([&] { return open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); }));
    // It is on the disk by now: what the system remembers can be forgotten.
    if (file)
        posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    FileChecksum checksum;
    const auto buffer = std::make_unique<char[]>(kPiece);
    for (ssize_t count = 1; file && count != 0;) {
        count = retryInterrupted([&] { return read(file.get(), buffer.get(), kPiece); });
        if (count < 0)
            break;
        checksum.add({buffer.get(), static_cast<std::size_t>(count)});
        if (count == 0)
            return checksum;
    }
    error = "cannot read \"" + path + "\": " + std::strerror(errno);
    return std::nullopt;
}

}  // namespace tav::ula
