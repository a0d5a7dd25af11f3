// SPDX-License-Identifier: MIT
// Facts about the machine and the user's language, beside the system's programs and other libraries
// that tell them.
#include "ula/Environment.h"
#include "ula/SystemInformation.h"

#include <cstdio>
#include <memory>
#include <string>

#include <QLocale>
#include <QSysInfo>
#include <benchmark/benchmark.h>
#include <glib.h>

namespace {

using tav::ula::Environment;
using tav::ula::SystemInformation;

/// What a program writes, as an application has it that runs it for the answer.
std::string outputOf(const char* command) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> output(popen(command, "r"), &pclose);
    std::string text;
    char piece[4096];
    for (std::size_t count; (count = std::fread(piece, 1, sizeof piece, output.get())) > 0;)
        text.append(piece, count);
    return text;
}

std::unique_ptr<char, void (*)(void*)> releaseByGlib() {
    return {g_get_os_info("VERSION_ID"), &g_free};
}

template <class Function>
void measure(benchmark::State& state, Function function) {
    for (auto _ : state)
        benchmark::DoNotOptimize(function());
}

#define ULA_MEASURE(name, text, function)                                                          \
    void name(benchmark::State& state) {                                                           \
        measure(state, [] { return function; });                                                   \
    }                                                                                              \
    BENCHMARK(name)->Name(text)

ULA_MEASURE(processorsOurs, "processors/ula", SystemInformation::getCPUInfo());
ULA_MEASURE(processorsLscpu, "processors/lscpu", outputOf("lscpu --json"));

ULA_MEASURE(graphicsOurs, "graphics/ula", SystemInformation::getVideoControllerInfo());

ULA_MEASURE(memoryOurs, "memory/ula", SystemInformation::getMemInfo());
ULA_MEASURE(memoryFree, "memory/free", outputOf("free --bytes"));

ULA_MEASURE(limitsOurs, "limits/ula", SystemInformation::getEffectiveCPUCount());
ULA_MEASURE(limitsNproc, "limits/nproc", outputOf("nproc"));

ULA_MEASURE(languageOurs, "language/ula", Environment::getOSLanguage());
ULA_MEASURE(languageQt, "language/Qt", QLocale::system().nativeLanguageName());

ULA_MEASURE(languageCodeOurs, "languageCode/ula", Environment::getOSLanguageISO3166());
ULA_MEASURE(languageCodeQt, "languageCode/Qt", QLocale::system().uiLanguages());
ULA_MEASURE(languageCodeGlib, "languageCode/GLib", g_get_language_names());

ULA_MEASURE(countryOurs, "country/ula", Environment::getOSCountryISO3166());
ULA_MEASURE(countryQt, "country/Qt", QLocale::system().name());

ULA_MEASURE(releaseOurs, "release/ula", Environment::getOSVersion());
ULA_MEASURE(releaseQt, "release/Qt", QSysInfo::productVersion());
ULA_MEASURE(releaseGlib, "release/GLib", releaseByGlib());

}  // namespace
