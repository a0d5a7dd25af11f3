// SPDX-License-Identifier: MIT
// Stands in for pkexec and for the user in front of its dialog: ULA_TEST_PKEXEC is what the user
// does, "grant" or "cancel"; with anything else there is nobody to ask. Installed as pkexec is,
// with root's rights for everybody, where only a test sees it.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

int main(int count, char** words) {
    const char* const answer = std::getenv("ULA_TEST_PKEXEC");
    if (count < 3 || std::strcmp(words[1], "--disable-internal-agent") != 0 || answer == nullptr)
        return 127;
    if (std::strcmp(answer, "cancel") == 0)
        return 126;
    if (std::strcmp(answer, "grant") != 0) {
        std::fprintf(stderr, "Error executing command as another user: No authentication agent "
                             "found.\n");
        return 127;
    }
    if (setgid(0) != 0 || setuid(0) != 0)
        return 127;
    clearenv();
    execv(words[2], words + 2);
    return 127;
}
