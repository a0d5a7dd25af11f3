// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace tav::tool {

/// A bar on standard error, if that is a terminal, for bytes that are brought over: how much of
/// all, which file, how fast. Gone at its end.
class TransferBar {
public:
    explicit TransferBar(std::uint64_t totalBytes);
    ~TransferBar();
    TransferBar(const TransferBar&) = delete;
    TransferBar& operator=(const TransferBar&) = delete;

    /// Redrawn a few times a second, whatever is told. `what` is fit to be shown.
    void advance(std::uint64_t doneBytes, const std::string& what);

private:
    using Clock = std::chrono::steady_clock;

    void draw(std::uint64_t doneBytes, const std::string& what, Clock::time_point now);

    std::uint64_t _total;
    bool _isWanted;
    bool _isDrawn = false;
    Clock::time_point _begin = Clock::now();
    Clock::time_point _last{};
};

}  // namespace tav::tool
