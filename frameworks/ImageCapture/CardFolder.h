// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/Descriptor.h"
#include "ImageCapture/Camera.h"

#include <sys/types.h>

namespace imagecapture {

// The pictures of a memory card that is mounted: all files below its DCIM folder, but hidden ones.
// Links are not followed, nor is what is mounted in there. Between calls nothing is open, so that
// the card can be unmounted.
class CardFolder : public Camera {
public:
    // `path` is that of the DCIM folder.
    explicit CardFolder(std::string path);

    int list(const std::string& folder, std::vector<Item>& items) override;
    int read(const std::string& folder, const Item& file, uint64_t offset,
             std::span<char>& bytes) override;
    int copy(const std::string& folder, const Item& file, int descriptor) override;
    std::string problem() const override { return _problem; }

private:
    // Of what lies below the folder. Fails: none, errno.
    cf::Descriptor open(const std::string& relativePath, int flags);
    // A file to be read from its beginning.
    cf::Descriptor openFile(const std::string& folder, const Item& file);
    int fail(const std::string& path, int number);

    std::string _path;
    dev_t _device = 0;
    std::string _problem;
};

// The cards that are mounted.
class MountedCards : public DeviceSource {
public:
    std::vector<FoundDevice> look() override;
};

}  // namespace imagecapture
