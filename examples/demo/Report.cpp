// SPDX-License-Identifier: MIT
#include "examples/demo/Report.h"

#include <cstdarg>
#include <cstdio>
#include <unistd.h>

namespace demo {

namespace {

bool isTerminal() {
    static const bool answer = isatty(STDOUT_FILENO);
    return answer;
}

}  // namespace

bool Report::check(bool isTrue, const std::string& line) {
    clearProgress();
    const char* mark = isTrue ? "✓" : "✗";
    if (isTerminal())
        std::printf("  \033[%sm%s\033[0m %s\n", isTrue ? "32" : "31;1", mark, line.c_str());
    else
        std::printf("  %s %s\n", isTrue ? "ok  " : "FAIL", line.c_str());
    std::fflush(stdout);
    _isGood = _isGood && isTrue;
    return isTrue;
}

void Report::note(const std::string& line) {
    clearProgress();
    std::printf(isTerminal() ? "    \033[2m%s\033[0m\n" : "       %s\n", line.c_str());
    std::fflush(stdout);
}

void Report::progress(int done, int total, const std::string& line) {
    if (!isTerminal()) {
        const auto quarters = static_cast<int>(4LL * done / total);
        if (quarters > _quarters)
            note(line);
        _quarters = quarters;
        return;
    }
    constexpr int kWidth = 40;
    std::string bar;
    for (int i = 0; i < kWidth; ++i)
        bar += i < done * kWidth / total ? "█" : "░";
    std::printf("\r  %s %s\033[K", bar.c_str(), line.c_str());
    std::fflush(stdout);
    _hasProgress = true;
}

void Report::clearProgress() {
    if (_hasProgress)
        std::fputs("\r\033[K", stdout);
    _hasProgress = false;
}

std::string format(const char* text, ...) {
    char line[512];
    std::va_list values;
    va_start(values, text);
    std::vsnprintf(line, sizeof line, text, values);
    va_end(values);
    return line;
}

}  // namespace demo
