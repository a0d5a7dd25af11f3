// SPDX-License-Identifier: MIT
#include "tools/ula/Warnings.h"

#include "tools/ula/DisplayText.h"
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
        std::fprintf(stderr, "ula: %s: warning: and %zu more like these\n", _path.c_str(),
                     _count - kMost);
}

void Warnings::take(const debug::LogRecord& record) {
    if (record.level != debug::LogLevelUnrecognised && record.level != debug::LogLevelWarning)
        return;
    if (++_count <= kMost)
        std::fprintf(stderr, "ula: %s: warning: %s\n", _path.c_str(),
                     displayText(record.text).c_str());
}

void silenceLog() {
    debug::setLogSink([](const debug::LogRecord&) {});
}

}  // namespace tav::tool
