// SPDX-License-Identifier: MIT
// Where well-known folders lie, against the answers of Qt and GLib. Qt reads the desktop's file at
// each question, GLib once in the life of the process.
#include "ula/SpecialFolders.h"

#include <QDir>
#include <QStandardPaths>
#include <benchmark/benchmark.h>
#include <glib.h>

namespace {

using tav::ula::FastString;
using tav::ula::SpecialFolders;

template <class Query>
void ask(benchmark::State& state, Query query) {
    for (auto _ : state)
        benchmark::DoNotOptimize(query());
}

void ofThePlatform(benchmark::State& state, FastString (*query)()) {
    ask(state, query);
}

void ofTheProgram(benchmark::State& state, FastString (*query)(const tav::ula::Module*)) {
    ask(state, [query] { return query(nullptr); });
}

void ofQt(benchmark::State& state, QStandardPaths::StandardLocation location) {
    ask(state, [location] { return QStandardPaths::writableLocation(location); });
}

const bool kRegistered = [] {
    using benchmark::RegisterBenchmark;
    RegisterBenchmark("homeFolder/ula", ofThePlatform, SpecialFolders::home);
    RegisterBenchmark("homeFolder/Qt", ofQt, QStandardPaths::HomeLocation);
    RegisterBenchmark("temporaryFolder/ula", ofThePlatform, SpecialFolders::tempPath);
    RegisterBenchmark("temporaryFolder/Qt", ofQt, QStandardPaths::TempLocation);
    RegisterBenchmark("documents/ula", ofThePlatform, SpecialFolders::myDocuments);
    RegisterBenchmark("documents/Qt", ofQt, QStandardPaths::DocumentsLocation);
    RegisterBenchmark("documents/GLib", [](benchmark::State& state) {
        ask(state, [] { return g_get_user_special_dir(G_USER_DIRECTORY_DOCUMENTS); });
    });
    RegisterBenchmark("applicationSupport/ula", ofThePlatform,
                      SpecialFolders::myApplicationSupportPath);
    RegisterBenchmark("applicationSupport/Qt", ofQt, QStandardPaths::GenericDataLocation);
    RegisterBenchmark("resources/ula", ofTheProgram, SpecialFolders::myApplicationResourcePath);
    RegisterBenchmark("frameworks/ula", ofTheProgram, SpecialFolders::myApplicationFrameworkPath);
    RegisterBenchmark("execution/ula", ofTheProgram, SpecialFolders::myApplicationExecutionPath);
    return true;
}();

}  // namespace
