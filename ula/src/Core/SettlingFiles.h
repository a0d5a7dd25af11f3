// SPDX-License-Identifier: MIT
#pragma once

#include "ula/TreeMonitor.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tav::ula {

/// Holds files back that are created or changed until they have not grown for a while. Time is
/// what the caller says it is.
class SettlingFiles {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// What is compared to see whether a file is still being written.
    struct State {
        bool exists = false;
        std::uint64_t size = 0;
        std::int64_t changedNs = 0;
        bool operator==(const State&) const = default;
    };
    using Look = std::function<State(const std::string& path)>;

    SettlingFiles(std::chrono::milliseconds quiet, Look look)
        : _quiet(quiet), _look(std::move(look)) {}

    /// The events that are to be told at once.
    std::vector<TreeEvent> add(const std::vector<TreeEvent>& events, Time now);
    /// Those of files that have settled.
    std::vector<TreeEvent> settled(Time now);
    bool isEmpty() const { return _held.empty(); }
    /// When to ask next. There must be something.
    Time nextLook() const;

private:
    struct Held {
        TreeEventType type;
        State state;
        Time due;
    };

    void hold(const TreeEvent& event, Time now);
    void addMove(const TreeEvent& event, std::vector<TreeEvent>& events);
    void addRemoval(const TreeEvent& event, std::vector<TreeEvent>& events);
    std::vector<std::string> heldAtOrBelow(const std::string& path) const;

    std::chrono::milliseconds _quiet;
    Look _look;
    std::map<std::string, Held> _held;
};

}  // namespace tav::ula
