// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace coreservices {

// Runs `work` in a thread of its own and waits for its end, up to `patience`. A thread that has not
// ended by then, because a disk or a server does not answer, is left behind; until it ends nothing
// else is begun at the same place, so that there is one such thread at most for each.
// `place` names what may not answer: a mount point, a server. What `work` uses must be its own.
// Fails: false when it has not ended or was not begun; not logged.
__attribute__((visibility("default"))) bool runPatiently(const std::string& place,
                                                         std::chrono::milliseconds patience,
                                                         std::function<void()> work);

// The same for work with a result.
template <class Result>
std::optional<Result> askPatiently(const std::string& place, std::chrono::milliseconds patience,
                                   std::function<Result()> ask) {
    auto answer = std::make_shared<std::optional<Result>>();
    if (!runPatiently(place, patience, [answer, ask = std::move(ask)] { *answer = ask(); }))
        return std::nullopt;
    return std::move(*answer);
}

}  // namespace coreservices
