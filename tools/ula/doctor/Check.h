// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::tool::doctor {

struct Host;

enum class CheckState {
    Ok,
    Warning,  // it works, though not as well as it could
    Problem,  // something that programs rely on does not work
    Unknown,  // the system does not tell
};

/// "ok", "warning", "problem", "unknown": programs know them.
const char* textOf(CheckState state);

struct Finding {
    CheckState state = CheckState::Ok;
    std::string message = {};  ///< one line
    std::string remedy = {};   ///< a command, what is to be done besides behind #;
                               ///< or words; empty where nothing is to be mended
};

/// Something of the host that is looked at. Nothing is changed by that.
struct Check {
    const char* id;  ///< programs know it
    /// May wait for answers as long as it likes. Thread: one of its own.
    Finding (*examine)(const Host& host);
    Finding silence;  ///< what is found when no answer comes
};

}  // namespace tav::tool::doctor
