// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace tav::bench {

using Job = std::function<void()>;

/// The plainest queue of a program's own: it is taken whole, and then run. Thread: any adds.
class JobQueue {
public:
    /// True when there was none before.
    template <class Function>
    bool add(Function function) {
        const std::lock_guard lock(_mutex);
        const bool isFirst = _jobs.empty();
        _jobs.emplace_back(std::move(function));
        return isFirst;
    }
    void runAll() {
        std::deque<Job> jobs;
        {
            const std::lock_guard lock(_mutex);
            jobs.swap(_jobs);
        }
        for (const Job& job : jobs)
            job();
    }

private:
    std::mutex _mutex;
    std::deque<Job> _jobs;
};

}  // namespace tav::bench
