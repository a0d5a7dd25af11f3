// SPDX-License-Identifier: MIT
// Looking displays up, as a program does for each menu and tooltip that it opens. On an X server of
// its own with two heads; the list of displays is known from the first look on.
#include "tests/support/DisplayServer.h"
#include "ula/Screen.h"

#include <QGuiApplication>
#include <QScreen>
#include <benchmark/benchmark.h>

namespace {

using tav::ula::Screen;

/// For the whole run: the programs' connections are to it.
void startServer() {
    static const auto* const server = [] {
        auto* const started = new tav::test::DisplayServer;
        started->addSecondHead();
        return started;
    }();
    benchmark::DoNotOptimize(server);
}

void screenFromPoint(benchmark::State& state) {
    startServer();
    for (auto _ : state)
        benchmark::DoNotOptimize(Screen::getScreenFromPoint({2000, -500}));
}
BENCHMARK(screenFromPoint)->Name("screenAtPoint/ula/2");

void qtScreenFromPoint(benchmark::State& state) {
    startServer();
    static int count = 1;
    static char name[] = "bench";
    static char* arguments[] = {name, nullptr};
    static const QGuiApplication application(count, arguments);
    if (QGuiApplication::screenAt({2000, 500}) == nullptr)
        state.SkipWithError("Qt sees no second display");
    for (auto _ : state) {
        const QScreen* const screen = QGuiApplication::screenAt({2000, 500});
        benchmark::DoNotOptimize(screen->geometry());
        benchmark::DoNotOptimize(screen->availableGeometry());
    }
}
BENCHMARK(qtScreenFromPoint)->Name("screenAtPoint/QGuiApplication/2");

void workingArea(benchmark::State& state) {
    startServer();
    for (auto _ : state)
        benchmark::DoNotOptimize(Screen::getScreenWorkingArea({100, -100}));
}
BENCHMARK(workingArea)->Name("workingArea/ula/2");

void allScreens(benchmark::State& state) {
    startServer();
    for (auto _ : state)
        benchmark::DoNotOptimize(Screen::getAllScreens());
}
BENCHMARK(allScreens)->Name("allScreens/ula/2");

void displayNumber(benchmark::State& state) {
    startServer();
    const Screen screen = Screen::getPrimaryScreen();
    for (auto _ : state)
        benchmark::DoNotOptimize(screen.displayID());
}
BENCHMARK(displayNumber)->Name("displayID/ula/2");

}  // namespace
