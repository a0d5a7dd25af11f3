// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

namespace tav::tool {

/// A bar on standard error, if that is a terminal, for work long enough to be noticed. Gone when
/// the work is.
class ProgressBar {
public:
    /// Work on fewer keys than this shows none.
    static constexpr std::size_t kFewestKeys = 50'000;

    /// `total` of whatever unit `advance` is told in.
    ProgressBar(std::string label, std::size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// To be called after each key.
    void advance(std::size_t done);

private:
    void draw(std::size_t done);

    std::string _label;
    std::size_t _total;
    std::size_t _keys = 0;
    bool _isWanted;
    bool _isDrawn = false;
};

}  // namespace tav::tool
