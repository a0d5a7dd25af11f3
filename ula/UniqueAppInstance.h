// SPDX-License-Identifier: MIT
// One running instance of an application, its restart, and the window that its dialogs belong to.
#pragma once

#include "ula/Export.h"
#include "ula/FastString.h"

#include <string>
#include <vector>

namespace tav::ula {

/// Whether no other running application has this name or this bundle identifier, both compared byte
/// by byte. It is what the moment shows: two that start together may both find themselves alone.
/// For a decision that holds, see InstanceGuard. Thread: any.
ULA_API bool isUniqueAppInstance(const FastString& appID);

/// Brings the other running application of this name or bundle identifier to the front. True when
/// there is one, whether it came or not. Thread: main.
ULA_API bool switchToAppInstance(const FastString& appID);

/// Whether the application is to be started anew when it ends. Thread: main, as for the next four.
ULA_API void setRestartRequired(bool required);
ULA_API bool restartRequired();
/// To be called as the application quits: where a restart is required, has the system open the
/// application's bundle once this process is gone. Returns at once. Fails: silently.
ULA_API void checkRestartApplicaiton();

/// The window that modal dialogs are to be attached to. The library only keeps it. Null at first.
ULA_API void* getModalParentHandle();
ULA_API void setModalParentHandle(void* handle);

struct RunningApplicationInfo {
    std::string name;
    std::string bundleIdentifier;  ///< empty when it has none
    std::string path;              ///< of its bundle, or of its program where that lies in none
    int processIdentifier = 0;
};

/// This user's running applications, this one among them, in the order in which they began.
/// Thread: any.
ULA_API std::vector<RunningApplicationInfo> runningApplications();

}  // namespace tav::ula
