// SPDX-License-Identifier: MIT
// Whether another instance runs, among 500 processes more than the machine has; against the
// cheapest look that knows no names: one link read for each process.
#include "bench/ScratchFolder.h"
#include "ula/InstanceGuard.h"
#include "ula/UniqueAppInstance.h"

#include <benchmark/benchmark.h>
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

using namespace tav::ula;

constexpr int kProcesses = 500;

/// Idle programs, gone with this one.
class Crowd {
public:
    Crowd() {
        for (int i = 0; i < kProcesses; ++i) {
            const pid_t child = fork();
            // The crowd so far ends with this process; killing "process -1" would end all others.
            if (child < 0)
                std::abort();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                execl("/bin/sleep", "sleep", "1000", nullptr);
                _exit(1);
            }
            _children.push_back(child);
        }
    }
    ~Crowd() {
        for (const pid_t child : _children) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
    }
    Crowd(const Crowd&) = delete;
    Crowd& operator=(const Crowd&) = delete;

private:
    std::vector<pid_t> _children;
};

void uniqueInstance(benchmark::State& state) {
    const Crowd crowd;
    for (auto _ : state)
        benchmark::DoNotOptimize(isUniqueAppInstance("com.maker.none"));
}
BENCHMARK(uniqueInstance)->Name("isUniqueAppInstance/ula")->Unit(benchmark::kMillisecond);

void linkOfEachProcess(benchmark::State& state) {
    const Crowd crowd;
    for (auto _ : state) {
        DIR* const folder = opendir("/proc");
        while (const dirent* entry = readdir(folder)) {
            char target[4096];
            const std::string link = std::string(entry->d_name) + "/exe";
            benchmark::DoNotOptimize(
                readlinkat(dirfd(folder), link.c_str(), target, sizeof target));
        }
        closedir(folder);
    }
}
BENCHMARK(linkOfEachProcess)->Name("isUniqueAppInstance/links")->Unit(benchmark::kMillisecond);

void claimFirst(benchmark::State& state) {
    const tav::bench::ScratchFolder folder;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            InstanceGuard::claim("com.maker.photo", {}, {}, {InstanceScope::User, folder.path()}));
}
BENCHMARK(claimFirst)->Name("claimFirst/ula");

void claimSecond(benchmark::State& state) {
    const tav::bench::ScratchFolder folder;
    const InstanceGuardOptions options = {InstanceScope::User, folder.path()};
    const InstanceClaim first = InstanceGuard::claim("com.maker.photo", {}, {}, options);
    for (auto _ : state)
        benchmark::DoNotOptimize(
            InstanceGuard::claim("com.maker.photo", {"--open", "file.jpg"}, {}, options));
}
BENCHMARK(claimSecond)->Name("claimSecond/ula")->UseRealTime();

}  // namespace
