// SPDX-License-Identifier: MIT
// Progress drawn over the application's icon, on an X server of its own without a session bus.
#include "bench/ApplicationObject.h"
#include "tests/support/DisplayServer.h"
#include "ula/ApplicationTaskProgress.h"

#include <benchmark/benchmark.h>
#include <cstdlib>

namespace {

using namespace tav::ula;

/// For the whole run: the application's object is one of its display.
void startApplication() {
    static const auto* const server = [] {
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
        auto* const started = new tav::test::DisplayServer;
        tav::bench::makeApplicationObject();
        return started;
    }();
    benchmark::DoNotOptimize(server);
}

void showProgress(benchmark::State& state) {
    startApplication();
    double fraction = 0;
    for (auto _ : state) {
        fraction = fraction < 1 ? fraction + 0.01 : 0;
        ApplicationTaskProgress::instance()->showProgress(nullptr, fraction, TaskProgressGreen);
    }
}
BENCHMARK(showProgress)->Name("showProgress/ula")->Unit(benchmark::kMillisecond)->UseRealTime();

void clearProgress(benchmark::State& state) {
    startApplication();
    for (auto _ : state)
        ApplicationTaskProgress::instance()->clearProgress();
}
BENCHMARK(clearProgress)->Name("clearProgress/ula")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
