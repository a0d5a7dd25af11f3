// SPDX-License-Identifier: MIT
#include "ula/foundation/memory/ControlGroup.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <sstream>
#include <string_view>
#include <vector>

namespace tav::memory {

namespace {

// The first version writes a number of pages near the largest for "no limit".
constexpr std::uint64_t kUnlimited = std::uint64_t{1} << 62;

/// Where a hierarchy of groups is mounted, and which group is this process's.
struct Hierarchy {
    std::string point;
    std::string root;     ///< the group that is seen at the mount point
    std::string options;  ///< ",rw,memory,"; of the first version
    bool isUnified = false;
};

/// A line of the table of the process's groups.
struct Membership {
    std::string controllers;  ///< ",cpu,cpuacct,"; ",," for the unified hierarchy
    std::string path;
};

std::vector<Membership> readMemberships(const std::string& root) {
    std::vector<Membership> memberships;
    std::ifstream file(root + "/proc/self/cgroup");
    for (std::string line; std::getline(file, line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (first == line.npos || second == line.npos)
            continue;
        memberships.push_back(
            {',' + line.substr(first + 1, second - first - 1) + ',', line.substr(second + 1)});
    }
    return memberships;
}

std::vector<Hierarchy> readHierarchies(const std::string& root) {
    std::vector<Hierarchy> hierarchies;
    std::ifstream file(root + "/proc/self/mountinfo");
    for (std::string line; std::getline(file, line);) {
        const std::size_t end = line.find(" - cgroup");
        if (end == line.npos)
            continue;
        std::istringstream mount(line);
        std::istringstream kind(line.substr(end + 3));
        std::string ignored;
        std::string type;
        Hierarchy hierarchy;
        mount >> ignored >> ignored >> ignored >> hierarchy.root >> hierarchy.point;
        kind >> type >> ignored >> hierarchy.options;
        hierarchy.options = ',' + hierarchy.options + ',';
        hierarchy.isUnified = type == "cgroup2";
        hierarchies.push_back(hierarchy);
    }
    return hierarchies;
}

/// The group's path below the mount point; empty where the group is not seen there, as that of a
/// container whose table still has the host's names.
std::string pathBelow(const Hierarchy& hierarchy, const std::string& path) {
    const std::string root = hierarchy.root == "/" ? "" : hierarchy.root;
    const bool isBelow = path.starts_with(root) && path.find("/..") == path.npos &&
                         (path.size() == root.size() || path[root.size()] == '/');
    return isBelow ? path.substr(root.size()) : std::string();
}

/// Calls `group` with the folder of the process's group and with those of all that it lies in.
void forEachGroup(const std::string& mountPoint, std::string path,
                  const std::function<void(const std::string& folder)>& group) {
    while (path.size() > 1) {
        group(mountPoint + path);
        path.resize(path.rfind('/'));
    }
    group(mountPoint);
}

/// The first number of a file; nothing for "max", "-1" and what is no limit.
std::optional<std::uint64_t> readLimit(const std::string& path) {
    std::ifstream file(path);
    long long number = -1;
    if (!(file >> number) || number < 0 || static_cast<std::uint64_t>(number) >= kUnlimited)
        return std::nullopt;
    return static_cast<std::uint64_t>(number);
}

std::uint64_t readStatistic(const std::string& path, std::string_view wanted) {
    std::ifstream file(path);
    std::string name;
    for (std::uint64_t value = 0; file >> name >> value;)
        if (name == wanted)
            return value;
    return 0;
}

template <class Number>
void tighten(std::optional<Number>& limit, std::optional<Number> other) {
    if (other)
        limit = limit ? std::min(*limit, *other) : *other;
}

/// Names of the same files in the two versions.
struct MemoryFiles {
    std::vector<const char*> limits;
    const char* usage;
    const char* reclaimable;
};

const MemoryFiles& memoryFiles(bool isUnified) {
    static const MemoryFiles first{
        {"/memory.limit_in_bytes"}, "/memory.usage_in_bytes", "total_inactive_file"};
    static const MemoryFiles unified{
        {"/memory.max", "/memory.high"}, "/memory.current", "inactive_file"};
    return isUnified ? unified : first;
}

void readMemory(const std::string& folder, const MemoryFiles& files, ControlGroupLimits& limits) {
    std::optional<std::uint64_t> limit;
    for (const char* name : files.limits)
        tighten(limit, readLimit(folder + name));
    if (!limit)
        return;
    const std::uint64_t used = readLimit(folder + files.usage).value_or(0);
    const std::uint64_t cached = readStatistic(folder + "/memory.stat", files.reclaimable);
    const std::uint64_t needed = used - std::min(used, cached);
    tighten(limits.memory, limit);
    tighten(limits.memoryLeft, std::optional(*limit - std::min(*limit, needed)));
}

/// Time per period, both in microseconds.
std::optional<double> readProcessors(const std::string& folder, bool isUnified) {
    std::optional<std::uint64_t> time;
    std::uint64_t period = 0;
    if (isUnified) {
        time = readLimit(folder + "/cpu.max");
        std::ifstream file(folder + "/cpu.max");
        std::string ignored;
        file >> ignored >> period;
    } else {
        time = readLimit(folder + "/cpu.cfs_quota_us");
        period = readLimit(folder + "/cpu.cfs_period_us").value_or(0);
    }
    if (!time || period == 0)
        return std::nullopt;
    return static_cast<double>(*time) / static_cast<double>(period);
}

void readGroups(const std::string& root, const Hierarchy& hierarchy, const Membership& membership,
                ControlGroupLimits& limits) {
    const auto has = [&hierarchy](const char* controller) {
        return hierarchy.isUnified || hierarchy.options.find(controller) != std::string::npos;
    };
    forEachGroup(root + hierarchy.point, pathBelow(hierarchy, membership.path),
                 [&](const std::string& folder) {
                     if (has(",memory,"))
                         readMemory(folder, memoryFiles(hierarchy.isUnified), limits);
                     if (has(",cpu,"))
                         tighten(limits.processors, readProcessors(folder, hierarchy.isUnified));
                 });
}

/// Whether the line of the process's groups is the one of this hierarchy.
bool belongsTo(const Membership& membership, const Hierarchy& hierarchy) {
    if (hierarchy.isUnified || membership.controllers == ",,")
        return hierarchy.isUnified && membership.controllers == ",,";
    for (const char* controller : {",memory,", ",cpu,"})
        if (membership.controllers.find(controller) != std::string::npos &&
            hierarchy.options.find(controller) != std::string::npos)
            return true;
    return false;
}

}  // namespace

ControlGroupLimits readControlGroupLimits(const std::string& root) {
    ControlGroupLimits limits;
    const std::vector<Membership> memberships = readMemberships(root);
    for (const Hierarchy& hierarchy : readHierarchies(root))
        for (const Membership& membership : memberships)
            if (belongsTo(membership, hierarchy))
                readGroups(root, hierarchy, membership, limits);
    return limits;
}

}  // namespace tav::memory
