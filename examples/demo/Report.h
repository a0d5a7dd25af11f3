// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace demo {

/// Prints what was seen, a line each with a check mark, and remembers whether all of it was so.
class Report {
public:
    /// Returns `isTrue`.
    bool check(bool isTrue, const std::string& line);
    void note(const std::string& line);
    /// A bar in place, gone with the next line; where there is no terminal, a line every quarter.
    void progress(int done, int total, const std::string& line);
    int exitCode() const { return _isGood ? 0 : 1; }

private:
    void clearProgress();

    bool _isGood = true;
    bool _hasProgress = false;
    int _quarters = 0;
};

class StopWatch {
public:
    double milliseconds() const {
        return std::chrono::duration<double, std::milli>(Clock::now() - _begin).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point _begin = Clock::now();
};

std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));

}  // namespace demo
