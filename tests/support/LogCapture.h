// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/debug/Log.h"

#include <mutex>
#include <string>
#include <vector>

namespace tav::test {

/// Collects what is logged while it lives.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();

    std::vector<debug::LogRecord> records() const;
    /// "LEVEL SOURCE:LINE TEXT" of each record, in order.
    std::vector<std::string> lines() const;
    void clear();

private:
    mutable std::mutex _mutex;
    std::vector<debug::LogRecord> _records;
    debug::LogSink _previous;
};

/// The line of `LogCapture::lines` for an assertion.
std::string assertionLine(const std::string& source, int line, const std::string& condition);

}  // namespace tav::test
