// SPDX-License-Identifier: MIT
// Threads that hand work to a run loop, for the tests in which something else runs it.
#pragma once

#include "RunLoopItems.h"

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

/// Several threads signal a source of the calling thread's run loop, each a number of times; once
/// all of that has been served, `finished` is called on the loop's thread.
class Workers {
public:
    static constexpr int threadCount = 4;
    static constexpr int rounds = 5000;

    explicit Workers(std::function<void()> finished)
        : _finished(std::move(finished)), _source([this] { serve(); }) {
        _source.add();
        for (int i = 0; i < threadCount; ++i)
            _threads.emplace_back([this] { work(); });
    }
    ~Workers() {
        for (auto& thread : _threads)
            thread.join();
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    bool allServed() const { return _seen == threadCount * rounds; }

private:
    void work() {
        for (int round = 0; round < rounds; ++round) {
            ++_posted;
            _source.signalAndWake();
        }
    }
    void serve() {
        bool before = allServed();
        _seen = _posted;
        if (allServed() && !before)
            _finished();
    }

    std::function<void()> _finished;
    std::atomic<int> _posted{0};
    int _seen = 0;
    TestSource _source;
    std::vector<std::thread> _threads;
};
