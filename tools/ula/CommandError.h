// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tav::tool {

/// What the program returns to the shell; scripts depend on the numbers.
enum ExitCode {
    ExitOk = 0,
    ExitDiffers = 1,  ///< the files differ, or what was asked for is not there, or is not well
    ExitUsage = 2,
    ExitCannotRead = 3,
    ExitCannotWrite = 4
};

/// Ends a command: the message goes to standard error, the code to the shell.
struct CommandError {
    ExitCode code;
    std::string message;
    std::string hint = {};  ///< what to do about it; a line of its own
};

}  // namespace tav::tool
