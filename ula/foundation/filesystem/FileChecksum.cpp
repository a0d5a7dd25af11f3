// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/FileChecksum.h"

#include "ula/foundation/filesystem/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#define XXH_INLINE_ALL
#include <xxhash.h>

namespace tav::filesystem {

namespace {

constexpr std::size_t kPiece = 1 << 20;

}  // namespace

struct FileChecksum::State {
    XXH3_state_t hash;
};

FileChecksum::FileChecksum() : _state(std::make_unique<State>()) {
    XXH3_64bits_reset(&_state->hash);
}

FileChecksum::FileChecksum(FileChecksum&&) noexcept = default;

FileChecksum::~FileChecksum() = default;

void FileChecksum::add(std::string_view bytes) {
    XXH3_64bits_update(&_state->hash, bytes.data(), bytes.size());
}

std::uint64_t FileChecksum::value() const {
    return XXH3_64bits_digest(&_state->hash);
}

std::optional<FileChecksum> checksumOfFile(const std::string& path, std::string& error) {
    const Descriptor file(
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

}  // namespace tav::filesystem
