// SPDX-License-Identifier: MIT
// A worker thread that tells the main thread how far it is, without any window: the main thread
// runs its run loop until the worker says that the work is done.
#include <CoreFoundation/CoreFoundation.h>
#include <ula/MainThreadCaller.h>

#include <chrono>
#include <cstdio>
#include <thread>

using tav::ula::MainThreadCaller;

namespace {

constexpr int kSteps = 10;

/// Stands for something that takes long.
void workOnStep() {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
}

void work() {
    MainThreadCaller* const mainThread = MainThreadCaller::instance();
    for (int step = 1; step <= kSteps; ++step) {
        workOnStep();
        mainThread->callAsync([step] { std::printf("%d of %d done\n", step, kSteps); });
    }
    // Calls arrive in the order in which they were made: nothing is left behind this one.
    mainThread->callAsync([] { CFRunLoopStop(CFRunLoopGetCurrent()); });
}

}  // namespace

int main() {
    // The first call says which thread is the main thread, and must come before any worker's.
    MainThreadCaller::instance();
    std::thread worker(work);
    CFRunLoopRun();
    worker.join();
    MainThreadCaller::destroyInstance();
    std::puts("finished");
    return 0;
}
