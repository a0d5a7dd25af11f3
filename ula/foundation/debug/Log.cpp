// SPDX-License-Identifier: MIT
#include "ula/foundation/debug/Log.h"

#include "ula/foundation/debug/StackTrace.h"

#include <cstdio>
#include <memory>
#include <mutex>

namespace tav::debug {

namespace {

void writeToStandardError(const LogRecord& record) {
    if (record.level < LogLevelUnrecognised)
        return;
    std::string line;
    if (!record.source.empty())
        line = record.source + ":" + std::to_string(record.line) + ": ";
    line += record.text + "\n" + record.stackTrace;
    // One call, so that lines of two threads do not mix.
    std::fwrite(line.data(), 1, line.size(), stderr);
}

struct SinkHolder {
    std::mutex mutex;
    std::shared_ptr<const LogSink> sink;
};

/// Never destroyed: threads and static objects may log until the very end of the process.
SinkHolder& sinkHolder() {
    static SinkHolder* holder = new SinkHolder;
    return *holder;
}

void deliver(const LogRecord& record) {
    try {
        std::shared_ptr<const LogSink> sink;
        {
            std::lock_guard lock(sinkHolder().mutex);
            sink = sinkHolder().sink;
        }
        sink ? (*sink)(record) : writeToStandardError(record);
    } catch (...) {
        // Reporting must not be what ends the program.
    }
}

const char* orEmpty(const char* text) {
    return text ? text : "";
}

}  // namespace

LogSink setLogSink(LogSink sink) {
    std::shared_ptr<const LogSink> next;
    if (sink)
        next = std::make_shared<const LogSink>(std::move(sink));
    std::lock_guard lock(sinkHolder().mutex);
    sinkHolder().sink.swap(next);
    return next ? *next : LogSink();
}

text::FormatStream logf(const char* sourceFile, int line, LogLevel level, const char* format) {
    return text::FormatStream(
        format, [source = std::string(orEmpty(sourceFile)), line, level](const std::string& text) {
            deliver({source, line, level, text, {}});
        });
}

}  // namespace tav::debug

namespace tav {

void log_with_stacktrace(const char* message) {
    log_with_stacktrace(message, debug::StackTrace::capture());
}

void log_with_stacktrace(const char* message, const debug::StackTrace& trace) {
    debug::deliver({{}, 0, debug::LogLevelError, debug::orEmpty(message), trace.toString()});
}

}  // namespace tav
