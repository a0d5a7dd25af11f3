// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct XXH3_state_s;

namespace tav::ula {

/// Tells whether bytes are the same as they were (XXH3). Not against people who mean harm.
class FileChecksum {
public:
    FileChecksum();
    void add(std::string_view bytes);
    bool operator==(const FileChecksum& other) const { return value() == other.value(); }

private:
    struct Free {
        void operator()(XXH3_state_s* state) const;
    };

    std::uint64_t value() const;

    std::unique_ptr<XXH3_state_s, Free> _state;
};

/// As the disk has it, not as the system remembers it. Fails: nothing, `error` says why.
std::optional<FileChecksum> checksumOfFile(const std::string& path, std::string& error);

}  // namespace tav::ula
