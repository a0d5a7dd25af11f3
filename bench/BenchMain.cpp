// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <future>
#include <thread>

namespace {

/// A thread that waits as long as the program runs. Counted strings and shared pointers leave out
/// their locked instructions while a process has one thread only, and no desktop application has.
class SecondThread {
public:
    SecondThread() : _thread([end = _end.get_future()]() mutable { end.wait(); }) {}
    ~SecondThread() {
        _end.set_value();
        _thread.join();
    }

private:
    std::promise<void> _end;
    std::thread _thread;
};

}  // namespace

int main(int argumentCount, char** arguments) {
    const SecondThread second;
    benchmark::AddCustomContext("threads", "two: locked instructions are real");
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
