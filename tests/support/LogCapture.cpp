// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"

namespace tav::test {

LogCapture::LogCapture() {
    _previous = debug::setLogSink([this](const debug::LogRecord& record) {
        std::lock_guard lock(_mutex);
        _records.push_back(record);
    });
}

LogCapture::~LogCapture() {
    debug::setLogSink(_previous);
}

std::vector<debug::LogRecord> LogCapture::records() const {
    std::lock_guard lock(_mutex);
    return _records;
}

std::vector<std::string> LogCapture::lines() const {
    std::vector<std::string> lines;
    for (const debug::LogRecord& record : records())
        lines.push_back(std::to_string(record.level) + " " + record.source + ":" +
                        std::to_string(record.line) + " " + record.text);
    return lines;
}

void LogCapture::clear() {
    std::lock_guard lock(_mutex);
    _records.clear();
}

std::string assertionLine(const std::string& source, int line, const std::string& condition) {
    return "4 :0 assertion failed " + source + ":" + std::to_string(line) + "\"" + condition + "\"";
}

}  // namespace tav::test
