// SPDX-License-Identifier: MIT
#include "SystemProfiler/Processors.h"

#include "SystemProfiler/ArmCores.h"
#include "SystemProfiler/KernelFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <utility>

namespace systemprofiler {

namespace {

/// What the table of the kernel says, whose keys differ with the architecture.
struct Table {
    std::string type;
    std::string hardware;
    std::string implementer;
    std::string part;
    double speedMHz = 0;
    uint64_t count = 0;
    std::string package = "0";
    std::set<std::string> packages;
    std::set<std::pair<std::string, std::string>> cores;
};

bool isOneOf(std::string_view key, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), key) != names.end();
}

void takeFirst(std::string& field, std::string_view value) {
    if (field.empty())
        field = value;
}

/// Several blanks pad the names of some processors.
std::string withSingleBlanks(std::string_view text) {
    std::string result;
    for (const char character : text)
        if (character != ' ' || (!result.empty() && result.back() != ' '))
            result += character;
    return result;
}

/// "2.30GHz", "2500.0MHz", "2500.0 MHz static", "2500.0".
double megahertzOf(std::string_view text) {
    double number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return 0;
    const bool isGHz = text.find("GHz") != text.npos;
    return isGHz ? number * 1000 : number;
}

void takePair(Table& table, std::string_view key, std::string_view value) {
    if (key == "processor")
        ++table.count;
    else if (isOneOf(key, {"model name", "Model Name", "cpu model", "cpu", "uarch", "Processor"}))
        takeFirst(table.type, value);
    else if (isOneOf(key, {"cpu MHz", "CPU MHz", "clock", "cpu MHz dynamic"}))
        table.speedMHz = std::max(table.speedMHz, megahertzOf(value));
    else if (key == "Hardware")
        takeFirst(table.hardware, value);
    else if (key == "CPU implementer")
        takeFirst(table.implementer, value);
    else if (key == "CPU part")
        takeFirst(table.part, value);
    else if (key == "physical id")
        table.packages.insert(table.package = value);
    else if (key == "core id")
        table.cores.emplace(table.package, value);
}

Table readTable(const std::string& root) {
    Table table;
    forEachPair(
        readKernelFile(root + "/proc/cpuinfo"), ':',
        [&table](std::string_view key, std::string_view value) { takePair(table, key, value); });
    return table;
}

std::string typeOf(const Table& table) {
    if (!table.type.empty())
        return withSingleBlanks(table.type);
    const std::string core = armCoreName(table.implementer, table.part);
    return core.empty() ? table.hardware : core;
}

/// What stands behind the "@" of "Xeon(R) Processor @ 2.50GHz".
double speedInName(const std::string& name) {
    const size_t at = name.rfind("@ ");
    return at == name.npos ? 0 : megahertzOf(std::string_view(name).substr(at + 2));
}

/// A speed of the fastest processor, from the governor of frequencies.
double governedSpeed(const std::string& root, const char* name) {
    const std::string folder = root + "/sys/devices/system/cpu/cpufreq";
    uint64_t kilohertz = 0;
    for (const std::string& policy : namesIn(folder))
        kilohertz =
            std::max(kilohertz, readKernelNumber(folder + '/' + policy + '/' + name).value_or(0));
    return static_cast<double>(kilohertz) / 1000;
}

double speedOf(const std::string& root, const Table& table) {
    if (const double speed = speedInName(withSingleBlanks(table.type)); speed > 0)
        return speed;
    if (const double speed = governedSpeed(root, "base_frequency"); speed > 0)
        return speed;
    if (const double speed = governedSpeed(root, "cpuinfo_max_freq"); speed > 0)
        return speed;
    return table.speedMHz;
}

/// Where the table is silent, each processor's own folder tells on what it lies.
void readTopology(const std::string& root, Table& table) {
    const std::string folder = root + "/sys/devices/system/cpu";
    for (const std::string& name : namesIn(folder)) {
        const std::string topology = folder + '/' + name + "/topology/";
        const std::string core = readKernelFile(topology + "core_id");
        if (core.empty())
            continue;
        const std::string package = readKernelFile(topology + "physical_package_id");
        table.packages.insert(package);
        // Cores of different clusters have the same numbers.
        table.cores.emplace(package, core + '/' + readKernelFile(topology + "cluster_id"));
    }
}

/// Of a list such as "0-3,8".
uint64_t countOfList(std::string_view list) {
    uint64_t count = 0;
    while (!list.empty()) {
        const std::string_view range = list.substr(0, list.find(','));
        const size_t dash = range.find('-');
        const auto first = numberOf(range.substr(0, dash));
        const auto last = dash == range.npos ? first : numberOf(range.substr(dash + 1));
        if (first && last && *first <= *last)
            count += *last - *first + 1;
        list.remove_prefix(std::min(list.size(), range.size() + 1));
    }
    return count;
}

}  // namespace

Processors readProcessors(const std::string& root) {
    Table table = readTable(root);
    if (table.cores.empty())
        readTopology(root, table);
    const uint64_t online = countOfList(readKernelFile(root + "/sys/devices/system/cpu/online"));
    Processors processors;
    processors.type = typeOf(table);
    processors.speedMHz = static_cast<uint64_t>(std::llround(speedOf(root, table)));
    processors.count = online > 0 ? online : table.count;
    processors.cores = table.cores.size();
    processors.packages = table.packages.size();
    return processors;
}

std::string speedText(uint64_t megahertz) {
    if (megahertz == 0)
        return {};
    std::string number = std::to_string(megahertz / 1000);
    if (const uint64_t rest = megahertz % 1000; rest != 0) {
        char decimals[8];
        std::snprintf(decimals, sizeof decimals, ".%03u", static_cast<unsigned>(rest));
        number += decimals;
        number.resize(number.find_last_not_of('0') + 1);
    }
    double gigahertz = 0;
    std::from_chars(number.data(), number.data() + number.size(), gigahertz);
    const bool readsBack = static_cast<uint64_t>(gigahertz * 1000) == megahertz;
    return megahertz >= 1000 && readsBack ? number + " GHz" : std::to_string(megahertz) + " MHz";
}

}  // namespace systemprofiler
