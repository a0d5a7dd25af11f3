// SPDX-License-Identifier: MIT
// Reads the text as what a camera says: as a picture, whose date must be valid, as a name, which
// must become a plain one that stays as it is, and as a pattern of folders, which must lead
// nowhere but downwards.
#include "ImageCapture/SafeName.h"
#include "fuzz/Expect.h"
#include "ula/src/Core/PictureDate.h"

#include <cstdint>

namespace {

using namespace tav::ula;

void checkDate(std::string_view bytes) {
    if (const auto date = pictureDate(bytes))
        expect(parseShootingDate(date->toString()) == date);
}

void checkName(std::string_view bytes) {
    const std::string name = imagecapture::safeName(bytes);
    expect(!name.empty() && name.size() <= 255 && name[0] != '.');
    expect(name.find('/') == std::string::npos && name.find('\0') == std::string::npos);
    expect(imagecapture::safeName(name) == name);
}

void checkFolder(std::string_view bytes) {
    const std::string path = "/" + dateFolder(std::string(bytes), {2009, 3, 15}) + "/";
    expect(path.find("/../") == std::string::npos && path.find("/./") == std::string::npos);
    expect(path == "//" || path.find("//") == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    checkDate(bytes);
    checkName(bytes);
    checkFolder(bytes);
    return 0;
}
