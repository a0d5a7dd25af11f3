// SPDX-License-Identifier: MIT
// Watching a tree of 20,000 folders: what it takes to begin, whether everything of a burst of
// 100,000 new files is told or covered by the word to read again, and how long after a change alone
// it is told. Each contestant runs in a process of its own, as memory is measured. The tree is in
// memory (/dev/shm; TMPDIR names another place), so that no disk slows the burst down. The times
// that are printed are those of the beginning; the counters say the rest.
#include "bench/ScratchFolder.h"
#include "bench/TreeContest.h"
#include "bench/TreeContestants.h"

#include <benchmark/benchmark.h>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using namespace tav::bench;
using Figures = std::map<std::string, double>;

/// The tree, below a folder that is gone at the end.
class TemporaryTree {
public:
    TemporaryTree() {
        std::filesystem::create_directories(_folder / "empty");
        _tree.make();
    }

    const WatchedTree& get() const { return _tree; }
    static TemporaryTree& ofAll() {
        static TemporaryTree tree;
        return tree;
    }

private:
    static std::filesystem::path place() {
        const bool isGiven = getenv("TMPDIR") != nullptr;
        if (!isGiven && std::filesystem::is_directory("/dev/shm"))
            return "/dev/shm";
        return std::filesystem::temp_directory_path();
    }

    const ScratchFolder _folder{place()};
    const WatchedTree _tree{_folder / "tree"};
};

// In the process of a contestant.

/// Watching an empty folder first, so that what a library takes for itself is not counted.
template <class Contestant>
double bytesWithout(const WatchedTree& tree) {
    TreeReport report(tree);
    Contestant first(std::filesystem::path(tree.top()).replace_filename("empty"), report);
    first.serve();
    return first.bytes();
}

template <class Contestant>
void contest(const std::string& task, const WatchedTree& tree) {
    const double before = bytesWithout<Contestant>(tree);
    const double kernelBefore = kernelBytes();
    TreeReport report(tree);
    const auto began = Clock::now();
    Contestant contestant(tree.top(), report);
    printf("setup_ns %f\n", nanoseconds(Clock::now() - began));
    printf("bytes_resident %f\n", contestant.bytes() - before);
    printf("bytes_kernel %f\n", kernelBytes() - kernelBefore);
    if (task == "setUp")
        return;
    task == "burst" ? report.startBurst() : report.startSingles();
    while (!report.isOver())
        contestant.serve();
    report.finish();
}

struct Entry {
    const char* name;
    void (*contest)(const std::string& task, const WatchedTree& tree);
};

constexpr Entry kEntries[] = {
    {"ula", contest<OurMonitor>},
    {"ula watcher", contest<OurWatcher>},
    {"inotify", contest<RawInotify>},
    {"inotifywait", contest<Inotifywait>},
    {"QFileSystemWatcher", contest<QtFolders>},
    {"GFileMonitor", contest<GioFolders>},
};

int contestAs(const char* name, const char* task, const char* top) {
    for (const Entry& entry : kEntries)
        if (strcmp(entry.name, name) == 0) {
            entry.contest(task, WatchedTree(top));
            return 0;
        }
    fprintf(stderr, "no contestant: %s\n", name);
    return 2;
}

// In the process of the benchmark.

std::string ownPath() {
    char path[PATH_MAX];
    const ssize_t size = readlink("/proc/self/exe", path, sizeof path);
    return {path, static_cast<std::size_t>(std::max<ssize_t>(size, 0))};
}

/// Empty when the process has failed.
Figures figuresOf(const Entry& entry, const char* task) {
    const std::string command = "'" + ownPath() + "' --contestant '" + entry.name + "' " + task +
                                " '" + TemporaryTree::ofAll().get().top() + "'";
    FILE* const output = popen(command.c_str(), "re");
    Figures figures;
    char name[64];
    double value = 0;
    while (output != nullptr && fscanf(output, "%63s %lf", name, &value) == 2)
        figures[name] = value;
    if (output == nullptr || pclose(output) != 0)
        figures.clear();
    return figures;
}

void run(benchmark::State& state, const Entry& entry, const char* task) {
    for (auto _ : state) {
        const Figures figures = figuresOf(entry, task);
        if (figures.empty()) {
            state.SkipWithError("the contestant has failed");
            return;
        }
        state.SetIterationTime(figures.at("setup_ns") / 1e9);
        for (const auto& [name, value] : figures)
            state.counters[name] = value;
        if (strcmp(task, "setUp") != 0)
            TemporaryTree::ofAll().get().clear();
    }
}

void add(const Entry& entry) {
    for (const char* task : {"setUp", "burst", "singles"}) {
        const std::string name = std::string("watchTree.") + task + "/" + entry.name;
        benchmark::RegisterBenchmark(name.c_str(), run, entry, task)
            ->Iterations(1)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount == 5 && strcmp(arguments[1], "--contestant") == 0)
        return contestAs(arguments[2], arguments[3], arguments[4]);
    for (const Entry& entry : kEntries)
        add(entry);
    benchmark::Initialize(&argumentCount, arguments);
    if (benchmark::ReportUnrecognizedArguments(argumentCount, arguments))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
