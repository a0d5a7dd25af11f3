// SPDX-License-Identifier: MIT
#include "tools/ula/ProgressBar.h"

#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"

#include <algorithm>
#include <cstdio>
#include <unistd.h>

namespace tav::tool {

namespace {

constexpr std::size_t kWidth = 40;
constexpr std::size_t kKeysPerDrawing = 10'000;

}  // namespace

ProgressBar::ProgressBar(std::string label, std::size_t total)
    : _label(std::move(label)),
      _total(std::max<std::size_t>(total, 1)),
      _isWanted(isTerminal(STDERR_FILENO)) {
}

ProgressBar::~ProgressBar() {
    if (_isDrawn)
        std::fputs("\r\033[K", stderr);
}

void ProgressBar::advance(std::size_t done) {
    ++_keys;
    if (_isWanted && _keys >= kFewestKeys && _keys % kKeysPerDrawing == 0)
        draw(std::min(done, _total));
}

void ProgressBar::draw(std::size_t done) {
    const std::size_t filled = done * kWidth / _total;
    std::string bar;
    for (std::size_t i = 0; i < kWidth; ++i)
        bar += i < filled ? "█" : "░";
    const std::string keys = translated("%1 keys", std::to_string(_keys));
    std::fprintf(stderr, "\r%s %s %3zu %%  %s", _label.c_str(), bar.c_str(), done * 100 / _total,
                 keys.c_str());
    std::fflush(stderr);
    _isDrawn = true;
}

}  // namespace tav::tool
