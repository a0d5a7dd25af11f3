// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/MountsCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/ShellWord.h"

#include <CoreServices/MountLookup.h>
#include <CoreServices/Patience.h>
#include <CoreServices/StallingMount.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <future>
#include <optional>
#include <sys/statvfs.h>
#include <vector>

namespace tav::tool::doctor {

namespace {

using coreservices::Mount;

constexpr std::chrono::milliseconds kPatience(1000);

/// What the mount says: errno, 0 when it is well. None when nothing is said in time.
std::optional<int> ask(const std::string& point) {
    return coreservices::askPatiently<int>(point, kPatience, [point] {
        struct statvfs facts {};
        return statvfs(point.c_str(), &facts) == 0 ? 0 : errno;
    });
}

/// Empty when it is well. Another user's mount that keeps us out is.
std::string complaintOf(const std::optional<int>& answer) {
    if (!answer)
        return translated("does not answer");
    return *answer == 0 || *answer == EACCES || *answer == EPERM ? "" : std::strerror(*answer);
}

std::vector<std::string> pointsToAsk() {
    std::vector<std::string> points;
    const coreservices::MountList mounts = coreservices::currentMounts();
    for (const Mount& mount : *mounts)
        // What an automounter stands for is mounted only when it is used.
        if (coreservices::mayStall(mount) && mount.type != "autofs")
            points.push_back(mount.point);
    return points;
}

/// All at once: each may keep us waiting.
std::vector<std::optional<int>> askAll(const std::vector<std::string>& points) {
    std::vector<std::future<std::optional<int>>> answers;
    for (const std::string& point : points)
        answers.push_back(std::async(std::launch::async, ask, point));
    std::vector<std::optional<int>> results;
    for (auto& answer : answers)
        results.push_back(answer.get());
    return results;
}

Finding examine(const Host&) {
    const std::vector<std::string> points = pointsToAsk();
    if (points.empty())
        return {CheckState::Ok, translated("no share is mounted")};
    const std::vector<std::optional<int>> answers = askAll(points);
    Finding finding;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::string complaint = complaintOf(answers[i]);
        if (complaint.empty())
            continue;
        finding.state = CheckState::Problem;
        finding.message += (finding.message.empty() ? "" : "; ") + points[i] + ": " + complaint;
        finding.remedy +=
            (finding.remedy.empty() ? asRoot("umount -l ") : " ") + shellWord(points[i]);
    }
    if (finding.state == CheckState::Ok)
        finding.message =
            translated("mounts that depend on others answer: %1", std::to_string(points.size()));
    return finding;
}

}  // namespace

Check mountsCheck() {
    return {"mounts",
            examine,
            {CheckState::Unknown, translated("the mounts could not be asked in time")}};
}

}  // namespace tav::tool::doctor
