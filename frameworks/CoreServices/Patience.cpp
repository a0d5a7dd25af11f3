// SPDX-License-Identifier: MIT
#include "CoreServices/Patience.h"

#include "CoreServices/SignalsBlocked.h"

#include <condition_variable>
#include <mutex>
#include <pthread.h>
#include <set>
#include <system_error>
#include <thread>

namespace coreservices {

namespace {

// Never destroyed: threads left behind outlive the statics.
class Overdue {
public:
    static Overdue& instance() { return *ofProcess(); }

    std::mutex mutex;
    std::set<std::string> places;

private:
    static Overdue*& ofProcess() {
        static Overdue* overdue = makeFirst();
        return overdue;
    }

    // A forked child has none of the threads that were left behind, and its parent's lock may have
    // been held. It begins anew: to be locked before a fork it would need its turn among all locks
    // that are held while something is asked.
    static Overdue* makeFirst() {
        auto* overdue = new Overdue;
        pthread_atfork(nullptr, nullptr, [] { ofProcess() = new Overdue; });
        return overdue;
    }
};

struct Job {
    std::condition_variable ended;
    std::function<void()> work;
    std::string place;
    bool isDone = false;
    bool isOverdue = false;
};

void perform(const std::shared_ptr<Job>& job) {
    job->work();
    {
        Overdue& overdue = Overdue::instance();
        std::lock_guard lock(overdue.mutex);
        job->isDone = true;
        if (job->isOverdue)
            overdue.places.erase(job->place);
        job->ended.notify_all();
    }
    // Last: who learns from what it holds that the work has gone finds the place free.
    job->work = nullptr;
}

bool start(const std::shared_ptr<Job>& job) {
    try {
        const SignalsBlocked blocked;
        std::thread([job] { perform(job); }).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

}  // namespace

bool runPatiently(const std::string& place, std::chrono::milliseconds patience,
                  std::function<void()> work) {
    auto deadline = std::chrono::steady_clock::now() + patience;
    Overdue& overdue = Overdue::instance();
    std::unique_lock lock(overdue.mutex);
    if (overdue.places.count(place) != 0)
        return false;
    auto job = std::make_shared<Job>();
    job->work = std::move(work);
    job->place = place;
    if (!start(job))
        return false;
    if (job->ended.wait_until(lock, deadline, [&] { return job->isDone; }))
        return true;
    job->isOverdue = true;
    overdue.places.insert(place);
    return false;
}

}  // namespace coreservices
