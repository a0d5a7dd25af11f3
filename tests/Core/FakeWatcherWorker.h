// SPDX-License-Identifier: MIT
#pragma once

#include "ula/src/Core/FSWatcherWorker.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tav::ula {

/// A platform that writes down what it is asked for, and in whose rounds the test's functions run:
/// on the worker's thread, with the registry locked, as events are told.
class FakePlatform {
public:
    static FakePlatform& instance();

    void reset();
    /// Answers what the next starts are to give.
    bool note(const std::string& call);
    /// What was asked for since the last call.
    std::vector<std::string> takeCalls();
    void refuseStarts();

    /// Runs the function in the next round, and returns when that is over.
    void runInRound(std::function<void()> function);
    /// One round, or nothing.
    void serve();
    void endRound();
    /// False when there was none until then.
    bool waitForRounds(int count, std::chrono::milliseconds limit);

    void workerMade();
    void workerGone();
    bool waitUntilNoWorker();
    int workerCount();

private:
    FakePlatform();

    std::mutex _mutex;
    std::condition_variable _changed;
    std::vector<std::string> _calls;
    std::deque<std::function<void()>> _functions;
    bool _startAnswer = true;
    int _rounds = 0;
    int _served = 0;
    int _workers = 0;
};

}  // namespace tav::ula
