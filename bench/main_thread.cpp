// SPDX-License-Identifier: MIT
// Calls of other threads that the main thread runs: what a queued job costs from 1, 2 and 4
// threads, and how long a caller waits that wants it done. The times that are printed mean little;
// the counters do.
#include "bench/MainLoops.h"
#include "bench/Quantile.h"

#include <benchmark/benchmark.h>
#include <latch>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tav::bench;

constexpr int kJobs = 100'000;
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
        if (_ran == kJobs) {
            _end = Clock::now();
            _loop.quit();
        }
    }
    Clock::time_point end() const { return _end; }

private:
    Loop& _loop;
    int _ran = 0;
    std::counting_semaphore<kJobs> _room{kPendingBatches};
    Clock::time_point _end;
};

template <class Loop>
void postJobs(Loop& loop, Jobs<Loop>& jobs, int count) {
    for (int i = 0; i < count; ++i) {
        if (i % kBatch == 0)
            jobs.waitForRoom();
        loop.post([&jobs] { jobs.ran(); });
    }
}

template <class Loop>
double secondsToRunAll(int threadCount) {
    Loop loop;
    Jobs<Loop> jobs(loop);
    Clock::time_point begin;
    std::latch ready(threadCount);
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([&, i] {
            ready.arrive_and_wait();
            if (i == 0)
                begin = Clock::now();
            postJobs(loop, jobs, kJobs / threadCount);
        });
    loop.run();
    for (std::thread& thread : threads)
        thread.join();
    return std::chrono::duration<double>(jobs.end() - begin).count();
}

template <class Loop>
void post(benchmark::State& state) {
    for (auto _ : state) {
        const double seconds = secondsToRunAll<Loop>(static_cast<int>(state.range(0)));
        state.SetIterationTime(seconds);
        state.counters["ns_per_job"] = seconds * 1e9 / kJobs;
    }
}

template <class Loop>
std::vector<double> roundTripTimes() {
    Loop loop;
    std::vector<double> times;
    times.reserve(kRoundTrips);
    std::thread caller([&] {
        for (int i = 0; i < kRoundTrips; ++i) {
            const auto begin = Clock::now();
            loop.call([] { benchmark::ClobberMemory(); });
            times.push_back(nanoseconds(Clock::now() - begin));
        }
        loop.call([&loop] { loop.quit(); });
    });
    loop.run();
    caller.join();
    return times;
}

template <class Loop>
void roundTrip(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<double> times = roundTripTimes<Loop>();
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

template <class Loop>
void registerAll(const std::string& name) {
    benchmark::RegisterBenchmark(("post/" + name).c_str(), post<Loop>)
        ->Arg(1)
        ->Arg(2)
        ->Arg(4)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
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
