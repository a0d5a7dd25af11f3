// SPDX-License-Identifier: MIT
#include "tools/ula/TransferBar.h"

#include "tools/ula/ByteText.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/Terminal.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace tav::tool {

namespace {

constexpr std::size_t kWidth = 30;
constexpr std::size_t kNameWidth = 24;
constexpr std::chrono::milliseconds kBetweenDrawings{100};

}  // namespace

TransferBar::TransferBar(std::uint64_t totalBytes)
    : _total(std::max<std::uint64_t>(totalBytes, 1)), _isWanted(isTerminal(STDERR_FILENO)) {
}

TransferBar::~TransferBar() {
    if (_isDrawn)
        std::fputs("\r\033[K", stderr);
}

void TransferBar::advance(std::uint64_t doneBytes, const std::string& what) {
    const Clock::time_point now = Clock::now();
    if (!_isWanted || now - _last < kBetweenDrawings)
        return;
    _last = now;
    draw(std::min(doneBytes, _total), what, now);
}

void TransferBar::draw(std::uint64_t doneBytes, const std::string& what, Clock::time_point now) {
    const double part = static_cast<double>(doneBytes) / static_cast<double>(_total);
    const auto filled = static_cast<std::size_t>(part * static_cast<double>(kWidth));
    std::string bar;
    for (std::size_t i = 0; i < kWidth; ++i)
        bar += i < filled ? "█" : "░";
    const double seconds = std::chrono::duration<double>(now - _begin).count();
    const double rate = seconds > 0 ? static_cast<double>(doneBytes) / seconds : 0;
    std::fprintf(stderr, "\r%s %3.0f %%  %s  %s/s\033[K", bar.c_str(), part * 100,
                 padded(cutToWidth(what, kNameWidth), kNameWidth).c_str(),
                 decimalByteText(static_cast<std::uint64_t>(rate)).c_str());
    std::fflush(stderr);
    _isDrawn = true;
}

}  // namespace tav::tool
