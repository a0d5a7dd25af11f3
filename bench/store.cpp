// SPDX-License-Identifier: MIT
// Getting and setting single values in stores of 10, 1,000 and 100,000 keys, in random order, with
// the names made beforehand.
#include "bench/Stores.h"

namespace {

using namespace tav::bench;

/// The sum of what the first queries give, to compare the stores with each other.
template <class Store>
std::int64_t checkSum(Store& store, const std::vector<typename Store::Query>& queries) {
    std::int64_t sum = 0;
    for (const auto& query : queries)
        sum += store.getInt(query);
    return sum;
}

std::int64_t expectedSum(std::size_t keyCount) {
    MapStore<StdMapOf> store(settingsData(keyCount));
    return checkSum(store, shuffledAddresses(settingsData(keyCount), ValueType::integer));
}

template <class Store>
void getInt(benchmark::State& state) {
    const auto store = makeStore<Store>(keyCountOf(state));
    const auto queries = makeQueries<Store>(keyCountOf(state), ValueType::integer);
    if (checkSum(*store, queries) != expectedSum(keyCountOf(state)))
        state.SkipWithError("the store gives other values");
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(store->getInt(queries[i]));
        i = i + 1 == queries.size() ? 0 : i + 1;
    }
}

template <class Store>
void getString(benchmark::State& state) {
    const auto store = makeStore<Store>(keyCountOf(state));
    const auto queries = makeQueries<Store>(keyCountOf(state), ValueType::text);
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(store->getString(queries[i]));
        i = i + 1 == queries.size() ? 0 : i + 1;
    }
}

template <class Store>
void setInt(benchmark::State& state) {
    const auto store = makeStore<Store>(keyCountOf(state));
    const auto queries = makeQueries<Store>(keyCountOf(state), ValueType::integer);
    std::size_t i = 0;
    for (auto _ : state) {
        store->setInt(queries[i], static_cast<int>(i));
        i = i + 1 == queries.size() ? 0 : i + 1;
    }
}

template <class Store>
void registerAll(const std::string& name) {
    const auto add = [](const std::string& benchmarkName, void (*function)(benchmark::State&)) {
        benchmark::RegisterBenchmark(benchmarkName.c_str(), function)
            ->Arg(10)
            ->Arg(1000)
            ->Arg(100000);
    };
    add("getInt/" + name, getInt<Store>);
    add("getString/" + name, getString<Store>);
    add("setInt/" + name, setInt<Store>);
}

const bool kRegistered = [] {
    registerAll<OurStore>("ula");
    registerAll<MapStore<StdMapOf>>("std::map");
    registerAll<MapStore<BtreeMapOf>>("absl::btree_map");
    registerAll<MapStore<FlatHashMapOf>>("absl::flat_hash_map");
    registerAll<QSettingsStore>("QSettings");
    registerAll<GKeyFileStore>("GKeyFile");
    return true;
}();

}  // namespace
