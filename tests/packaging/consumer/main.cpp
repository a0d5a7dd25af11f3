// SPDX-License-Identifier: MIT
#include <cstdio>
#include <ula/SettingsXML.h>

int main(int, char** arguments) {
    using namespace tav::ula;
    const FastString path(arguments[1]);
    { SettingsXML("Lighttable", "Example", path, true).getInt("Window", "Width", 800); }
    SettingsXML settings("Lighttable", "Example", path, false);
    std::printf("%d from ula\n", settings.getInt("Window", "Width", 0));
}
