// SPDX-License-Identifier: MIT
#include "ula/src/Core/FileChecksum.h"

#include "ula/foundation/filesystem/Descriptor.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>

namespace tav::ula {

namespace {

constexpr std::size_t kPiece = 1 << 20;

std::uint64_t mixed(std::uint64_t word) {
    word ^= word >> 32;
    word *= 0xD6E8FEB86659FD93;
    word ^= word >> 29;
    return word;
}

}  // namespace

void FileChecksum::addWord(std::uint64_t word) {
    _state = (_state ^ mixed(word)) * 0x9FB21C651E98DF25;
    _state ^= _state >> 35;
}

void FileChecksum::add(std::string_view bytes) {
    _length += bytes.size();
    while (!bytes.empty()) {
        if (_restSize == 0 && bytes.size() >= sizeof _rest) {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes.data(), sizeof word);
            addWord(word);
            bytes.remove_prefix(sizeof word);
            continue;
        }
        _rest[_restSize++] = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        if (_restSize < sizeof _rest)
            continue;
        std::uint64_t word = 0;
        std::memcpy(&word, _rest, sizeof word);
        addWord(word);
        _restSize = 0;
    }
}

std::uint64_t FileChecksum::value() const {
    std::uint64_t word = 0;
    std::memcpy(&word, _rest, _restSize);
    return mixed(_state ^ mixed(word + _length));
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
