// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tav::ula {

struct ImportSourceItem {
    std::uint32_t number = 0;
    std::string name;
    bool isFolder = false;
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< seconds since 1970; 0: not told
};

/// A device whose files can be read. Thread: one at a time.
class ImportSource {
public:
    virtual ~ImportSource() = default;

    /// The folder that the device itself is.
    virtual std::uint32_t top() = 0;
    /// How much lies in a folder. Fails: false, see `problem`.
    virtual bool count(std::uint32_t folder, std::uint32_t& result) = 0;
    /// From 0 on. Fails: false when it has gone since.
    virtual bool item(std::uint32_t folder, std::uint32_t index, ImportSourceItem& result) = 0;
    /// Fewer bytes only at the end of the file. They are there until the next call. Fails: false.
    virtual bool read(std::uint32_t file, std::uint64_t offset, std::size_t size,
                      std::string_view& bytes) = 0;
    /// Why the last call failed.
    virtual std::string problem() = 0;
    /// Whether it failed because the device has gone or does not answer: other files will fail,
    /// too.
    virtual bool isGone() = 0;
};

/// Fails: a source that has nothing, for what is no device's id.
std::unique_ptr<ImportSource> createImportSource(const std::string& deviceId);

}  // namespace tav::ula
