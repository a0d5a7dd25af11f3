// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/InotifyCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sys/inotify.h>
#include <unistd.h>

namespace tav::tool::doctor {

namespace {

struct Limit {
    const char* name;
    long long needed;    // with fewer something fails soon
    long long wanted;    // with fewer large trees are not watched, or not without gaps
    long long proposed;  // costs little: memory is taken by what is in use
};

constexpr std::array<Limit, 3> kLimits = {{{"max_user_watches", 8192, 65536, 524288},
                                           {"max_user_instances", 16, 128, 1024},
                                           {"max_queued_events", 1024, 16384, 16384}}};
constexpr const Limit& kWatches = kLimits[0];
constexpr const Limit& kInstances = kLimits[1];

long long readLimit(const Limit& limit, const Host& host) {
    std::ifstream file(host.inotifyLimits + "/" + limit.name);
    long long number = -1;
    return file >> number ? number : -1;
}

std::string remedyFor(const Limit& limit, long long number) {
    return std::string(" fs.inotify.") + limit.name + "=" + std::to_string(number);
}

/// Limits that are in use are raised, also those that are not low.
Finding exhausted(const Limit& limit, const char* what, const Host& host) {
    const long long present = readLimit(limit, host);
    const std::string count = present < 0 ? "" : " (" + std::to_string(present) + ")";
    return {CheckState::Problem,
            translated("all %1 of %2 are in use%3: nothing more is watched", translated(what),
                       userName(), count),
            asRoot("sysctl -w" + remedyFor(limit, std::max(limit.proposed, 2 * present)))};
}

/// Takes what a program takes that begins to watch. Its message is empty where that works.
Finding tryToWatch(const Host& host) {
    const int descriptor = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    if (descriptor < 0 && errno == EMFILE)
        return exhausted(kInstances, translatable("inotify instances"), host);
    const bool isWatched =
        descriptor >= 0 && inotify_add_watch(descriptor, "/", IN_DELETE_SELF) >= 0;
    const int error = errno;
    if (descriptor >= 0)
        close(descriptor);
    if (isWatched)
        return {};
    if (error == ENOSPC)
        return exhausted(kWatches, translatable("inotify watches"), host);
    return {CheckState::Problem,
            translated("nothing can be watched: %1", std::string(std::strerror(error))),
            translated("use a kernel with inotify")};
}

Finding examineLimits(const Host& host) {
    Finding finding;
    for (const Limit& limit : kLimits) {
        const long long number = readLimit(limit, host);
        if (number < 0)
            return {CheckState::Unknown,
                    translated("cannot be read: %1", host.inotifyLimits + "/" + limit.name)};
        if (number >= limit.wanted)
            continue;
        const bool isProblem = number < limit.needed || finding.state == CheckState::Problem;
        finding.state = isProblem ? CheckState::Problem : CheckState::Warning;
        finding.message += (finding.message.empty() ? translated("few may be watched: ") : ", ") +
                           translated("%1 is %2", std::string(limit.name), std::to_string(number));
        finding.remedy +=
            (finding.remedy.empty() ? asRoot("sysctl -w") : "") + remedyFor(limit, limit.proposed);
    }
    return finding;
}

Finding examine(const Host& host) {
    if (const Finding finding = tryToWatch(host); !finding.message.empty())
        return finding;
    const Finding finding = examineLimits(host);
    if (!finding.message.empty())
        return finding;
    return {CheckState::Ok, translated("%1 folders and files may be watched",
                                       std::to_string(readLimit(kWatches, host)))};
}

}  // namespace

Check inotifyCheck() {
    return {"inotify", examine, {CheckState::Unknown, translated("the kernel does not answer")}};
}

}  // namespace tav::tool::doctor
