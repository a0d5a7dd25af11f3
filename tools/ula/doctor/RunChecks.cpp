// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/RunChecks.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"

#include <exception>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace tav::tool::doctor {

namespace {

using Clock = std::chrono::steady_clock;

Finding failure(const std::exception& error) {
    return {CheckState::Unknown, translated("cannot be examined: %1", std::string(error.what()))};
}

Finding examine(const Check& check, const Host& host) noexcept {
    try {
        return check.examine(host);
    } catch (const std::exception& error) {
        return failure(error);
    }
}

std::future<Finding> begin(const Check& check, const std::shared_ptr<const Host>& host) {
    std::promise<Finding> promise;
    std::future<Finding> finding = promise.get_future();
    try {
        std::thread([check, host, promise = std::move(promise)]() mutable {
            promise.set_value(examine(check, *host));
        }).detach();
    } catch (const std::exception& error) {
        std::promise<Finding> failed;
        finding = failed.get_future();
        failed.set_value(failure(error));
    }
    return finding;
}

}  // namespace

std::vector<Finding> runChecks(const std::vector<Check>& checks, const Host& host,
                               std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    const auto shared = std::make_shared<const Host>(host);
    std::vector<std::future<Finding>> answers;
    for (const Check& check : checks)
        answers.push_back(begin(check, shared));
    std::vector<Finding> findings;
    for (std::size_t i = 0; i < checks.size(); ++i) {
        const bool isThere = answers[i].wait_until(deadline) == std::future_status::ready;
        findings.push_back(isThere ? answers[i].get() : checks[i].silence);
    }
    return findings;
}

}  // namespace tav::tool::doctor
