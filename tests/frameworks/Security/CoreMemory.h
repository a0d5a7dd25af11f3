// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::test {

/// Bytes that are nowhere in memory as they are, so that looking for them does not find itself.
class HiddenText {
public:
    explicit HiddenText(const std::string& text);
    /// Owner: the caller, who wipes it.
    std::string reveal() const;
    bool isAt(const char* bytes) const;
    bool isIn(const char* bytes, std::size_t count) const;
    std::size_t size() const { return _masked.size(); }

private:
    std::string _masked;
};

/// Whether it is in any part of this process's memory that a core file would have.
bool isInCoreMemory(const HiddenText& text);

/// Overwrites the text, its terminator apart.
void wipe(std::string& text);

}  // namespace tav::test
