// SPDX-License-Identifier: MIT
// Bytes of heap for each key of a store and each pending job, and allocations for each call. The
// times that are printed mean nothing here; the counters do.
#include "bench/AllocationCount.h"
#include "bench/PeerFiles.h"
#include "bench/Stores.h"
#include "ula/MainThreadCaller.h"
#include "ula/foundation/util/Signal.h"

#include <CoreFoundation/CoreFoundation.h>
#include <array>

namespace {

using namespace tav::bench;
using tav::ula::FastString;

constexpr std::size_t kKeyCount = 100000;

/// Ours as an application has it: read from its file.
struct OurLoadedStore {
    explicit OurLoadedStore(const std::string& path)
        : settings(FastString::literal("bench"), FastString::literal("ula"), path, false) {}
    tav::ula::SettingsXML settings;
};

template <class Make>
void reportBytes(benchmark::State& state, Make make) {
    settingsData(kKeyCount);
    double bytes = 0;
    for (auto _ : state) {
        const std::size_t before = heapBytes();
        const auto store = make();
        bytes = static_cast<double>(heapBytes() - before);
    }
    state.counters["bytes_per_key"] = bytes / static_cast<double>(kKeyCount);
}

template <class Store>
void bytesOf(benchmark::State& state) {
    reportBytes(state, [] { return makeStore<Store>(kKeyCount); });
}

void bytesOfLoaded(benchmark::State& state) {
    const std::string path = BenchFolder::instance() / "memory.xml";
    writeFile(path, xmlText(settingsData(kKeyCount)));
    reportBytes(state, [&path] { return std::make_unique<OurLoadedStore>(path); });
}

void bytesOfQSettings(benchmark::State& state) {
    qsettingsFile(kKeyCount);
    reportBytes(state, [] { return makeStore<QSettingsStore>(kKeyCount); });
}

void report(benchmark::State& state, std::size_t allocations, std::size_t calls) {
    state.counters["allocations_per_call"] =
        static_cast<double>(allocations) / static_cast<double>(calls);
}

template <class Store, auto Get>
void allocationsOfGet(benchmark::State& state, ValueType type) {
    const auto store = makeStore<Store>(1000);
    const auto queries = makeQueries<Store>(1000, type);
    for (auto _ : state) {
        const std::size_t before = allocationCount();
        for (const auto& query : queries)
            benchmark::DoNotOptimize(((*store).*Get)(query));
        report(state, allocationCount() - before, queries.size());
    }
}

template <class Call>
void allocationsOf(benchmark::State& state, Call call) {
    constexpr std::size_t calls = 1000;
    for (auto _ : state) {
        const std::size_t before = allocationCount();
        for (std::size_t i = 0; i < calls; ++i)
            call();
        report(state, allocationCount() - before, calls);
    }
}

void allocationsOfCopy(benchmark::State& state) {
    const FastString text("a text in a buffer of its own");
    allocationsOf(state, [&text] {
        FastString other(text);
        benchmark::DoNotOptimize(other);
    });
}

void allocationsOfSubstring(benchmark::State& state) {
    const FastString text("a text in a buffer of its own");
    allocationsOf(state, [&text] {
        FastString other = text.substr(2, 4);
        benchmark::DoNotOptimize(other);
    });
}

void allocationsOfEmit(benchmark::State& state) {
    tav::util::Signal0 signal;
    signal.connect([] { benchmark::ClobberMemory(); });
    allocationsOf(state, [&signal] { signal.emit(); });
}

/// The jobs that are pending, and how to be rid of them.
struct OurJobs {
    void add() {
        tav::ula::MainThreadCaller::instance()->callAsync([] { benchmark::ClobberMemory(); });
    }
    void run() { CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false); }
};

/// With a function object of five words, for which there is no room in a std::function.
struct OurLongJobs : OurJobs {
    void add() {
        tav::ula::MainThreadCaller::instance()->callAsync(
            [words = std::array<void*, 5>{}] { benchmark::DoNotOptimize(words.data()); });
    }
};

struct GLibJobs {
    void add() {
        g_idle_add([](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr);
    }
    void run() {
        while (g_main_context_iteration(nullptr, FALSE))
            continue;
    }
};

/// Fewer than ours warns of.
constexpr int kPendingJobs = 9000;

template <class Jobs>
void bytesOfPendingJob(benchmark::State& state) {
    Jobs jobs;
    jobs.add();
    jobs.run();
    for (auto _ : state) {
        const std::size_t before = heapBytes();
        for (int i = 0; i < kPendingJobs; ++i)
            jobs.add();
        const auto bytes = static_cast<double>(heapBytes() - before);
        state.counters["bytes_per_job"] = bytes / kPendingJobs;
        jobs.run();
    }
}

template <class Jobs>
void allocationsOfJob(benchmark::State& state) {
    Jobs jobs;
    jobs.add();
    jobs.run();
    for (auto _ : state) {
        const std::size_t before = allocationCount();
        for (int i = 0; i < kPendingJobs; ++i)
            jobs.add();
        report(state, allocationCount() - before, kPendingJobs);
        jobs.run();
    }
}

template <class Store>
void registerAll(const std::string& name, void (*bytes)(benchmark::State&)) {
    const auto once = [&name](const std::string& topic, auto function) {
        benchmark::RegisterBenchmark((topic + "/" + name).c_str(), function)->Iterations(1);
    };
    once("bytes", bytes);
    once("allocationsGetInt", [](benchmark::State& state) {
        allocationsOfGet<Store, &Store::getInt>(state, ValueType::integer);
    });
    once("allocationsGetString", [](benchmark::State& state) {
        allocationsOfGet<Store, &Store::getString>(state, ValueType::text);
    });
}

template <class Jobs>
void registerJobs(const std::string& name) {
    benchmark::RegisterBenchmark(("bytesPendingJob/" + name).c_str(), bytesOfPendingJob<Jobs>)
        ->Iterations(1);
    benchmark::RegisterBenchmark(("allocationsCallAsync/" + name).c_str(), allocationsOfJob<Jobs>)
        ->Iterations(1);
}

const bool kRegistered = [] {
    registerAll<OurStore>("ula", bytesOf<OurStore>);
    registerAll<MapStore<StdMapOf>>("std::map", bytesOf<MapStore<StdMapOf>>);
    registerAll<MapStore<BtreeMapOf>>("absl::btree_map", bytesOf<MapStore<BtreeMapOf>>);
    registerAll<QSettingsStore>("QSettings", bytesOfQSettings);
    registerAll<GKeyFileStore>("GKeyFile", bytesOf<GKeyFileStore>);
    benchmark::RegisterBenchmark("bytesLoaded/ula", bytesOfLoaded)->Iterations(1);
    benchmark::RegisterBenchmark("allocationsCopy/ula", allocationsOfCopy)->Iterations(1);
    benchmark::RegisterBenchmark("allocationsSubstring/ula", allocationsOfSubstring)->Iterations(1);
    benchmark::RegisterBenchmark("allocationsEmit/ula", allocationsOfEmit)->Iterations(1);
    registerJobs<OurJobs>("ula");
    registerJobs<OurLongJobs>("ula, five words");
    registerJobs<GLibJobs>("GLib");
    return true;
}();

}  // namespace
