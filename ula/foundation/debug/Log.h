// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/Export.h"
#include "ula/foundation/text/FormatStream.h"

#include <functional>
#include <string>

namespace tav::debug {

class StackTrace;

/// How much a line matters; greater is graver.
enum LogLevel {
    LogLevelTrace = 1,         ///< progress notes
    LogLevelUnrecognised = 2,  ///< data that was not understood and was replaced by a default
    LogLevelWarning = 3,
    LogLevelError = 4  ///< something was asked for and not done; assertions
};

/// One finished line of the log.
struct LogRecord {
    std::string source;  ///< fixed name of the place, e.g. "src/Core/SettingsXML"; may be empty
    int line = 0;        ///< fixed number of the place, 0 when there is none
    LogLevel level = LogLevelTrace;
    std::string text;
    std::string stackTrace;  ///< one frame a line, innermost first; empty but for assertions
};

using LogSink = std::function<void(const LogRecord&)>;

/// Sends every later line, of whatever level, to `sink`; an empty one stands for the default,
/// which writes lines of level 2 and more to standard error. Returns the sink before it (empty
/// for the default).
/// Thread: any. The sink is called in the thread that logs, without a lock held, and may be
/// called once more in another thread after it has been replaced. What it throws is dropped.
TAV_FOUNDATION_API LogSink setLogSink(LogSink sink);

/// Starts a line; `add` on the result fills the "%*" placeholders of `format` one by one, and
/// the line goes to the sink at the end of the statement.
/// Thread: any.
TAV_FOUNDATION_API text::FormatStream logf(const char* sourceFile, int line, LogLevel level,
                                           const char* format);

}  // namespace tav::debug

namespace tav {

/// Logs the message (source empty, line 0, level 4) with the calling thread's stack trace.
/// Thread: any.
TAV_FOUNDATION_API void log_with_stacktrace(const char* message);
/// The same with a stack trace that was taken elsewhere.
TAV_FOUNDATION_API void log_with_stacktrace(const char* message, const debug::StackTrace& trace);

}  // namespace tav
