// SPDX-License-Identifier: MIT
// Calls of other threads that the main thread runs: what a queued job of one word and one of five
// words costs from 1, 2 and 4 threads, and how long a caller waits that wants it done. The times
// that are printed mean little; the counters do.
#include "bench/MainLoops.h"
#include "bench/Quantile.h"

#include <array>
#include <benchmark/benchmark.h>
#include <latch>
#include <sched.h>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tav::bench;

constexpr int kJobs = 100'000;
/// Run before the clock starts: an application's threads have their memory already.
constexpr int kWarmUpJobs = 40'000;
constexpr int kRoundTrips = 5000;
/// Ours warns of 10,000 pending jobs, and no application has as many: a batch of jobs is begun
/// when an earlier one has been run.
constexpr int kBatch = 1000;
constexpr int kPendingBatches = 8;

/// The jobs of one measurement. All but `waitForRoom` on the loop's thread.
template <class Loop>
class Jobs {
public:
    explicit Jobs(Loop& loop) : _loop(loop) {}

    void waitForRoom() { _room.acquire(); }
    void ran() {
        ++_ran;
        if (_ran % kBatch == 0)
            _room.release();
        if (_ran == kWarmUpJobs)
            _begin = Clock::now();
        if (_ran == kWarmUpJobs + kJobs) {
            _end = Clock::now();
            _loop.quit();
        }
    }
    double seconds() const { return nanoseconds(_end - _begin) * 1e-9; }

private:
    Loop& _loop;
    int _ran = 0;
    std::counting_semaphore<kJobs> _room{kPendingBatches};
    Clock::time_point _begin;
    Clock::time_point _end;
};

/// A function object with so many words beside the one it needs.
template <std::size_t kWords, class Loop>
auto job(Jobs<Loop>& jobs) {
    return [&jobs, words = std::array<void*, kWords>{}] {
        benchmark::DoNotOptimize(words);
        jobs.ran();
    };
}
template <std::size_t kWords, class Loop>
requires(kWords == 0) auto job(Jobs<Loop>& jobs) {
    return [&jobs] { jobs.ran(); };
}

template <std::size_t kWords, class Loop>
void postJobs(Loop& loop, Jobs<Loop>& jobs, int count) {
    for (int i = 0; i < count; ++i) {
        if (i % kBatch == 0)
            jobs.waitForRoom();
        loop.post(job<kWords>(jobs));
    }
}

template <class Loop, std::size_t kWords>
double secondsToRunAll(int threadCount) {
    Loop loop;
    Jobs<Loop> jobs(loop);
    std::latch ready(threadCount);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&] {
            ready.arrive_and_wait();
            postJobs<kWords>(loop, jobs, (kWarmUpJobs + kJobs) / threadCount);
        });
    loop.run();
    for (std::thread& thread : threads)
        thread.join();
    return jobs.seconds();
}

template <class Loop, std::size_t kWords>
void post(benchmark::State& state) {
    for (auto _ : state) {
        const double seconds = secondsToRunAll<Loop, kWords>(static_cast<int>(state.range(0)));
        state.SetIterationTime(seconds);
        state.counters["ns_per_job"] = seconds * 1e9 / kJobs;
    }
}

/// Keeps the calling thread on one processor for a while. Both sides of a round trip together on
/// one and each on its own differ several times over, and chance must not choose.
class Pinned {
public:
    explicit Pinned(int processor) {
        sched_getaffinity(0, sizeof _before, &_before);
        cpu_set_t set;
        CPU_ZERO(&set);
        CPU_SET(processor, &set);
        // Where there is no such processor, the thread runs where it may.
        sched_setaffinity(0, sizeof set, &set);
    }
    ~Pinned() { sched_setaffinity(0, sizeof _before, &_before); }
    Pinned(const Pinned&) = delete;
    Pinned& operator=(const Pinned&) = delete;

private:
    cpu_set_t _before{};
};

template <class Loop>
std::vector<double> timeRoundTrips(Loop& loop) {
    std::vector<double> times;
    times.reserve(kRoundTrips);
    for (int i = 0; i < kRoundTrips; ++i) {
        const auto begin = Clock::now();
        loop.call([] { benchmark::ClobberMemory(); });
        times.push_back(nanoseconds(Clock::now() - begin));
    }
    loop.call([&loop] { loop.quit(); });
    return times;
}

template <class Loop>
void roundTrip(benchmark::State& state) {
    for (auto _ : state) {
        Loop loop;
        std::vector<double> times;
        std::thread caller([&] {
            const Pinned pinned(1);
            times = timeRoundTrips(loop);
        });
        const Pinned pinned(0);
        loop.run();
        caller.join();
        state.counters["p50_ns"] = quantile(times, 0.5);
        state.counters["p99_ns"] = quantile(times, 0.99);
    }
}

template <class Loop>
void registerRoundTrip(const std::string& name) {
    benchmark::RegisterBenchmark(("roundTrip/" + name).c_str(), roundTrip<Loop>)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

template <class Loop, std::size_t kWords>
void registerPost(const std::string& name) {
    benchmark::RegisterBenchmark(name.c_str(), post<Loop, kWords>)
        ->Arg(1)
        ->Arg(2)
        ->Arg(4)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

template <class Loop>
void registerAll(const std::string& name) {
    registerPost<Loop, 0>("post/" + name);
    registerPost<Loop, 4>("postWords/" + name);
    registerRoundTrip<Loop>(name);
}

const bool kRegistered = [] {
    registerAll<OurLoop>("ula");
    registerAll<UvLoop>("uv");
    registerAll<EventfdLoop>("eventfd");
    registerAll<AsioLoop>("asio");
    registerAll<QtLoop>("Qt");
    registerAll<GLibLoop>("GLib");
    registerRoundTrip<PingPong>("ping-pong");
    return true;
}();

}  // namespace
