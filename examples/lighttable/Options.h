// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace lighttable {

enum class Scene { Browser, Cameras, Import, Account };

/// What the program was started with.
struct Options {
    std::string folder;      ///< to be shown first; absolute; empty: the one of last time
    std::string screenshot;  ///< draw the window into this file and end
    Scene scene = Scene::Browser;
    bool isHelpWanted = false;
    bool isQuitWanted = false;  ///< end the instance that runs
    bool mayMove = true;        ///< offer to move into the Applications folder
    std::string problem;        ///< with the words; nothing else is of use then

    static Options parse(const std::vector<std::string>& words);
    static const char* usage();
};

}  // namespace lighttable
