// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/CommandError.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>

namespace tav::tool {

/// One line on standard output for each thing that happens, at once.
/// Thread: any.
class WatchPrinter {
public:
    /// `onFailure` is called once when nothing can be written any more.
    WatchPrinter(bool asJson, std::function<void()> onFailure)
        : _asJson(asJson), _onFailure(std::move(onFailure)) {}

    struct Line {
        const char* event;  ///< "created"
        std::string path;
        std::string newPath = {};           ///< of what has moved
        std::optional<bool> isFolder = {};  ///< where it is known
        std::string title = {};             ///< of a volume
    };
    void tell(const Line& line);

    /// What went wrong while writing.
    const std::optional<CommandError>& failure() const { return _failure; }

private:
    void printText(const Line& line) const;
    void printJson(const Line& line) const;

    const bool _asJson;
    const std::function<void()> _onFailure;
    std::mutex _mutex;
    std::optional<CommandError> _failure;
};

}  // namespace tav::tool
