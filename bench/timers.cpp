// SPDX-License-Identifier: MIT
// Repeating timers of 1 ms and 10 ms: how far the time between two calls is from the period, and
// whether the calls drift away from the schedule. The times that are printed mean nothing here;
// the counters do.
#include "bench/QtApplication.h"
#include "bench/Quantile.h"
#include "ula/NativeTimer.h"

#include <CoreFoundation/CoreFoundation.h>
#include <QTimer>
#include <asio.hpp>
#include <benchmark/benchmark.h>
#include <cmath>
#include <functional>
#include <glib.h>
#include <memory>
#include <poll.h>
#include <string>
#include <sys/timerfd.h>
#include <unistd.h>
#include <uv.h>
#include <vector>

namespace {

using namespace tav::bench;

/// The moments at which a timer called.
class Ticks {
public:
    explicit Ticks(std::size_t wanted) : _wanted(wanted) { _moments.reserve(wanted); }

    /// True when there are enough.
    bool add() {
        _moments.push_back(Clock::now());
        return _moments.size() == _wanted;
    }

    /// Units: nanoseconds.
    std::vector<double> distancesFromPeriod(double period) const {
        std::vector<double> distances;
        for (std::size_t i = 1; i < _moments.size(); ++i)
            distances.push_back(std::abs(nanoseconds(_moments[i] - _moments[i - 1]) - period));
        return distances;
    }
    /// How much later than the schedule says each call comes than the one before it. Taken over
    /// stretches of twenty calls, most of which a busy machine leaves whole. Units: nanoseconds.
    double driftPerTick(double period) const {
        constexpr std::size_t kStretch = 20;
        std::vector<double> drifts;
        for (std::size_t i = kStretch; i < _moments.size(); ++i) {
            const double passed = nanoseconds(_moments[i] - _moments[i - kStretch]);
            drifts.push_back(passed / kStretch - period);
        }
        return std::abs(quantile(drifts, 0.5));
    }

private:
    std::size_t _wanted;
    std::vector<Clock::time_point> _moments;
};

void runOurs(Ticks& ticks, int milliseconds) {
    const std::unique_ptr<tav::ula::NativeTimer> timer(
        tav::ula::NativeTimer::createTimer(static_cast<unsigned>(milliseconds), [&ticks] {
            if (ticks.add())
                CFRunLoopStop(CFRunLoopGetCurrent());
        }));
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1e10, false);
}

void runAsio(Ticks& ticks, int milliseconds) {
    asio::io_context context;
    const std::chrono::milliseconds period(milliseconds);
    asio::steady_timer timer(context, period);
    std::function<void(const asio::error_code&)> tick = [&](const asio::error_code&) {
        if (ticks.add())
            return;
        timer.expires_at(timer.expiry() + period);
        timer.async_wait(tick);
    };
    timer.async_wait(tick);
    context.run();
}

void runTimerfd(Ticks& ticks, int milliseconds) {
    const int descriptor = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    const timespec period{0, milliseconds * 1'000'000L};
    const itimerspec setting{period, period};
    timerfd_settime(descriptor, 0, &setting, nullptr);
    pollfd wait{descriptor, POLLIN, 0};
    for (bool isEnough = false; !isEnough; isEnough = ticks.add()) {
        poll(&wait, 1, -1);
        std::uint64_t expirations = 0;
        if (read(descriptor, &expirations, sizeof expirations) < 0)
            break;
    }
    close(descriptor);
}

void runUv(Ticks& ticks, int milliseconds) {
    uv_loop_t loop;
    uv_loop_init(&loop);
    uv_timer_t timer;
    uv_timer_init(&loop, &timer);
    timer.data = &ticks;
    const auto period = static_cast<std::uint64_t>(milliseconds);
    uv_timer_start(
        &timer,
        [](uv_timer_t* handle) {
            if (static_cast<Ticks*>(handle->data)->add())
                uv_close(reinterpret_cast<uv_handle_t*>(handle), nullptr);
        },
        period, period);
    uv_run(&loop, UV_RUN_DEFAULT);
    uv_loop_close(&loop);
}

void runGLib(Ticks& ticks, int milliseconds) {
    struct Run {
        Ticks& ticks;
        GMainLoop* loop;
    } run{ticks, g_main_loop_new(nullptr, FALSE)};
    const auto tick = [](gpointer held) -> gboolean {
        const auto* const self = static_cast<Run*>(held);
        if (!self->ticks.add())
            return G_SOURCE_CONTINUE;
        g_main_loop_quit(self->loop);
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(static_cast<guint>(milliseconds), tick, &run);
    g_main_loop_run(run.loop);
    g_main_loop_unref(run.loop);
}

void runQt(Ticks& ticks, int milliseconds) {
    needQtApplication();
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&ticks] {
        if (ticks.add())
            QCoreApplication::quit();
    });
    timer.start(milliseconds);
    QCoreApplication::exec();
}

void measure(benchmark::State& state, void (*run)(Ticks&, int)) {
    const int milliseconds = static_cast<int>(state.range(0));
    const double period = milliseconds * 1e6;
    for (auto _ : state) {
        Ticks ticks(milliseconds == 1 ? 500 : 60);
        run(ticks, milliseconds);
        std::vector<double> distances = ticks.distancesFromPeriod(period);
        state.counters["p50_ns"] = quantile(distances, 0.5);
        state.counters["p99_ns"] = quantile(distances, 0.99);
        state.counters["drift_ns"] = ticks.driftPerTick(period);
    }
}

const bool kRegistered = [] {
    const auto add = [](const std::string& name, void (*run)(Ticks&, int)) {
        benchmark::RegisterBenchmark(("timer/" + name).c_str(),
                                     [run](benchmark::State& state) { measure(state, run); })
            ->Arg(1)
            ->Arg(10)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    };
    add("ula", runOurs);
    add("asio", runAsio);
    add("timerfd", runTimerfd);
    add("uv", runUv);
    add("GLib", runGLib);
    add("Qt", runQt);
    return true;
}();

}  // namespace
