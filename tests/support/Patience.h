// SPDX-License-Identifier: MIT
// How long tests wait for what has to come, on machines that are slow, busy, or halted for a
// moment.
#pragma once

#include <chrono>
#include <thread>

namespace tav::test {

/// Passes only where something is broken.
constexpr std::chrono::seconds kPatience{60};
constexpr double kPatienceSeconds = 60;
constexpr int kPatienceMs = 60'000;

/// Asks again and again until the answer is right. Gives the last answer; right or not, once
/// patience is at its end. For what comes by itself, and for what is given a fraction of a second
/// to answer.
template <class Ask, class IsRight>
auto askUntil(Ask ask, IsRight isRight) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (;;) {
        auto answer = ask();
        if (isRight(answer) || std::chrono::steady_clock::now() > end)
            return answer;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

/// Fails: false when the condition does not come true.
template <class Condition>
bool comesTrue(Condition condition) {
    return askUntil(condition, [](bool isTrue) { return isTrue; });
}

}  // namespace tav::test
