// SPDX-License-Identifier: MIT
// Reads the text as a table of mounts and as an info file of a trash. What is written for a path
// must be read as that path.
#include "AppKit/TrashInfo.h"
#include "CoreServices/MountInfo.h"
#include "fuzz/Expect.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    for (const coreservices::Mount& mount : coreservices::parseMountInfo(text))
        expect(mount.point.size() <= size);
    if (const auto info = appkit::parseTrashInfo(text))
        expect(!info->path.empty() && info->path.size() <= size);
    const std::string path = "/" + text.substr(0, text.find('\0'));
    const auto written = appkit::parseTrashInfo(appkit::trashInfoText(path, 0));
    expect(written && written->path == path);
    return 0;
}
