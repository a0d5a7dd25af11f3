// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace tav::debug {
struct LogRecord;
}

namespace tav::tool {

/// While it lives, what the library finds odd in the file at `path` goes to standard error, the
/// first few lines of it; errors do not, for the commands tell them with more to the point.
class Warnings {
public:
    explicit Warnings(const std::string& path);
    ~Warnings();
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

private:
    void take(const debug::LogRecord& record);
    void tell(const std::string& text) const;

    std::string _path;
    std::size_t _count = 0;
};

/// Drops what the library logs; for the whole program, before anything else.
void silenceLog();

}  // namespace tav::tool
