// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tav::filesystem {

/// Tells whether bytes are the same as they were (XXH3). Not against people who mean harm.
class TAV_FOUNDATION_API FileChecksum {
public:
    FileChecksum();
    FileChecksum(FileChecksum&&) noexcept;
    ~FileChecksum();
    void add(std::string_view bytes);
    bool operator==(const FileChecksum& other) const { return value() == other.value(); }

private:
    struct State;

    std::uint64_t value() const;

    std::unique_ptr<State> _state;
};

/// As the disk has it, not as the system remembers it. Fails: nothing, `error` says why.
TAV_FOUNDATION_API std::optional<FileChecksum> checksumOfFile(const std::string& path,
                                                              std::string& error);

}  // namespace tav::filesystem
