// SPDX-License-Identifier: MIT
// Owners of what libgphoto2 makes.
#pragma once

#include <gphoto2/gphoto2-camera.h>
#include <memory>

namespace imagecapture {

struct GphotoRelease {
    void operator()(CameraList* list) const { gp_list_free(list); }
    void operator()(CameraFile* file) const { gp_file_unref(file); }
};
using ListOwner = std::unique_ptr<CameraList, GphotoRelease>;
using FileOwner = std::unique_ptr<CameraFile, GphotoRelease>;

}  // namespace imagecapture
