// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/VolumesCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/ShellWord.h"

#include <CoreServices/MountLookup.h>
#include <CoreServices/Volumes.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::tool::doctor {

namespace {

using namespace coreservices;

std::string mendCommand(const Host& host) {
    return asRoot(host.ownCommand() + " volumes --mend");
}

/// What is wrong with the folder itself; its message is empty where nothing is.
Finding examineFolder(const Host& host) {
    const std::string& folder = host.volumes;
    struct stat facts {};
    if (stat(folder.c_str(), &facts) != 0)
        return {CheckState::Problem, translated("there is no folder %1", folder),
                mendCommand(host)};
    const std::string word = shellWord(folder);
    if (!S_ISDIR(facts.st_mode))
        return {CheckState::Problem, translated("%1 is no folder", folder),
                asRoot("mv " + word + " " + word + ".old") + " && " + mendCommand(host)};
    if (access(folder.c_str(), R_OK | X_OK) != 0)
        return {CheckState::Problem, translated("%1 may not look into %2", userName(), folder),
                asRoot("chmod 755 " + word)};
    return {};
}

std::string listOf(const std::vector<VolumeEntry>& entries, VolumeState state) {
    std::string list;
    for (const VolumeEntry& entry : entries)
        if (entry.state == state)
            list += (list.empty() ? "" : ", ") +
                    (state == VolumeState::Missing ? entry.target : entry.name);
    return list;
}

Finding examine(const Host& host) {
    if (const Finding finding = examineFolder(host); !finding.message.empty())
        return finding;
    const MountList mounts = currentMounts();
    const std::vector<VolumeEntry> entries = Volumes(host.volumes).list(*mounts);
    if (const std::string missing = listOf(entries, VolumeState::Missing); !missing.empty())
        return {CheckState::Problem, translated("without a name in %1: %2", host.volumes, missing),
                mendCommand(host)};
    if (const std::string stale = listOf(entries, VolumeState::StaleLink); !stale.empty())
        return {CheckState::Warning,
                translated("these links in %1 lead nowhere: %2", host.volumes, stale),
                mendCommand(host)};
    return {CheckState::Ok, translated("every volume has its name in %1", host.volumes)};
}

}  // namespace

Check volumesCheck() {
    return {"volumes",
            examine,
            {CheckState::Unknown, translated("the folder of volumes does not answer"),
             translated("mend the mounts that do not answer")}};
}

}  // namespace tav::tool::doctor
