// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace security {

// Whether a command is one of those that put an application in its place: "/bin/rm -rf X.app" and
// "/bin/cp -pR SOURCE X.app", with paths from the root. The user is asked about a move and gives
// the password for nothing else.
bool isMoveCommand(const std::vector<std::string>& words);

}  // namespace security
