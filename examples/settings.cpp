// SPDX-License-Identifier: MIT
#include <ula/SettingsXML.h>

#include <cstdio>

int main() {
    tav::ula::SettingsXML settings("Photos", "Example", "photos.xml", false);
    settings.changed().connect([] { std::puts("something was stored"); });

    const int width = settings.getInt("Window", "Width", 1280);
    settings.setGeneric("Window", "Width", width + 1);

    std::printf("the window is %d wide\n", width);
    return settings.write() ? 0 : 1;
}
