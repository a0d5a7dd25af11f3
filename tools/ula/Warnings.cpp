// SPDX-License-Identifier: MIT
#include "tools/ula/Warnings.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/Translation.h"
#include "ula/foundation/debug/Log.h"

#include <cstdio>

namespace tav::tool {

namespace {

constexpr std::size_t kMost = 20;

}  // namespace

Warnings::Warnings(const std::string& path) : _path(displayText(path)) {
    debug::setLogSink([this](const debug::LogRecord& record) { take(record); });
}

Warnings::~Warnings() {
    silenceLog();
    if (_count > kMost)
        tell(translated("and %1 more like these", std::to_string(_count - kMost)));
}

void Warnings::tell(const std::string& text) const {
    const std::string line = translated("%1: warning: %2", _path, text);
    std::fprintf(stderr, "ula: %s\n", line.c_str());
}

void Warnings::take(const debug::LogRecord& record) {
    if (record.level != debug::LogLevelUnrecognised && record.level != debug::LogLevelWarning)
        return;
    if (++_count <= kMost)
        tell(displayText(record.text));
}

void silenceLog() {
    debug::setLogSink([](const debug::LogRecord&) {});
}

}  // namespace tav::tool
