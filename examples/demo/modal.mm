// SPDX-License-Identifier: MIT
// Four threads send jobs to a main thread that sits in a modal alert. Needs an X server:
//   demo-modal [JOBS]     100,000 without it
#import <AppKit/AppKit.h>

#import "examples/WakeApplication.h"
#include "examples/demo/Report.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <semaphore>
#include <thread>
#include <ula/MainThreadCaller.h>
#include <ula/ScopedARPool.h>
#include <vector>

namespace {

using namespace demo;
using tav::ula::MainThreadCaller;

constexpr int kThreads = 4;
/// The caller warns of 10,000 pending calls; a batch is begun when an earlier one has been run.
constexpr int kBatch = 500;
constexpr int kPendingBatches = 16;

void closeAlert() {
    [NSApp stopModal];
    wakeApplication();
}

/// The jobs, and what the main thread has seen of them.
class Work {
public:
    Work(int jobCount, Report& report)
        : _runs(static_cast<std::size_t>(jobCount)), _report(report) {}
    ~Work() {
        for (std::thread& thread : _threads)
            thread.join();
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void begin() {
        _watch = StopWatch();
        for (int i = 0; i < kThreads; ++i)
            _threads.emplace_back([this, i] { send(i); });
    }
    void tell() const;

private:
    int total() const { return static_cast<int>(_runs.size()); }
    void send(int thread);
    void ran(int job);
    void showProgress() const;

    std::vector<int> _runs;  ///< how often each has run
    int _ran = 0;
    int _ranInAlert = 0;
    int _mostPending = 0;
    double _milliseconds = 0;
    StopWatch _watch;
    Report& _report;
    std::atomic<int> _sent = 0;
    std::counting_semaphore<> _room{kPendingBatches};
    std::vector<std::thread> _threads;
};

void Work::send(int thread) {
    int inBatch = 0;
    for (int job = thread; job < total(); job += kThreads) {
        if (inBatch++ % kBatch == 0)
            _room.acquire();
        ++_sent;
        MainThreadCaller::instance()->callAsync([this, job] { ran(job); });
    }
}

void Work::ran(int job) {
    _mostPending = std::max(_mostPending, _sent - _ran);
    ++_runs[static_cast<std::size_t>(job)];
    _ranInAlert += [NSApp modalWindow] != nil;
    if (++_ran % kBatch == 0) {
        _room.release();
        showProgress();
    }
    if (_ran == total()) {
        _milliseconds = _watch.milliseconds();
        closeAlert();
    }
}

void Work::showProgress() const {
    _report.progress(_ran, total(),
                     format("%d of %d jobs, %d pending", _ran, total(), _sent - _ran));
}

void Work::tell() const {
    const auto once = std::count(_runs.begin(), _runs.end(), 1);
    _report.check(_ran == total(),
                  format("%d jobs of %d threads were run in %.0f ms, %.0f in each second", _ran,
                         kThreads, _milliseconds, _ran / _milliseconds * 1000));
    _report.check(once == total(), format("each of the %d ran exactly once", total()));
    _report.check(_ranInAlert == _ran, "all of them ran while the alert was open");
    _report.check(_mostPending < 10000, format("never were more than %d pending", _mostPending));
}

NSInteger runAlert() {
    NSAlert* alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:@"The pictures are being imported"];
    [alert setInformativeText:@"Their calls arrive behind this alert."];
    [alert addButtonWithTitle:@"OK"];
    return [alert runModal];
}

}  // namespace

int main(int argc, char** argv) {
    const int jobCount = argc > 1 ? std::atoi(argv[1]) : 100000;
    if (jobCount <= 0 || argc > 2) {
        std::fputs("usage: demo-modal [JOBS]\n", stderr);
        return 2;
    }
    const tav::ula::ScopedARPool pool;
    [NSApplication sharedApplication];
    Report report;
    Work work(jobCount, report);
    // Runs when the alert's own loop does.
    MainThreadCaller::instance()->callAsync([&] {
        report.check([NSApp modalWindow] != nil, "the main thread sits in a modal alert");
        work.begin();
    });
    runAlert();
    work.tell();
    return report.exitCode();
}
