// SPDX-License-Identifier: MIT
#include "Security/privileged/MoveCommand.h"

namespace security {

namespace {

bool isPlain(const std::string& path) {
    return path.starts_with('/') && (path + "/").find("/../") == std::string::npos;
}

bool isApplication(const std::string& path) {
    return isPlain(path) && path.ends_with(".app");
}

}  // namespace

bool isMoveCommand(const std::vector<std::string>& words) {
    if (words.size() == 3)
        return words[0] == "/bin/rm" && words[1] == "-rf" && isApplication(words[2]);
    return words.size() == 4 && words[0] == "/bin/cp" && words[1] == "-pR" && isPlain(words[2]) &&
           isApplication(words[3]);
}

}  // namespace security
