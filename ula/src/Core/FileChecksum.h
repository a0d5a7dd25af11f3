// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tav::ula {

/// Tells whether bytes are the same as they were: 64 bits and the length. Not against people who
/// mean harm.
class FileChecksum {
public:
    void add(std::string_view bytes);
    bool operator==(const FileChecksum& other) const {
        return value() == other.value() && _length == other._length;
    }

private:
    /// Whole words of the stream; what is left of it is kept for the next call.
    void addWord(std::uint64_t word);
    std::uint64_t value() const;

    std::uint64_t _state = 0x9E3779B97F4A7C15;
    std::uint64_t _length = 0;
    unsigned char _rest[8] = {};
    std::size_t _restSize = 0;
};

/// As the disk has it, not as the system remembers it. Fails: nothing, `error` says why.
std::optional<FileChecksum> checksumOfFile(const std::string& path, std::string& error);

}  // namespace tav::ula
